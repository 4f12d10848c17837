// Writing through the conversion streams.
#include <RynCommon/RyDMCStream.h>

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <tuple>

#include "tests/Text.h"

namespace RynCommon {
namespace {

struct Options {
    bool mark = false;
    RyDMCOStreamBuf::LF_CONVERT mode = RyDMCOStreamBuf::LF_NONE;
    bool strict = false;
};

std::string encode(const UnicodeString& text, const char* encoding, const Options& options = {}) {
    std::ostringstream bytes;
    {
        RyDMCOStream out(&bytes, encoding, options.mark, options.mode, options.strict);
        out.writeString(text);
    }
    return bytes.str();
}

TEST(DMCOStreamTest, EncodesAndSubstitutes) {
    const Options mark{true, RyDMCOStreamBuf::LF_CRLF};
    const UnicodeString lines = u"a\nb\r\nc\rd\n\r\r\n";
    const std::tuple<const char*, const char*, Options, UnicodeString, std::string> rows[] = {
        {"plain", "Shift_JIS", {}, u"a漢字", "a\x8A\xBF\x8E\x9A"},
        {"geta", "Shift_JIS", {}, u"x\u0E01y", "x\x81\xACy"},
        {"geta, supplementary", "EUC-JP", {}, u"\U0001F600", "\xA2\xAE"},
        {"question mark", "windows-1252", {}, u"\u0E01€", "?\x80"},
        {"ignorable character", "US-ASCII", {}, u"a\u200Db", "a?b"},
        {"shift states end", "ISO-2022-JP", {}, u"a漢", "a\x1B$B4A\x1B(B"},
        {"geta in a shift state", "ISO-2022-JP", {}, u"漢\u0E01", "\x1B$B4A\".\x1B(B"},
        {"lone surrogate", "UTF-8", {}, UnicodeString(u"a\xD800", 2), "a\xE3\x80\x93"},
        {"big-endian", "UTF-16BE", {}, u"a", std::string("\0a", 2)},
        {"32 bits", "UTF-32", {}, u"\U0001F600", std::string("\x00\xF6\x01\x00", 4)},
        {"mark", "UTF-8", mark, u"x", "\xEF\xBB\xBFx"},
        {"mark", "UTF-16", mark, u"x", std::string("\xFF\xFEx\0", 4)},
        {"mark", "UTF-16BE", mark, u"x", std::string("\xFE\xFF\0x", 4)},
        {"mark", "UTF-32BE", mark, u"x", std::string("\0\0\xFE\xFF\0\0\0x", 8)},
        {"no mark", "Shift_JIS", mark, u"x", "x"},
        {"as it is", "US-ASCII", {false, RyDMCOStreamBuf::LF_NONE}, lines, s(lines)},
        {"LF", "US-ASCII", {false, RyDMCOStreamBuf::LF_LF}, lines, "a\nb\nc\nd\n\n\n"},
        {"CR", "US-ASCII", {false, RyDMCOStreamBuf::LF_CR}, lines, "a\rb\rc\rd\r\r\r"},
        {"CR LF",
         "US-ASCII",
         {false, RyDMCOStreamBuf::LF_CRLF},
         lines,
         "a\r\nb\r\nc\r\nd\r\n\r\n\r\n"},
    };
    for (const auto& [what, encoding, options, text, expected] : rows)
        EXPECT_EQ(encode(text, encoding, options), expected) << what << " in " << encoding;
}

TEST(DMCOStreamTest, StrictDataEndsAtTheFirstMissingCharacter) {
    std::ostringstream bytes;
    RyDMCOStream out(&bytes, "windows-1252", false, RyDMCOStreamBuf::LF_NONE, true);
    out.writeString(u"ab\u0E01cd");
    EXPECT_FALSE(out.flush());
    EXPECT_EQ(bytes.str(), "ab");
    EXPECT_FALSE(out.writeString(u"e"));
    EXPECT_FALSE(out.writeRawBuffer("f", 1));
    EXPECT_EQ(bytes.str(), "ab");
    EXPECT_EQ(encode(u"a\u00ADb", "US-ASCII", {false, RyDMCOStreamBuf::LF_NONE, true}), "a")
        << "a character that is ignored by default does not vanish either";
}

TEST(DMCOStreamTest, LongTextsInPiecesOfAnySize) {
    UnicodeString text;
    while (text.length() < 10'000) text += u"a\U0001F600\n漢";
    const std::string expected = encode(text, "UTF-8", {false, RyDMCOStreamBuf::LF_CRLF});
    EXPECT_TRUE(expected.starts_with("a😀\r\n漢a"));
    for (const int piece : {1, 255, 2048}) {
        std::ostringstream bytes;
        RyDMCOStream out(&bytes, "UTF-8", false, RyDMCOStreamBuf::LF_CRLF);
        for (int i = 0; i < text.length(); i += piece)
            out.writeString(text.tempSubString(i, piece));
        out.flush();
        EXPECT_TRUE(bytes.str() == expected) << piece;
    }
}

TEST(DMCOStreamTest, HalvesOfUnitsAndPairsSurviveAFlush) {
    std::ostringstream bytes;
    {
        RyDMCOStream out(&bytes, "UTF-8");
        for (const char c : {'\x3D', '\xD8', '\x00', '\xDE', 'x', '\0', 'y'}) {
            out.put(c);
            out.flush();
        }
        EXPECT_EQ(bytes.str(), "\xF0\x9F\x98\x80x");
    }
    EXPECT_EQ(bytes.str().size(), 5U) << "half a unit at the end is dropped";
}

TEST(DMCOStreamTest, RawBytesFollowTheText) {
    std::ostringstream bytes;
    RyDMCOStream out(&bytes, "ISO-2022-JP");
    std::istringstream raw(std::string(10'000, '='));
    EXPECT_TRUE(out.writeString(u"漢"));
    EXPECT_TRUE(out.writeRawBuffer("raw", 3));
    EXPECT_TRUE(out.writeString(u"字"));
    EXPECT_TRUE(out.writeRawStream(raw));
    EXPECT_EQ(bytes.str(), "\x1B$B4A\x1B(Braw\x1B$B;z\x1B(B" + std::string(10'000, '='));
    EXPECT_EQ(out.getOutputLength(), bytes.str().size());
}

TEST(DMCOStreamTest, TheLimitCountsWrittenBytesAndCutsNothing) {
    std::ostringstream bytes;
    RyDMCOStream out(&bytes, "UTF-8");
    out.setLimit(3);
    out.writeString(u"漢");
    EXPECT_EQ(out.getOutputLength(), 0U) << "still in the buffer";
    out.flush();
    EXPECT_EQ(out.getOutputLength(), 3U);
    EXPECT_FALSE(out.isLimitOver());
    out.writeRawBuffer("x", 1);
    EXPECT_TRUE(out.isLimitOver());
    out.writeString(u"y");
    out.flush();
    EXPECT_EQ(bytes.str(), "\xE6\xBC\xA2xy");
    out.setLimit(0);
    EXPECT_FALSE(out.isLimitOver());
}

TEST(DMCOStreamTest, ClosedAndBrokenDestinations) {
    std::ostringstream bytes;
    for (const char* const name : {"no-such-encoding", "UTF-7"}) {
        RyDMCOStream closed(&bytes, name, true);
        EXPECT_FALSE(closed.is_open());
        EXPECT_FALSE(closed.writeString(u"a"));
        EXPECT_FALSE(closed.writeRawBuffer("a", 1));
        EXPECT_FALSE(closed.put('a'));
    }
    EXPECT_EQ(bytes.str(), "");
    EXPECT_FALSE(RyDMCOStream(nullptr, "UTF-8").is_open());
    EXPECT_FALSE(RyDMCOStream(&bytes, nullptr).is_open());
    std::ostream broken(nullptr);
    RyDMCOStream out(&broken, "UTF-8");
    EXPECT_TRUE(out.is_open());
    out.writeString(u"a");
    EXPECT_FALSE(out.flush());
    EXPECT_EQ(out.getOutputLength(), 0U);
}

}  // namespace
}  // namespace RynCommon
