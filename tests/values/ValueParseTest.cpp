// Values from texts of one token.
#include <cstdio>
#include <random>

#include <RynCommon/RyNameTable.h>
#include <RynCommon/RyValue.h>
#include <gtest/gtest.h>

#include "tests/values/ValueTestSupport.h"

namespace RynCommon {
namespace {

constexpr const char* UNKNOWN = "?";

using Parser = RyValue (*)(const UnicodeString&);

/// Kind, unit and text; "?" for an unknown string that holds the whole text.
std::string show(Parser parser, const UnicodeString& text) {
    const RyValue value = parser(text);
    if (value.isUnknownString()) return value.getStringValue() == text ? UNKNOWN : "lost text";
    return describe(value);
}

TEST(ValueParse, ParseAndParseNonNumeric) {
    const struct {
        UnicodeString text;
        const char* expected;
        const char* nonNumeric;
    } rows[] = {
        {u"12pt", "2/9 12pt", UNKNOWN},
        {u" 12PT\n", "2/9 12pt", UNKNOWN},
        {u"12pt 3pt", UNKNOWN, UNKNOWN},
        {u"1.5em", "2/3 1.5em", UNKNOWN},
        {u"-3", "1/1 -3", UNKNOWN},
        {u"+.5%", "2/2 0.5%", UNKNOWN},
        {u"- 3", UNKNOWN, UNKNOWN},
        {u"12foo", UNKNOWN, UNKNOWN},
        {u"12Hz", UNKNOWN, UNKNOWN},
        {u"1e3", UNKNOWN, UNKNOWN},
        {u"5.", UNKNOWN, UNKNOWN},
        {u"1.0", "1/1 1", UNKNOWN},
        {u"2147483648", "2/1 2.14748e+09", UNKNOWN},
        {u"#abc", "1/24 #AABBCC", UNKNOWN},
        {u"#ffffffffff", "1/24 #FFFFFF", UNKNOWN},
        {u"solid", "3/23 solid", "3/23 solid"},
        {u" solid\t", "3/23 solid", "3/23 solid"},
        {u"\u00e9t\u00e9", "3/23 été", "3/23 été"},
        {u"'12pt'", "4/21 12pt", "4/21 12pt"},
        {u"\"a 'b'\" ", "4/21 a 'b'", "4/21 a 'b'"},
        {u"''", "4/21 ", "4/21 "},
        {u"'a' 'b'", UNKNOWN, UNKNOWN},
        {u"'a", UNKNOWN, UNKNOWN},
        {u"a b", UNKNOWN, UNKNOWN},
        {u"a:b", UNKNOWN, UNKNOWN},
        {u"foo(1)", UNKNOWN, UNKNOWN},
        {u"rgb(1,2,3)", UNKNOWN, UNKNOWN},
        {u"(", UNKNOWN, UNKNOWN},
        {u"", UNKNOWN, UNKNOWN},
        {u"  ", UNKNOWN, UNKNOWN},
        {UnicodeString(u"a\0", 2), UNKNOWN, UNKNOWN},
        {UnicodeString(u"\0", 1), UNKNOWN, UNKNOWN},
        {u"\U0001F600", "3/23 \U0001F600", "3/23 \U0001F600"},
        {u"\U000F0000", UNKNOWN, UNKNOWN},
        {UnicodeString(u"\xD800", 1), UNKNOWN, UNKNOWN},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(show(RyValue::parse, row.text), row.expected) << narrow(row.text);
        EXPECT_EQ(show(RyValue::parseNonNumeric, row.text), row.nonNumeric) << narrow(row.text);
    }
    UnicodeString bogus;
    bogus.setToBogus();
    EXPECT_TRUE(RyValue::parse(bogus).isUnknownString());
}

TEST(ValueParse, OnlyASingleNameIsInterned) {
    RyNameTable* const table = RyNameTable::getSharedNameTable();
    const int last = table->getNameLast();
    for (const char16_t* text :
         {u"never-seen-1 x", u"12never-seen-2", u"never-seen-3(", u"'never-seen-4'",
          u"#abcnever-seen-5", u"-never-seen-6", u"12.5NEVER"}) {
        RyValue::parse(text);
        RyValue::parseNonNumeric(text);
        RyValue::parseColor(text, true);
    }
    EXPECT_EQ(table->getNameLast(), last);
    RyValue::parse(u"never-seen-7");
    EXPECT_EQ(table->getNameLast(), last + 1);
}

TEST(ValueParse, HostileTexts) {
    for (const char16_t* part :
         {u"(", u"9", u".9", u"\"'", u"a", u"#", u"\U0001F600", u"-", u"f(", u"\\"}) {
        UnicodeString text(u"(");
        for (int i = 0; i < 200'000; ++i) text.append(part);
        for (const Parser parser : {RyValue::parse, RyValue::parseNonNumeric})
            EXPECT_EQ(show(parser, text), UNKNOWN) << narrow(part);
    }
    UnicodeString digits(1'000'000, u'9', 1'000'000);
    EXPECT_EQ(describe(RyValue::parse(digits)), "2/1 inf");
    EXPECT_EQ(describe(RyValue::parse(u"-" + digits + u"pt")), "2/9 -infpt");
    EXPECT_EQ(describe(RyValue::parse(u"0." + digits)), "1/1 1");
}

/// A text of one token that its value prints with all its digits.
UnicodeString makeToken(std::mt19937& random) {
    static constexpr const char16_t* UNITS[] = {
        u"",    u"%", u"em",  u"ex",  u"px",   u"cm", u"mm", u"in",  u"pt",   u"pc",
        u"jpt", u"q", u"deg", u"rad", u"grad", u"ms", u"s",  u"dpi", u"twip", u"PT"};
    static constexpr char16_t LETTERS[] = u"ab \"'\\0\n\u3042(;\xDC00";
    if (random() % 3 != 0) {
        char number[32];
        std::snprintf(number, sizeof number, "%s%.*g", random() % 2 == 0 ? "-" : "", 6,
                      static_cast<double>(random() % 1'000'000) / 1000);
        return UnicodeString::fromUTF8(number) + UNITS[random() % std::size(UNITS)];
    }
    UnicodeString text;
    for (std::size_t n = random() % 12; n > 0; --n)
        text.append(LETTERS[random() % (std::size(LETTERS) - 1)]);
    return RyValue(text).toValueText();
}

TEST(ValueParse, ValueTextIsReadBack) {
    std::mt19937 random(5);
    for (int i = 0; i < 50'000; ++i) {
        const UnicodeString text = makeToken(random);
        const RyValue value = RyValue::parse(text);
        ASSERT_FALSE(value.isUnknownString()) << narrow(text);
        ASSERT_EQ(RyValue::parse(value.toValueText()), value) << narrow(text);
    }
    for (const char16_t* text : {u"#12abEF", u"solid", u"xyz-left-top", u"'a\\b'"})
        EXPECT_EQ(RyValue::parse(RyValue::parse(text).toValueText()), RyValue::parse(text));
}

}  // namespace
}  // namespace RynCommon
