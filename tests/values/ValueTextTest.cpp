// The text forms of values.
#include <limits>

#include <RynCommon/RyNameTable.h>
#include <RynCommon/RyNamedValue.h>
#include <RynCommon/RyUtil.h>
#include <RynCommon/RyValue.h>
#include <gtest/gtest.h>

#include "tests/values/ValueTestSupport.h"

namespace RynCommon {
namespace {

TEST(ValueText, ToString) {
    // Numbers of names interned here ascend in this order.
    const RyName a(u"a");
    const RyName z(u"a name of this test");
    ASSERT_LT(RyNameEnum(a), RyNameEnum(z));
    RyValue sparse;
    sparse.makeCompound();
    sparse.setNamedItem(RyName(), 3);
    sparse.setNamedItem(a, RyValue());
    sparse.setNamedItem(z, u"x y");
    RyValue onlyNull;
    onlyNull.makeCompound();
    onlyNull.setNamedItem(a, RyValue());
    RyValue nested;
    nested.makeCompound();
    nested.setNamedItem(RyName(), sparse);
    const std::pair<RyValue, const char*> rows[] = {
        {RyValue(), ""},
        {1e6, "1e+06"},
        {0.1, "0.1"},
        {makeInteger(50, RYUNIT_PERCENTAGE), "50%"},
        {RyValue(1.0F / 3, RYUNIT_KHZ), "0.333333kHz"},
        {RyValue(7, RYUNIT_AREA), "7"},
        {RyValue(7, static_cast<RyValueUnitType>(25)), "7"},
        {makeInteger(0x1F600, RYUNIT_CHARACTER), "\xF0\x9F\x98\x80"},
        {makeInteger(0x110000, RYUNIT_CHARACTER), ""},
        {makeInteger(-1, RYUNIT_CHARACTER), ""},
        {makeInteger(0xABCDEF, RYUNIT_COLOR), "#ABCDEF"},
        {makeInteger(0x7F00000A, RYUNIT_COLOR), "#00000A"},
        {RN_auto, "auto"},
        {u"a \"b\"", "a \"b\""},
        {static_cast<RyRCObject*>(nullptr), ""},
        {sparse, "{.: 3; a name of this test: x y}"},
        {onlyNull, "{}"},
        {nested, "{.: {.: 3; a name of this test: x y}}"},
    };
    for (const auto& [value, expected] : rows) {
        EXPECT_EQ(s(value.toString()), expected);
        EXPECT_EQ(s(UnicodeString(value)), expected);
    }
}

TEST(ValueText, ToValueTextIsWhatParsingReads) {
    const int last = RyNameTable::getSharedNameTable()->getNameLast();
    RyValue compound;
    compound.makeCompound();
    compound.setNamedItem(RN_value, u"x; y");
    const std::pair<RyValue, const char*> rows[] = {
        {u"12pt", "\"12pt\""},
        {u"a name of nobody", "a name of nobody"},
        {u"unheard-of-in-value-texts", "\"unheard-of-in-value-texts\""},
        {RyValue(u"say \"a\"", RYUNIT_LITERAL), "'say \"a\"'"},
        {u"", ""},
        {RyValue(u"a b", RYUNIT_URI), "url(\"a b\")"},
        {RyValue(1234567.5, RYUNIT_PT), "1234567.5pt"},
        {1e-7, "0.0000001"},
        {RyValue(-std::numeric_limits<float>::infinity(), RYUNIT_PT),
         "-900000000000000000000000000000000000000pt"},
        {RN_auto, "auto"},
        {compound, "{value: \"x; y\"}"},
    };
    for (const auto& [value, expected] : rows) EXPECT_EQ(s(value.toValueText()), expected);
    EXPECT_EQ(RyNameTable::getSharedNameTable()->getNameLast(), last) << "something was interned";
}

}  // namespace
}  // namespace RynCommon
