// Reading through the conversion streams.
#include <RynCommon/RyDMCStream.h>

#include <gtest/gtest.h>

#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include "ByteSources.h"
#include "streams/EncodingName.h"

namespace RynCommon {
namespace {

UnicodeString toText(const std::string& bytes) {
    UnicodeString text;
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2)
        text += static_cast<char16_t>(static_cast<unsigned char>(bytes[i]) |
                                      static_cast<unsigned char>(bytes[i + 1]) << 8);
    if (bytes.size() % 2 != 0) ADD_FAILURE() << "half a unit";
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

std::string escape(const UnicodeString& text) {
    std::string bytes;
    return text.unescape().toUTF8String(bytes);
}

struct Text {
    const char* encoding;
    UnicodeString text;
};

std::vector<Text> getTexts() {
    const UnicodeString japanese = u"<漢字>カタカナ ｶﾅ 表示ソ\\~|";
    return {
        {"Shift_JIS", japanese},
        {"EUC-JP", japanese},
        {"ISO-2022-JP", u"abc 漢字 def カナ"},
        {"GB18030", u"中文 €\u1E3F\U00020000\U0001F600 abc"},
        {"windows-1252", u"Grüße “quoted” €"},
        {"KoreanKSC", u"한국어 abc"},
        {"ChineseBIG5", u"繁體中文 abc"},
        {"ChineseGBK", u"简体中文 镕 abc"},
        {"UTF-16BE", u"a漢\U0001F600"},
    };
}

std::string encodeWhole(const UnicodeString& text, const char* encoding) {
    const icu::LocalUConverterPointer converter = streams::openConverter(encoding);
    UErrorCode status = U_ZERO_ERROR;
    std::string bytes(static_cast<std::size_t>(text.length()) * 8 + 16, '\0');
    const std::int32_t length =
        ucnv_fromUChars(converter.getAlias(), bytes.data(), static_cast<std::int32_t>(bytes.size()),
                        text.getBuffer(), text.length(), &status);
    EXPECT_TRUE(U_SUCCESS(status)) << encoding;
    bytes.resize(static_cast<std::size_t>(length));
    return bytes;
}

TEST(DMCStreamTest, ChunksOfAnySizeGiveTheSameText) {
    for (const auto& [encoding, text] : getTexts()) {
        UnicodeString longText;
        while (longText.length() < 10'000) longText += text;
        const std::string bytes = encodeWhole(longText, encoding);
        for (const std::size_t ready : {1U, 2U, 3U, 4U, 5U, 6U, 7U, 4095U, 4096U, 100'000U}) {
            ChunkSource chunks(bytes, ready);
            std::istream source(&chunks);
            RyDMCStream in(&source, encoding);
            ASSERT_TRUE(in.is_open()) << encoding;
            EXPECT_TRUE(readAll(in) == longText) << encoding << " in chunks of " << ready;
        }
    }
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
        {"broken three bytes", "EUC-JP", "\x8F\xB0<", u"\uFFFD\uFFFD<"},
        {"cut four bytes", "GB18030", "a\x90\x30\x81", u"a\uFFFD"},
        {"unassigned byte", "ISO-8859-7", "a\xAE<", u"a\uFFFD<"},
        {"high byte", "US-ASCII", "a\x80z", u"a\uFFFDz"},
        {"unknown escape", "ISO-2022-JP", "a\x1B(Zb", u"a\uFFFD(Zb"},
        {"lone surrogate", "UTF-16BE", std::string("\xD8\0\0a", 4), u"\uFFFDa"},
        {"overlong", "UTF-8", "a\xC0\xBC<", u"a\uFFFD\uFFFD<"},
        {"odd length", "UTF-16LE", std::string("a\0b", 3), u"a\uFFFD"},
        {"empty", "Shift_JIS", "", u""},
    };
    for (const auto& row : rows) {
        const UnicodeString text = decode(row.bytes, row.encoding);
        EXPECT_TRUE(text == row.expected)
            << row.what << " in " << row.encoding << ": " << escape(text);
    }
}

TEST(DMCStreamTest, ByteOrderMarksAreLeftOut) {
    const struct {
        const char* encoding;
        std::string bytes;
        UnicodeString expected;
    } rows[] = {
        {"UTF-16",
         std::string("\xFF\xFE"
                     "a\0",
                     4),
         u"a"},
        {"UTF-16", std::string("\xFE\xFF\0a", 4), u"a"},
        {"UTF-16LE",
         std::string("\xFF\xFE"
                     "a\0\xFF\xFE",
                     6),
         u"a\uFEFF"},
        {"UTF-8",
         "\xEF\xBB\xBF"
         "a",
         u"a"},
        {"UTF-8", "\xEF\xBB\xBF", u""},
        {"GB18030",
         "\x84\x31\x95\x33"
         "a",
         u"a"},
    };
    for (const auto& row : rows)
        EXPECT_TRUE(decode(row.bytes, row.encoding) == row.expected) << row.encoding;
}

TEST(DMCStreamTest, NamesOfEncodings) {
    const struct {
        const char *name, *canonical;
    } rows[] = {
        {"shift_jis", "Shift_JIS"}, {"cp932", "Shift_JIS"},
        {"EUC-JP", "EUC-JP"},       {"utf-8", "UTF-8"},
        {"latin1", "ISO-8859-1"},   {"ISO_8859-1:1987", "ISO-8859-1"},
        {"chinesebig5", "Big5"},    {"ChineseGBK", "GBK"},
        {"KoreanKSC", "KSC_5601"},  {"", ""},
    };
    for (const auto& row : rows) {
        const std::string canonical = streams::getCanonicalEncodingName(row.name);
        EXPECT_EQ(canonical, row.canonical) << row.name;
        std::istringstream source("abc");
        EXPECT_EQ(RyDMCStream(&source, row.name).is_open(), !canonical.empty()) << row.name;
        EXPECT_EQ(RyDMCOStreamBuf(nullptr, row.name).is_open(), false) << row.name;
    }
    for (const std::string& refused : std::initializer_list<std::string>{
             "no-such-encoding", "UTF-16,version=1", "ibm-943 ", "../../etc/passwd", "UTF-7",
             "unicode-1-1-utf-7", "IMAP-mailbox-name", "ebcdic-cp-us", "IBM037", "IBM1047",
             "ibm-1047-s390", "ibm-1140", "ibm-1390", "ibm-1399", "ibm-16684",
             std::string(1000, 'a')}) {
        EXPECT_EQ(streams::getCanonicalEncodingName(refused.c_str()), "") << refused;
        EXPECT_FALSE(streams::openConverter(refused).isValid()) << refused;
        std::istringstream source("abc");
        EXPECT_FALSE(RyDMCStream(&source, refused.c_str()).is_open()) << refused;
        EXPECT_FALSE(RyDMCOStreamBuf(nullptr, refused.c_str()).is_open()) << refused;
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
    const std::size_t demanded[] = {1, 1, 3, 3, 5, 5};
    for (const std::size_t count : demanded) {
        in.get();
        EXPECT_EQ(bytes.getDelivered(), count);
    }
    EXPECT_EQ(in.get(), EOF);
}

TEST(DMCStreamTest, InAvailConvertsWhatIsReadyAndNothingElse) {
    ChunkSource bytes(
        "ab\x8A\xBF"
        "cd\x8E",
        5);
    std::istream source(&bytes);
    RyDMCStream in(&source, "Shift_JIS");
    EXPECT_EQ(in.rdbuf()->in_avail(), 0) << "nothing is known to be ready";
    source.peek();
    EXPECT_EQ(in.rdbuf()->in_avail(), 8) << "five bytes are four characters";
    EXPECT_EQ(bytes.getDelivered(), 5U);
    char block[8];
    in.read(block, 8);
    EXPECT_EQ(in.rdbuf()->in_avail(), 0);
    EXPECT_EQ(in.get(), 'd');
    EXPECT_EQ(in.rdbuf()->in_avail(), 1);
}

TEST(DMCStreamTest, SixteenBytesCanBePutBack) {
    std::string bytes(20'000, 'x');
    for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<char>('a' + i % 26);
    for (const std::size_t position : {16U, 8192U, 8200U, 39'990U}) {
        std::istringstream source(bytes);
        RyDMCStream in(&source, "windows-1252");
        in.ignore(static_cast<std::streamsize>(position));
        in.peek();
        for (int i = 0; i < 16; ++i) EXPECT_TRUE(in.unget()) << position << " - " << i;
        EXPECT_EQ(in.get(), bytes[position / 2 - 8]) << position;
    }
    std::istringstream source(bytes);
    RyDMCStream in(&source, "windows-1252");
    in.get();
    EXPECT_TRUE(in.unget());
    EXPECT_FALSE(in.unget()) << "nothing lies before the start";
}

class BrokenSource : public std::streambuf {
protected:
    int_type underflow() override { throw std::runtime_error("broken"); }
};

TEST(DMCStreamTest, TroubleWithTheSourceEndsTheData) {
    BrokenSource broken;
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
