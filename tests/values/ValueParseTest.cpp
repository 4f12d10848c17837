// Values from texts of one token.
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
        const char *expected, *nonNumeric;
    } rows[] = {
        {u" 12PT\n", "2/9 12pt", UNKNOWN},
        {u"+.5%", "2/2 0.5%", UNKNOWN},
        {u"1.0", "1/1 1", UNKNOWN},
        {u"#ffffffffff", "1/24 #FFFFFF", UNKNOWN},
        {u"\u00e9t\u00e9", "3/23 été", "3/23 été"},
        {u"'12pt'", "4/21 12pt", "4/21 12pt"},
        {u"\"a 'b'\" ", "4/21 a 'b'", "4/21 a 'b'"},
        {u"\U0001F600", "3/23 \U0001F600", "3/23 \U0001F600"},
        {u"-" + UnicodeString(400, u'9', 400) + u"pt", "2/9 -infpt", UNKNOWN},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(show(RyValue::parse, row.text), row.expected) << s(row.text);
        EXPECT_EQ(show(RyValue::parseNonNumeric, row.text), row.nonNumeric) << s(row.text);
    }
    std::vector<UnicodeString> unknown = split(
        "12pt 3pt|- 3|12foo|12Hz|1e3|5.|'a' 'b'|'a|a b|a:b|foo(1)|rgb(1,2,3)|(||  |\U000F0000");
    for (const UnicodeString& odd :
         {UnicodeString(u"a\0", 2), UnicodeString(u"\0", 1), UnicodeString(u"\xD800", 1)})
        unknown.push_back(odd);
    for (const UnicodeString& text : unknown)
        for (const Parser parser : {RyValue::parse, RyValue::parseNonNumeric})
            EXPECT_EQ(show(parser, text), UNKNOWN) << s(text);
    UnicodeString bogus;
    bogus.setToBogus();
    EXPECT_TRUE(RyValue::parse(bogus).isUnknownString());
}

TEST(ValueParse, OnlyASingleNameIsInterned) {
    RyNameTable* const table = RyNameTable::getSharedNameTable();
    const int last = table->getNameLast();
    for (const char16_t* text :
         {u"never-seen-1 x", u"12never-seen-2", u"never-seen-3(", u"'never-seen-4'",
          u"#abcnever-seen-5", u"rgb-icc(1,2,3,never-seen-6,0"}) {
        RyValue::parse(text);
        RyValue::parseNonNumeric(text);
        RyValue::parseColor(text, true);
    }
    EXPECT_EQ(table->getNameLast(), last);
    RyValue::parse(u"never-seen-7");
    EXPECT_EQ(table->getNameLast(), last + 1);
}

}  // namespace
}  // namespace RynCommon
