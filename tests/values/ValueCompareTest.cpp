// Equality and order of values.
#include <cmath>
#include <string>
#include <vector>

#include <RynCommon/RyNamedValue.h>
#include <RynCommon/RyValue.h>
#include <gtest/gtest.h>

#include "tests/values/ValueTestSupport.h"

namespace RynCommon {
namespace {

RyValue makeCompound(int entry, RyValueUnitType unit) {
    RyValue value;
    value.makeCompound();
    value.setNamedItem(RN_value, entry);
    value.setUnitType(unit);
    return value;
}

TEST(ValueCompare, Pairs) {
    const RyValue compound = makeCompound(1, RYUNIT_NONE);
    const struct {
        RyValue a, b;
        char relation;  // '<', '=', '>', or '!' for unequal without an order
    } rows[] = {
        {RyValue(), RyValue(), '='},
        {-1, 1, '<'},
        {1, 1.0, '='},
        {RyValue(1, RYUNIT_IN), RyValue(72, RYUNIT_PT), '='},
        {RyValue(1, RYUNIT_CM), RyValue(72, RYUNIT_PT), '<'},
        {makeInteger(72, RYUNIT_PT), makeInteger(1, RYUNIT_IN), '='},
        {makeInteger(96, RYUNIT_DPI), 96, '='},
        {RyValue(99, RYUNIT_EM), RyValue(1, RYUNIT_PT), '<'},
        {RyValue(1, RYUNIT_PERCENTAGE), 0.01, '>'},
        {std::nanf(""), std::nanf(""), '!'},
        {u"\uFFFD", u"\U0001F600", '>'},
        {u"b", RyValue(u"a", RYUNIT_LITERAL), '<'},
        {u"auto", RN_auto, '='},
        {RyValue(u"auto", RYUNIT_URI), RN_auto, '='},
        {RN_auto, u"autp", '<'},
        {u"", RyName(), '='},
        {RyValue(), 0, '<'},
        {1000, u"1000", '<'},
        {u"z", compound, '<'},
        {compound, compound, '='},
    };
    for (const auto& row : rows) {
        const bool isEqual = row.relation == '=';
        const bool isLess = row.relation == '<';
        const bool isGreater = row.relation == '>';
        const std::string pair = describe(row.a) + ", " + describe(row.b);
        EXPECT_EQ(row.a == row.b, isEqual) << pair;
        EXPECT_EQ(row.b == row.a, isEqual) << pair;
        EXPECT_EQ(row.a != row.b, !isEqual) << pair;
        EXPECT_EQ(row.a < row.b, isLess) << pair;
        EXPECT_EQ(row.b > row.a, isLess) << pair;
        EXPECT_EQ(row.b < row.a, isGreater) << pair;
        EXPECT_EQ(row.a <= row.b, isLess || isEqual) << pair;
        EXPECT_EQ(row.a >= row.b, isGreater || isEqual) << pair;
    }
    EXPECT_NE(makeCompound(1, RYUNIT_NONE), makeCompound(1, RYUNIT_NONE));
    EXPECT_EQ(makeCompound(1, RYUNIT_COLOR), makeCompound(1, RYUNIT_COLOR));
    EXPECT_NE(makeCompound(1, RYUNIT_COLOR), makeCompound(2, RYUNIT_COLOR));
}

/// Strings and names apart: the two are compared by text, names among themselves by number.
std::vector<RyValue> makePool(bool hasNames) {
    std::vector<RyValue> pool = {RyValue(), RyValue(static_cast<RyRCObject*>(nullptr)),
                                 makeCompound(1, RYUNIT_NONE), makeCompound(1, RYUNIT_NONE)};
    for (int unit = 0; unit < 32; ++unit) {
        const auto unitType = static_cast<RyValueUnitType>(unit);
        for (const int number : {-7, 3}) {
            pool.push_back(makeInteger(number, unitType));
            pool.emplace_back(static_cast<float>(number) * 1.5F, unitType);
        }
    }
    for (const char16_t* text : {u"", u"a", u"b", u"auto"}) {
        if (hasNames)
            pool.emplace_back(RyName(UnicodeString(text)));
        else
            for (const RyValueUnitType unit : {RYUNIT_NONE, RYUNIT_LITERAL, RYUNIT_URI})
                pool.emplace_back(text, unit);
    }
    return pool;
}

/// Irreflexive and asymmetric, and both "less" and "neither is less" are transitive.
void expectStrictWeakOrder(const std::vector<RyValue>& pool) {
    const std::size_t count = pool.size();
    std::vector<std::vector<bool>> less(count, std::vector<bool>(count));
    for (std::size_t a = 0; a < count; ++a)
        for (std::size_t b = 0; b < count; ++b) less[a][b] = pool[a] < pool[b];
    const auto same = [&](std::size_t a, std::size_t b) { return !less[a][b] && !less[b][a]; };
    for (std::size_t a = 0; a < count; ++a)
        for (std::size_t b = 0; b < count; ++b) {
            const std::string pair = describe(pool[a]) + ", " + describe(pool[b]);
            ASSERT_FALSE(less[a][b] && less[b][a]) << pair;
            ASSERT_TRUE(pool[a] != pool[b] || same(a, b)) << pair;
            for (std::size_t c = 0; c < count; ++c) {
                const bool isLess = less[a][b] && less[b][c];
                const bool isSame = same(a, b) && same(b, c);
                if ((isLess && !less[a][c]) || (isSame && !same(a, c)))
                    FAIL() << pair << ", " << describe(pool[c]);
            }
        }
}

TEST(ValueCompare, IsAStrictWeakOrder) {
    for (const bool hasNames : {false, true}) expectStrictWeakOrder(makePool(hasNames));
}

}  // namespace
}  // namespace RynCommon
