// Writing gzip data.
#include <RynCommon/RyGzipStream.h>

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "DeflateData.h"
#include "tests/Scratch.h"

namespace RynCommon {
namespace {

/// What reads back, in pieces of any size, is the fuzz target's, too.
TEST(GzipOStreamTest, WritesOneCompleteMember) {
    for (const std::string& data :
         {makeText(0), makeText(4096), makeRandom(4097), makeText(200'000), makeRandom(200'000)}) {
        std::ostringstream destination;
        {
            RyGzipOStream out(destination);
            for (std::size_t at = 0; at < data.size(); at += 100) out << data.substr(at, 100);
            out << data;
        }
        const std::string member = destination.str();
        EXPECT_EQ(member.substr(0, 4), std::string("\x1F\x8B\x08\0", 4));
        EXPECT_EQ(member[8], '\x02') << "not compressed at the highest level";
        const Inflated back = inflateData(member, Wrapper::Gzip, 1 << 19);
        EXPECT_TRUE(back.complete) << data.size();
        EXPECT_TRUE(back.bytes == data + data) << data.size();
    }
}

TEST(GzipOStreamTest, TheFirstFlushEndsTheMember) {
    for (const std::size_t later : {0, 10, 20'000}) {
        std::ostringstream destination;
        {
            RyGzipOStream out(destination);
            out << "first" << std::flush;
            const std::string member = destination.str();
            EXPECT_EQ(inflateData(member, Wrapper::Gzip).bytes, "first");
            EXPECT_TRUE(inflateData(member, Wrapper::Gzip).complete);
            out << std::string(later, 'x') << std::flush << "more";
            EXPECT_TRUE(out.good());
            EXPECT_EQ(destination.str(), member);
        }
        EXPECT_EQ(inflateData(destination.str(), Wrapper::Gzip).bytes, "first");
    }
}

class OpenedBuf : public RyGzipOStreamBuf {
public:
    using RyGzipOStreamBuf::overflow;
    using RyGzipOStreamBuf::RyGzipOStreamBuf;
};

TEST(GzipOStreamTest, OverflowOfNothingWritesNothing) {
    std::ostringstream destination;
    {
        OpenedBuf buffer(destination);
        buffer.overflow(EOF);
        buffer.sputn("ab", 2);
        EXPECT_NE(buffer.overflow(EOF), EOF);
        buffer.overflow('c');
    }
    EXPECT_EQ(inflateData(destination.str(), Wrapper::Gzip).bytes, "abc");
}

TEST(GzipOStreamTest, ADestinationThatFailsIsNotTold) {
    std::ostringstream failing;
    failing.setstate(std::ios::badbit);
    try {
        failing.exceptions(std::ios::badbit);
    } catch (const std::ios_base::failure&) {
        // Setting the mask throws at once; the destination throws from now on.
    }
    RyGzipOStream out(failing);
    EXPECT_NO_THROW(out << makeRandom(50'000) << std::flush);
    EXPECT_TRUE(out.good());
}

TEST(GzipOStreamTest, WritesFiles) {
    const ScratchFolder folder;
    folder.write("\u00E9.gz", std::string(5'000, 'o'));
    const std::string text = makeText(10'000);
    {
        RyGzipOStream out(UnicodeString::fromUTF8(folder.path("\u00E9.gz")));
        out << text;
    }
    const Inflated back = inflateData(folder.read("\u00E9.gz"), Wrapper::Gzip);
    EXPECT_TRUE(back.complete);
    EXPECT_EQ(back.bytes, text);
    RyGzipOStream lost(UnicodeString(u"/no such folder/file.gz"));
    lost << text << std::flush;
    EXPECT_TRUE(lost.good());
}

}  // namespace
}  // namespace RynCommon
