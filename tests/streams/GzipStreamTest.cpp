// Reading gzip data, and data that is none.
#include <RynCommon/RyGzipStream.h>

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <tuple>
#include <vector>

#include "ByteSources.h"
#include "DeflateData.h"
#include "tests/Scratch.h"

namespace RynCommon {
namespace {

using namespace std::string_literals;

std::string makeMember(unsigned flags, const std::string& fields, const std::string& data) {
    return "\x1F\x8B\x08"s + static_cast<char>(flags) + "\x01\x02\x03\x04\x00\x03"s + fields +
           deflateData(data) + std::string(8, 'T');
}

using Reading = std::tuple<const char*, std::string, std::string>;

TEST(GzipStreamTest, InflatesAMemberAndPassesTheRestThrough) {
    const std::string text = makeText(10'000);
    const std::string extra = "\x05\x00"s + "extra";
    const std::string all = extra + "name\0"s + "comment\0"s + "\xBA\xAD";
    const std::string tail = deflateData("abc");
    std::vector<Reading> rows{
        {"empty", "", ""},
        {"plain", text, text},
        {"a member", deflateData(text, Wrapper::Gzip), text},
        {"every field, wrong header CRC", makeMember(0x1E, all, text), text},
        {"no trailer", "\x1F\x8B\x08\0\0\0\0\0\0\xFF"s + tail, "abc"},
        {"a second member is left", makeMember(0, "", "one") + makeMember(0, "", "two"), "one"},
        {"header cut behind the flags", "\x1F\x8B\x08\x1E"s, ""},
        {"extra field longer than the data", "\x1F\x8B\x08\x04......\xFF\xFF"s + tail, ""},
        {"extra field's length cut", "\x1F\x8B\x08\x04......\xFF"s, ""},
        {"name without end", "\x1F\x8B\x08\x08......abc"s, ""},
        {"no deflate data", "\x1F\x8B\x08\x00......\xFF\xFF\xFF"s, ""},
    };
    for (const char* const bytes : {"\x1F", "\x1F\x8B", "\x1F\x8B\x08", "\x1F\x8B\x07\x01 x",
                                    "\x1F\x8B\x08\x20 x", "\x1F\x8C\x08\x01 x", "xyz"}) {
        rows.push_back({"passed through", bytes, bytes});
    }
    for (const auto& [what, bytes, expected] : rows) {
        for (const std::size_t step : {1, 4095, 4096, 4097, 100'000}) {
            std::istringstream source(bytes);
            RyGzipStream in(source);
            EXPECT_EQ(readInSteps(in, step), expected) << what << ", step " << step;
        }
        // From where a source stands that delivers a few bytes at a time and cannot seek.
        ChunkSource chunks("xyz" + bytes, 3);
        std::istream source(&chunks);
        source.ignore(3);
        RyGzipStream in(source);
        EXPECT_EQ(readInSteps(in, 10), expected) << what << ", not seekable";
    }
}

TEST(GzipStreamTest, TenBytesCanBePutBackAfterAnyRead) {
    const std::string text = makeText(30'000);
    for (const std::string& bytes : {text, deflateData(text, Wrapper::Gzip)}) {
        for (const std::size_t count : {10, 4097, 9000, 30'000}) {
            std::istringstream source(bytes);
            RyGzipStream in(source);
            std::string read(count, '\0');
            in.read(read.data(), static_cast<std::streamsize>(count));
            in.peek();
            in.clear();
            for (std::size_t i = 1; i <= 10; ++i) {
                in.unget();
                ASSERT_TRUE(in.good()) << count << ", " << i;
                ASSERT_EQ(in.peek(), static_cast<unsigned char>(text[count - i])) << count;
            }
            EXPECT_EQ(readInSteps(in, 500), text.substr(count - 10)) << count;
        }
    }
}

TEST(GzipStreamTest, RewindsASourceThatWasRead) {
    const std::string text = makeText(500);
    for (const std::string& bytes : {text, deflateData(text, Wrapper::Gzip)}) {
        std::istringstream source(bytes);
        readInSteps(source, 100);
        ASSERT_TRUE(source.fail());
        RyGzipStream in(source);
        EXPECT_TRUE(in.is_open());
        EXPECT_EQ(readInSteps(in, 100), text);
    }
}

TEST(GzipStreamTest, ASourceThatThrowsHasEnded) {
    const std::string member = deflateData(makeText(500), Wrapper::Gzip);
    for (std::size_t good = 0; good < 40; ++good) {
        BreakingSource buffer(member.substr(0, good));
        std::istream source(&buffer);
        source.exceptions(std::ios::badbit | std::ios::failbit | std::ios::eofbit);
        RyGzipStream in(source);
        in.exceptions(std::ios::badbit);
        EXPECT_NO_THROW(in.ignore(1'000)) << good;
        EXPECT_TRUE(in.eof()) << good;
    }
}

class GzipFileTest : public testing::Test {
protected:
    std::string read(const std::string& bytes) {
        std::ofstream(path_, std::ios::binary) << bytes;
        RyGzipStream in(path_.c_str());
        EXPECT_TRUE(in.is_open());
        return readInSteps(in, 5'000);
    }

    const ScratchFolder folder_;
    const std::string path_ = folder_.path("f\u00E9.gz");
};

TEST_F(GzipFileTest, ReadsWhatGzipProgramsRead) {
    const std::string text = makeText(20'000);
    const std::string other = makeText(3'000, 7);
    const std::string member = deflateData(text, Wrapper::Gzip);
    std::string wrongSum = member;
    wrongSum[wrongSum.size() - 6] ^= 1;
    const Reading rows[] = {
        {"empty", "", ""},
        {"plain", text, text},
        {"one member", member, text},
        {"two members", member + deflateData(other, Wrapper::Gzip), text + other},
        {"garbage behind", member + "garbage", text},
        {"one byte behind", member + "\x1F", text},
        {"zeros behind", member + std::string(5'000, '\0'), text},
        {"wrong checksum, another member", wrongSum + member, text + text},
        {"reserved flag", "\x1F\x8B\x08\x20 rest of it", ""},
        {"no trailer", member.substr(0, member.size() - 8), text},
    };
    for (const auto& [what, bytes, expected] : rows) EXPECT_EQ(read(bytes), expected) << what;
    // Members that begin anywhere in a block of input.
    for (std::size_t size = 4'060; size < 4'100; ++size) {
        const std::string noise = makeRandom(size);
        ASSERT_EQ(read(deflateData(noise, Wrapper::Gzip) + member), noise + text) << size;
    }
}

TEST_F(GzipFileTest, OpensByEveryKindOfPath) {
    EXPECT_EQ(read(deflateData("text", Wrapper::Gzip)), "text");
    const UnicodeString path = UnicodeString::fromUTF8(path_);
    RyGzipStream byText(path);
    EXPECT_EQ(readInSteps(byText, 9), "text");
    std::wstring wide;
    for (int32_t i = 0; i < path.length(); i = path.moveIndex32(i, 1))
        wide += static_cast<wchar_t>(path.char32At(i));
    RyGzipStream byWide(wide.c_str());
    EXPECT_EQ(readInSteps(byWide, 9), "text");
}

TEST_F(GzipFileTest, WhatDoesNotOpenReadsAsEmpty) {
    const std::string missing = path_ + "-missing";
    for (const char* const path : {missing.c_str(), "", static_cast<const char*>(nullptr)}) {
        RyGzipStream in(path);
        EXPECT_FALSE(in.is_open());
        EXPECT_EQ(readInSteps(in, 9), "");
    }
    RyGzipStream folder(folder_.path().c_str());
    EXPECT_EQ(readInSteps(folder, 9), "");
}

}  // namespace
}  // namespace RynCommon
