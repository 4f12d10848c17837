// Reading through the conversion streams. That pieces of any size give what ICU gives is the fuzz
// target's.
#include <RynCommon/RyDMCStream.h>

#include <gtest/gtest.h>

#include <iterator>
#include <sstream>
#include <string>

#include "ByteSources.h"
#include "DeflateData.h"
#include "streams/EncodingName.h"
#include "tests/Text.h"

namespace RynCommon {
namespace {

UnicodeString toText(const std::string& bytes) {
    UnicodeString text;
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2)
        text += static_cast<char16_t>(static_cast<unsigned char>(bytes[i]) |
                                      static_cast<unsigned char>(bytes[i + 1]) << 8);
    EXPECT_EQ(bytes.size() % 2, 0U) << "half a unit";
    return text;
}

UnicodeString readAll(std::istream& in) {
    return toText({std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()});
}

UnicodeString decode(const std::string& bytes, const char* encoding) {
    std::istringstream source(bytes);
    RyDMCStream in(&source, encoding);
    return readAll(in);
}

TEST(DMCStreamTest, InvalidBytesBecomeReplacementCharacters) {
    const struct {
        const char *what, *encoding;
        std::string bytes;
        UnicodeString expected;
    } rows[] = {
        {"broken pair", "Shift_JIS", "a\x81<b>", u"a\uFFFD<b>"},
        {"cut pair at the end", "Shift_JIS", "a\x81", u"a\uFFFD"},
        {"broken pair", "EUC-JP", "a\xA4<", u"a\uFFFD<"},
        {"high byte", "US-ASCII", "a\x80z", u"a\uFFFDz"},
        {"unknown escape", "ISO-2022-JP", "a\x1B(Zb", u"a\uFFFD(Zb"},
        {"lone surrogate", "UTF-16BE", std::string("\xD8\0\0a", 4), u"\uFFFDa"},
        {"odd length", "UTF-16LE", std::string("a\0b", 3), u"a\uFFFD"},
        {"empty", "Shift_JIS", "", u""},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(s(decode(row.bytes, row.encoding)), s(row.expected))
            << row.what << " in " << row.encoding;
    }
}

TEST(DMCStreamTest, ByteOrderMarksAreLeftOut) {
    const struct {
        const char* encoding;
        std::string bytes;
        UnicodeString expected;
    } rows[] = {
        {"UTF-16", std::string("\xFF\xFEx\0", 4), u"x"},
        {"UTF-16", std::string("\xFE\xFF\0x", 4), u"x"},
        {"UTF-16LE", std::string("\xFF\xFEx\0\xFF\xFE", 6), u"x\uFEFF"},
        {"UTF-8", "\xEF\xBB\xBFx", u"x"},
        {"UTF-8", "\xEF\xBB\xBF", u""},
        {"GB18030", "\x84\x31\x95\x33x", u"x"},
    };
    for (const auto& row : rows)
        EXPECT_TRUE(decode(row.bytes, row.encoding) == row.expected) << row.encoding;
}

TEST(DMCStreamTest, NamesOfEncodings) {
    const struct {
        const char *name, *canonical;
    } rows[] = {
        {"cp932", "Shift_JIS"},
        {"ISO_8859-1:1987", "ISO-8859-1"},
        {"chinesebig5", "Big5"},
        {"KoreanKSC", "KSC_5601"},
        {"", ""},
    };
    for (const auto& row : rows) {
        const std::string canonical = streams::getCanonicalEncodingName(row.name);
        EXPECT_EQ(canonical, row.canonical) << row.name;
        std::istringstream source("abc");
        EXPECT_EQ(RyDMCStream(&source, row.name).is_open(), !canonical.empty()) << row.name;
    }
    for (const std::string& refused : std::initializer_list<std::string>{
             "no-such-encoding", "UTF-16,version=1", "ibm-943 ", "UTF-7", "IMAP-mailbox-name",
             "ebcdic-cp-us", "ibm-1047-s390", "ibm-1399", std::string(1000, 'a')}) {
        EXPECT_EQ(streams::getCanonicalEncodingName(refused.c_str()), "") << refused;
        std::istringstream source("abc");
        EXPECT_FALSE(RyDMCStream(&source, refused.c_str()).is_open()) << refused;
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
