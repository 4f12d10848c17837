// The encoding loops against plain ones, for every unit and every combination of escapes.
#include "xml/serializer/CharacterWriter.h"

#include <gtest/gtest.h>

#include <unicode/ucnv.h>

#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace RynCommon {
namespace {

// One writer for many runs, so that its tables are made once.
class Written {
public:
    explicit Written(bool shiftJis) { writer_.setShiftJis(shiftJis); }

    template <class Text>
    std::string operator()(const Text& text, unsigned escapes) {
        out_.str({});
        writer_.open(&out_);
        writer_.write(text, escapes);
        writer_.drain();
        return out_.str();
    }
    void setShiftJis(bool on) { writer_.setShiftJis(on); }
    std::string name(RyName prefix, RyName localName) {
        writer_.writeName("<", prefix, localName, ">");
        out_.str({});
        writer_.drain();
        return out_.str();
    }

private:
    std::ostringstream out_;
    CharacterWriter writer_;
};

std::string reference(unsigned number) {
    return "&#" + std::to_string(number) + ";";
}

// The rules for ASCII, one after the other.
std::string expectedAscii(char16_t unit, unsigned escapes) {
    if (escapes != 0) {
        if (unit == u'&') return "&amp;";
        if (unit == u'<') return "&lt;";
        if (unit == u'>') return "&gt;";
        if (unit == u'"' && (escapes & ESCAPE_QUOTE) != 0) return "&quot;";
        if (unit == u'\'' && (escapes & ESCAPE_APOSTROPHE) != 0) return reference(unit);
        if (unit < 0x20 && (escapes & ESCAPE_CONTROLS) != 0) return reference(unit);
        if (unit == u'\r' && (escapes & ESCAPE_LINE_ENDS) != 0) return reference(unit);
    }
    if (unit < 0x20 && unit != u'\t' && unit != u'\n' && unit != u'\r') return "";
    return std::string(1, static_cast<char>(unit));
}

TEST(CharacterWriterTest, EveryAsciiUnitUnderEveryCombination) {
    Written written(false);
    for (unsigned escapes = 0; escapes < 32; ++escapes) {
        for (char16_t unit = 0; unit < 128; ++unit) {
            const std::string expected = expectedAscii(unit, escapes);
            // Alone, and at each place of a group of eight.
            EXPECT_EQ(written(UnicodeString(unit), escapes), expected) << escapes;
            for (int place = 0; place < 8; ++place) {
                UnicodeString text(u"abcdefgh");
                text.setCharAt(place, unit);
                std::string whole = "abcdefgh";
                whole.replace(static_cast<std::size_t>(place), 1, expected);
                ASSERT_EQ(written(text, escapes), whole) << escapes << " " << int{unit};
            }
        }
    }
}

TEST(CharacterWriterTest, EveryCharacterInUtf8IsAsIcuWritesIt) {
    Written written(false);
    UnicodeString text;
    for (UChar32 c = 0x80; c <= 0x10FFFF; ++c) {
        if (U_IS_SURROGATE(c)) continue;
        text.append(c);
        if (text.length() < 4096 && c != 0x10FFFF) continue;
        std::string expected;
        text.toUTF8String(expected);
        ASSERT_EQ(written(text, ESCAPE_MARKUP), expected) << std::hex << c;
        text.remove();
    }
    EXPECT_EQ(written(u"\u0085\u2028\r\u007F", ESCAPE_LINE_ENDS), "&#133;&#8232;&#13;\x7F");
}

// What is none of the characters of three bytes, at each place of a run of them.
TEST(CharacterWriterTest, LongRunsOfIdeographs) {
    Written written(false);
    const struct {
        std::u16string text;
        std::string bytes;
    } rows[] = {{u"\u2028", "&#8232;"},
                {u"\u0085", "&#133;"},
                {u"\r<", "&#13;&lt;"},
                {u"\u2027\u2029\uFFFF", "\u2027\u2029\uFFFF"},
                {u"\u0416\u0800\uFF01", "\u0416\u0800\uFF01"},
                {u"\U0001F600", "\U0001F600"},
                {{0xD83D}, "\xED\xA0\xBD"},
                {{0xDE00, 0xD83D}, "\xED\xB8\x80\xED\xA0\xBD"}};
    for (const auto& row : rows) {
        for (std::size_t at = 0; at <= 40; ++at) {
            std::string before, after;
            for (std::size_t i = 0; i < 40; ++i) (i < at ? before : after) += "\u65E5";
            const std::u16string text =
                std::u16string(at, u'\u65E5') + row.text + std::u16string(40 - at, u'\u65E5');
            ASSERT_EQ(written(UnicodeString(text.data(), static_cast<std::int32_t>(text.size())),
                              ESCAPE_LINE_ENDS | ESCAPE_MARKUP),
                      before + row.bytes + after)
                << row.bytes << " at " << at;
        }
    }
}

// What is written decodes to the unit again, or is a reference to it.
TEST(CharacterWriterTest, EveryUnitInShiftJisIsReadBack) {
    Written written(true);
    UErrorCode status = U_ZERO_ERROR;
    UConverter* const converter = ucnv_open("cp932", &status);
    ASSERT_TRUE(U_SUCCESS(status));
    int mapped = 0;
    for (unsigned unit = 0x80; unit < 0x10000; ++unit) {
        const UnicodeString text(static_cast<char16_t>(unit));
        const std::string bytes = written(text, ESCAPE_NONE);
        if (bytes == reference(unit)) continue;
        ++mapped;
        const UnicodeString back(bytes.data(), static_cast<std::int32_t>(bytes.size()), converter,
                                 status);
        ASSERT_EQ(back, text) << std::hex << unit;
    }
    ucnv_close(converter);
    EXPECT_GT(mapped, 7000);
    EXPECT_EQ(written(u"1234567\u007F\u007F", ESCAPE_LINE_ENDS), "1234567&#127;&#127;");
    EXPECT_EQ(written(u"1234567\u007F\u007F", ESCAPE_MARKUP), "1234567\x7F\x7F");
}

TEST(CharacterWriterTest, CanEncode) {
    CharacterWriter writer;
    EXPECT_TRUE(writer.canEncode(u"\u00E9"));
    writer.setShiftJis(true);
    EXPECT_TRUE(writer.canEncode(u"a\u65E5"));
    EXPECT_FALSE(writer.canEncode(u"a\u007F")) << "is read as U+001A";
    EXPECT_FALSE(writer.canEncode(u"a\u00E9"));
    EXPECT_FALSE(writer.canEncode(u"\U0001F600"));
}

// Runs as a tree keeps them come out as the same runs of UTF-16.
TEST(CharacterWriterTest, CompactTextsAreWrittenLikeStrings) {
    for (const bool shiftJis : {false, true}) {
        Written written(shiftJis);
        for (const unsigned escapes :
             {CharacterWriter::TEXT_ESCAPES, CharacterWriter::VALUE_ESCAPES}) {
            const auto check = [&](const UnicodeString& text) {
                const std::string expected = written(text, escapes);
                return written(RyCompactText(text), escapes) == expected;
            };
            UnicodeString plain;
            for (int length = 0; length < 42; ++length) {
                ASSERT_TRUE(check(plain)) << length;
                for (char16_t unit = 0; unit < 0x100; ++unit) {
                    for (const int place : {0, length / 2, length - 1}) {
                        if (length == 0) continue;
                        UnicodeString text = plain;
                        text.setCharAt(place, unit);
                        ASSERT_TRUE(check(text)) << length << " " << place << " " << int{unit};
                    }
                }
                plain.append(static_cast<char16_t>(u'a' + length % 26));
            }
            // Whatever stands next to whatever, across the end of the buffer.
            UnicodeString mixed;
            for (int i = 0; i < 200000; ++i)
                mixed.append(static_cast<char16_t>(i % 7 == 0 ? i * 31 & 0xFF : u'x'));
            ASSERT_TRUE(check(mixed));
            ASSERT_TRUE(check(UnicodeString(50000, u'"', 50000)));
            ASSERT_TRUE(check(mixed + u"\u65E5\u2028\u0416"));
        }
    }
}

// More names than are kept, some too long, again and again, and in either encoding.
TEST(CharacterWriterTest, NamesAreTheSameEachTime) {
    Written written(false);
    const RyName prefixes[] = {RyName(), RyName(UnicodeString(u"p")),
                               RyName(UnicodeString(u"q\u00E9"))};
    for (int round = 0; round < 3; ++round) {
        for (int i = 0; i < 600; ++i) {
            UnicodeString local = UnicodeString(u"name") + UnicodeString(i, u'n', i % 90);
            local.append(static_cast<char16_t>(0x4E00 + i));
            const RyName prefix = prefixes[i % 3];
            std::string expected = "<";
            prefix.toString().toUTF8String(expected);
            if (!prefix.isEmpty()) expected += ':';
            local.toUTF8String(expected);
            if (round == 0 && i == 0) written(UnicodeString(), ESCAPE_NONE);
            ASSERT_EQ(written.name(prefix, RyName(local)), expected + ">") << i;
        }
    }
    EXPECT_EQ(written.name(prefixes[1], RyName()), "<p:>");
    const RyName day(UnicodeString(u"\u65E5"));
    EXPECT_EQ(written.name(RyName(), day), "<\u65E5>");
    written.setShiftJis(true);
    EXPECT_EQ(written.name(RyName(), day), "<\x93\xFA>");
}

// Writers hand their memory on: one after the other, and more at a time than memories are kept.
TEST(CharacterWriterTest, NamesOfAnotherWriterAreInItsEncodingOnly) {
    const RyName prefix(UnicodeString(u"p"));
    const RyName day(UnicodeString(u"\u65E5"));
    const RyName accented(UnicodeString(u"\u00E9"));
    for (const bool shiftJis : {false, true, true, false, false}) {
        Written written(shiftJis);
        written(UnicodeString(), ESCAPE_NONE);
        EXPECT_EQ(written.name(prefix, day), shiftJis ? "<p:\x93\xFA>" : "<p:\u65E5>");
        EXPECT_EQ(written.name(RyName(), accented), shiftJis ? "<&#233;>" : "<\u00E9>");
    }
    for (int round = 0; round < 2; ++round) {
        std::vector<std::unique_ptr<Written>> writers;
        for (int i = 0; i < 7; ++i) {
            writers.push_back(std::make_unique<Written>(i % 2 == round));
            (*writers.back())(UnicodeString(), ESCAPE_NONE);
        }
        for (int i = 0; i < 7; ++i)
            EXPECT_EQ(writers[i]->name(RyName(), day), i % 2 == round ? "<\x93\xFA>" : "<\u65E5>");
    }
}

}  // namespace
}  // namespace RynCommon
