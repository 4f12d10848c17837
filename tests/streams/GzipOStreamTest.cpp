// Writing gzip data.
#include <RynCommon/RyGzipStream.h>

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>

#include "DeflateData.h"

namespace RynCommon {
namespace {

/// Bytes that do not compress.
std::string makeNoise(std::size_t size) {
    std::string noise;
    for (std::uint32_t x = 1; noise.size() < size;) {
        x = x * 1664525 + 1013904223;
        noise += static_cast<char>(x >> 24);
    }
    return noise;
}

TEST(GzipOStreamTest, WritesOneCompleteMember) {
    for (const std::size_t size : {0, 1, 4095, 4096, 4097, 8192, 10'000, 200'000}) {
        for (const std::string& data : {makeText(size), makeNoise(size), std::string(size, 'x')}) {
            for (const std::size_t step : {std::size_t{100}, size + 1}) {
                std::ostringstream destination;
                {
                    RyGzipOStream out(destination);
                    for (std::size_t at = 0; at < size; at += step) out << data.substr(at, step);
                    ASSERT_TRUE(out.good());
                }
                const std::string member = destination.str();
                EXPECT_EQ(member.substr(0, 4), std::string("\x1F\x8B\x08\0", 4));
                EXPECT_EQ(member[8], '\x02') << "not compressed at the highest level";
                const Inflated back = inflateData(member, Wrapper::Gzip);
                EXPECT_TRUE(back.complete) << size << ", step " << step;
                EXPECT_EQ(back.bytes, data) << size << ", step " << step;
            }
        }
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
        for (int i = 0; i < 3; ++i)
            EXPECT_NE(buffer.overflow(std::streambuf::traits_type::eof()),
                      std::streambuf::traits_type::eof());
        buffer.sputn("ab", 2);
        buffer.overflow(std::streambuf::traits_type::eof());
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
    EXPECT_NO_THROW(out << makeNoise(50'000) << std::flush);
    EXPECT_TRUE(out.good());
}

TEST(GzipOStreamTest, WritesFiles) {
    const std::string path =
        testing::TempDir() + "/gzip-out-" + std::to_string(::getpid()) + "-\u00E9.gz";
    std::ofstream(path) << std::string(5'000, 'o');
    const std::string text = makeText(10'000);
    {
        RyGzipOStream out(UnicodeString::fromUTF8(path));
        out << text;
    }
    std::ifstream in(path, std::ios::binary);
    const std::string member{std::istreambuf_iterator<char>(in), {}};
    EXPECT_EQ(inflateData(member, Wrapper::Gzip).bytes, text);
    EXPECT_TRUE(inflateData(member, Wrapper::Gzip).complete);
    std::remove(path.c_str());

    RyGzipOStream lost(UnicodeString(u"/no such folder/file.gz"));
    lost << text << std::flush;
    EXPECT_TRUE(lost.good());
}

}  // namespace
}  // namespace RynCommon
