// Values from texts of one token.
#include <random>

#include <RynCommon/RyNameTable.h>
#include <RynCommon/RyUtil.h>
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
        {u"1.5em", "2/3 1.5em", UNKNOWN},
        {u"-3", "1/1 -3", UNKNOWN},
        {u"+.5%", "2/2 0.5%", UNKNOWN},
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
        {u"\U0001F600", "3/23 \U0001F600", "3/23 \U0001F600"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(show(RyValue::parse, row.text), row.expected) << narrow(row.text);
        EXPECT_EQ(show(RyValue::parseNonNumeric, row.text), row.nonNumeric) << narrow(row.text);
    }
    const UnicodeString unknown[] = {u"12pt 3pt",
                                     u"- 3",
                                     u"12foo",
                                     u"12Hz",
                                     u"1e3",
                                     u"5.",
                                     u"'a' 'b'",
                                     u"'a",
                                     u"a b",
                                     u"a:b",
                                     u"foo(1)",
                                     u"rgb(1,2,3)",
                                     u"(",
                                     u"",
                                     u"  ",
                                     UnicodeString(u"a\0", 2),
                                     UnicodeString(u"\0", 1),
                                     u"\U000F0000",
                                     UnicodeString(u"\xD800", 1)};
    for (const UnicodeString& text : unknown)
        for (const Parser parser : {RyValue::parse, RyValue::parseNonNumeric})
            EXPECT_EQ(show(parser, text), UNKNOWN) << narrow(text);
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

/// Numbers of any length with known and unknown suffixes, quoted strings and rubbish.
UnicodeString makeText(std::mt19937& random) {
    static constexpr const char16_t* UNITS[] = {
        u"",    u"%", u"em",  u"ex",  u"px",   u"cm", u"mm", u"in",  u"pt",   u"pc",
        u"jpt", u"q", u"deg", u"rad", u"grad", u"ms", u"s",  u"dpi", u"twip", u"Hz"};
    static constexpr char16_t LETTERS[] = u"ab \"'\\0\n\u3042(;\xDC00";
    UnicodeString text;
    if (random() % 3 != 0) {
        text = random() % 2 == 0 ? u"-" : u"";
        for (auto n = random() % 12; n > 0; --n)
            text.append(static_cast<char16_t>(u'0' + random() % 10));
        if (random() % 16 == 0) text.append(UnicodeString(40, u'0', 40));
        if (random() % 2 == 0) text.append(u'.');
        if (random() % 16 == 0) text.append(UnicodeString(40, u'0', 40));
        for (auto n = random() % 12; n > 0; --n)
            text.append(static_cast<char16_t>(u'0' + random() % 10));
        return text + UNITS[random() % std::size(UNITS)];
    }
    for (auto n = random() % 12; n > 0; --n)
        text.append(LETTERS[random() % (std::size(LETTERS) - 1)]);
    return random() % 2 == 0 ? RyUtil::quoteString(text) : text;
}

TEST(ValueParse, ValueTextIsReadBack) {
    std::mt19937 random(5);
    int known = 0;
    for (int i = 0; i < 50'000; ++i) {
        const UnicodeString text = makeText(random);
        const RyValue value = RyValue::parse(text);
        const RyValue again = RyValue::parse(value.toValueText());
        ASSERT_EQ(again, value) << narrow(text);
        ASSERT_EQ(again.getUnitType(), value.getUnitType()) << narrow(text);
        known += value.isUnknownString() ? 0 : 1;
    }
    EXPECT_GT(known, 20'000);
    for (const char16_t* text : {u"#12abEF", u"solid", u"xyz-left-top", u"12pt 3pt", u""})
        EXPECT_EQ(RyValue::parse(RyValue::parse(text).toValueText()), RyValue::parse(text));
}

}  // namespace
}  // namespace RynCommon
