// Reading through the conversion streams. That pieces of any size give what ICU gives is the fuzz
// target's.
#include <RynCommon/RyDMCStream.h>

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <tuple>

#include "ByteSources.h"
#include "DeflateData.h"
#include "streams/EncodingName.h"
#include "tests/Text.h"

namespace RynCommon {
namespace {

UnicodeString decode(const std::string& bytes, const char* encoding) {
    std::istringstream source(bytes);
    RyDMCStream in(&source, encoding);
    UnicodeString text;
    for (char low = 0, high = 0; in.get(low);) {
        EXPECT_TRUE(in.get(high)) << "half a unit";
        text += static_cast<char16_t>((high & 0xFF) << 8 | (low & 0xFF));
    }
    return text;
}

TEST(DMCStreamTest, InvalidBytesAreReplacedAndMarksLeftOut) {
    const std::tuple<const char*, const char*, std::string, UnicodeString> rows[] = {
        {"broken pair", "Shift_JIS", "a\x81<b>", u"a\uFFFD<b>"},
        {"cut pair at the end", "Shift_JIS", "a\x81", u"a\uFFFD"},
        {"broken pair", "EUC-JP", "a\xA4<", u"a\uFFFD<"},
        {"high byte", "US-ASCII", "a\x80z", u"a\uFFFDz"},
        {"unknown escape", "ISO-2022-JP", "a\x1B(Zb", u"a\uFFFD(Zb"},
        {"lone surrogate", "UTF-16BE", std::string("\xD8\0\0a", 4), u"\uFFFDa"},
        {"odd length", "UTF-16LE", std::string("a\0b", 3), u"a\uFFFD"},
        {"empty", "Shift_JIS", "", u""},
        {"mark", "UTF-16", std::string("\xFF\xFEx\0", 4), u"x"},
        {"other mark", "UTF-16", std::string("\xFE\xFF\0x", 4), u"x"},
        {"second mark", "UTF-16LE", std::string("\xFF\xFEx\0\xFF\xFE", 6), u"x\uFEFF"},
        {"mark", "UTF-8", "\xEF\xBB\xBFx", u"x"},
        {"nothing but a mark", "UTF-8", "\xEF\xBB\xBF", u""},
        {"mark", "GB18030", "\x84\x31\x95\x33x", u"x"},
    };
    for (const auto& [what, encoding, bytes, expected] : rows)
        EXPECT_EQ(s(decode(bytes, encoding)), s(expected)) << what << " in " << encoding;
}

TEST(DMCStreamTest, NamesOfEncodings) {
    const std::pair<std::string, std::string> rows[] = {
        {"cp932", "Shift_JIS"},
        {"ISO_8859-1:1987", "ISO-8859-1"},
        {"chinesebig5", "Big5"},
        {"KoreanKSC", "KSC_5601"},
        {"", ""},
        {"no-such-encoding", ""},
        {"UTF-16,version=1", ""},
        {"ibm-943 ", ""},
        {"UTF-7", ""},
        {"IMAP-mailbox-name", ""},
        {"ebcdic-cp-us", ""},
        {"ibm-1047-s390", ""},
        {"ibm-1399", ""},
        {std::string(1000, 'a'), ""},
    };
    for (const auto& [name, canonical] : rows) {
        EXPECT_EQ(streams::getCanonicalEncodingName(name.c_str()), canonical) << name;
        std::istringstream source("abc");
        EXPECT_EQ(RyDMCStream(&source, name.c_str()).is_open(), !canonical.empty()) << name;
    }
}

TEST(DMCStreamTest, ClosedStreamsEndAtOnce) {
    std::istringstream source("abc");
    RyDMCStream unknown(&source, "no-such-encoding");
    RyDMCStream unnamed(&source, nullptr);
    RyDMCStream sourceless(nullptr, "UTF-8");
    for (RyDMCStream* in : {&unknown, &unnamed, &sourceless}) {
        EXPECT_FALSE(in->is_open());
        EXPECT_EQ(in->rdbuf()->in_avail(), -1);
        EXPECT_EQ(in->get(), EOF);
    }
    EXPECT_EQ(source.tellg(), std::streampos(0));
}

TEST(DMCStreamTest, WaitsOnlyForTheNextCharacter) {
    ChunkSource bytes("a\x8A\xBF\x8E\x9A", 1);
    std::istream source(&bytes);
    RyDMCStream in(&source, "Shift_JIS");
    for (const std::size_t count : {1U, 1U, 3U, 3U, 5U, 5U}) {
        in.get();
        EXPECT_EQ(bytes.getDelivered(), count);
    }
    EXPECT_EQ(in.get(), EOF);
}

TEST(DMCStreamTest, InAvailConvertsWhatIsReadyAndNothingElse) {
    ChunkSource bytes("xy\x8A\xBFzz\x8E", 5);
    std::istream source(&bytes);
    RyDMCStream in(&source, "Shift_JIS");
    EXPECT_EQ(in.rdbuf()->in_avail(), 0) << "nothing is known to be ready";
    source.peek();
    EXPECT_EQ(in.rdbuf()->in_avail(), 8) << "five bytes are four characters";
    EXPECT_EQ(bytes.getDelivered(), 5U);
    char block[8];
    in.read(block, 8);
    EXPECT_EQ(in.rdbuf()->in_avail(), 0);
    EXPECT_EQ(in.get(), 'z');
    EXPECT_EQ(in.rdbuf()->in_avail(), 1);
}

TEST(DMCStreamTest, SixteenBytesCanBePutBack) {
    const std::string bytes = makeText(20'000);
    for (const std::size_t position : {16U, 8200U, 39'990U}) {
        std::istringstream source(bytes);
        RyDMCStream in(&source, "ISO-8859-1");
        in.ignore(static_cast<std::streamsize>(position));
        in.peek();
        for (int i = 0; i < 16; ++i) EXPECT_TRUE(in.unget()) << position << " - " << i;
        EXPECT_EQ(in.get(), static_cast<unsigned char>(bytes[position / 2 - 8])) << position;
    }
    std::istringstream source(bytes);
    RyDMCStream in(&source, "ISO-8859-1");
    in.get();
    EXPECT_TRUE(in.unget());
    EXPECT_FALSE(in.unget()) << "nothing lies before the start";
}

TEST(DMCStreamTest, TroubleWithTheSourceEndsTheData) {
    BreakingSource broken;
    std::istream source(&broken);
    RyDMCStream in(&source, "UTF-8");
    EXPECT_EQ(in.get(), EOF);
    EXPECT_TRUE(source.bad());
    std::istream throwing(&broken);
    throwing.exceptions(std::ios_base::badbit);
    RyDMCStream second(&throwing, "UTF-8");
    EXPECT_EQ(second.get(), EOF);
    EXPECT_FALSE(second.bad());
}

}  // namespace
}  // namespace RynCommon
