// Arithmetic with values: units, wrapping, and what gives no result.
#include <cmath>
#include <limits>

#include <RynCommon/RyValue.h>
#include <gtest/gtest.h>

#include "tests/values/ValueTestSupport.h"

namespace RynCommon {
namespace {

constexpr int MIN = std::numeric_limits<int>::min();
constexpr int MAX = std::numeric_limits<int>::max();

RyValue compute(char op, const RyValue& a, const RyValue& b) {
    switch (op) {
        case '+':
            return a + b;
        case '-':
            return a - b;
        case '*':
            return a * b;
        case '/':
            return a / b;
        default:
            return a % b;
    }
}

TEST(ValueArithmetic, Results) {
    const RyValue pt2(2, RYUNIT_PT);
    const RyValue area(6, RYUNIT_AREA);
    const RyValue volume(12, RYUNIT_VOLUME);
    const char* const null = "0/0 ";
    const struct {
        char op;
        RyValue a, b;
        const char* expected;
    } rows[] = {
        {'+', 1, 2, "1/1 3"},
        {'+', MAX, 1, "1/1 -2147483648"},
        {'-', MIN, 1, "1/1 2147483647"},
        {'+', 1, 0.5, "2/1 1.5"},
        {'+', makeInteger(1, RYUNIT_EM), makeInteger(2, RYUNIT_EM), "1/3 3em"},
        {'+', RyValue(1, RYUNIT_CM), RyValue(10, RYUNIT_MM), "2/9 56.6929pt"},
        {'+', makeInteger(1, RYUNIT_IN), makeInteger(1, RYUNIT_PT), "2/9 73pt"},
        {'+', makeInteger(96, RYUNIT_DPI), 4, "1/1 100"},
        {'+', RyValue(1, RYUNIT_S), RyValue(5, RYUNIT_MS), "2/16 1005ms"},
        {'+', RyValue(1, RYUNIT_EM), RyValue(1, RYUNIT_PT), null},
        {'+', RyValue(50, RYUNIT_PERCENTAGE), 1, null},
        {'+', RyValue(1, RYUNIT_JPT), pt2, null},
        {'+', u"1", 1, null},
        {'*', 3, 4, "2/1 12"},
        {'*', pt2, RyValue(3, RYUNIT_PT), "2/30 6"},
        {'*', area, pt2, "2/31 12"},
        {'*', RyValue(50, RYUNIT_PERCENTAGE), RyValue(4, RYUNIT_PT), "2/9 2pt"},
        {'*', RyValue(50, RYUNIT_PERCENTAGE), RyValue(50, RYUNIT_PERCENTAGE), "2/1 0.25"},
        {'*', RyValue(1, RYUNIT_IN), 2, "2/9 144pt"},
        {'*', u"2", 2, null},
        {'/', 7, 2, "2/1 3.5"},
        {'/', RyValue(1, RYUNIT_IN), pt2, "2/1 36"},
        {'/', pt2, RyValue(50, RYUNIT_PERCENTAGE), "2/9 4pt"},
        {'/', area, pt2, "2/9 3pt"},
        {'/', volume, area, "2/9 2pt"},
        {'/', 1, 0, "2/1 inf"},
        {'/', 1, true, null},
        {'%', -7, 3, "1/1 -1"},
        {'%', -6, 3, "1/1 -3"},
        {'%', -4, -2, "1/1 2"},
        {'%', MIN, -1, "1/1 1"},
        {'%', MIN, MIN, "1/1 -2147483648"},
        {'%', 5, 0, null},
        {'%', -7.5, 2.0, "2/1 -1.5"},
        {'%', -6.0, 3.0, "2/1 -0"},
        {'%', 7, 2.5, "2/1 2"},
        {'%', RyValue(1, RYUNIT_IN), RyValue(50, RYUNIT_PT), "2/9 22pt"},
        {'%', RyValue(1, RYUNIT_IN), 5, null},
    };
    for (const auto& row : rows) {
        const RyValue result = compute(row.op, row.a, row.b);
        EXPECT_EQ(describe(result), row.expected)
            << describe(row.a) << ' ' << row.op << ' ' << describe(row.b);
    }
    EXPECT_FLOAT_EQ((RyValue(1, RYUNIT_CM) + RyValue(10, RYUNIT_MM)).getRealValue(), 56.692913F);
}

TEST(ValueArithmetic, AValueMayBeItsOwnOperand) {
    RyValue value(3, RYUNIT_IN);
    const RyValue& same = value;
    value += same;
    EXPECT_EQ(describe(value), "2/8 6in");
    value *= same;
    EXPECT_EQ(describe(value), "2/30 186624");
    value /= same;
    EXPECT_EQ(describe(value), "2/1 1");
    value -= same;
    EXPECT_EQ(describe(value), "2/1 0");
}

TEST(ValueArithmetic, SignAndRounding) {
    const struct {
        RyValue value;
        const char *negated, *absolute, *floor, *ceiling, *round;
    } rows[] = {
        {-3, "1/1 3", "1/1 3", "1/1 -3", "1/1 -3", "1/1 -3"},
        {MIN, "1/1 -2147483648", "1/1 -2147483648", "1/1 -2147483648", "1/1 -2147483648",
         "1/1 -2147483648"},
        {-2.5, "2/1 2.5", "2/1 2.5", "2/1 -3", "2/1 -2", "2/1 -2"},
        {2.5, "2/1 -2.5", "2/1 2.5", "2/1 2", "2/1 3", "2/1 3"},
        {RyValue(-1.5, RYUNIT_EM), "2/3 1.5em", "2/3 1.5em", "0/0 ", "0/0 ", "0/0 "},
        {makeInteger(-2, RYUNIT_PT), "1/9 2pt", "1/9 2pt", "0/0 ", "0/0 ", "0/0 "},
        {u"1", "0/0 ", "0/0 ", "0/0 ", "0/0 ", "0/0 "},
        {RyValue(), "0/0 ", "0/0 ", "0/0 ", "0/0 ", "0/0 "},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(describe(-row.value), row.negated);
        EXPECT_EQ(describe(row.value.abs()), row.absolute);
        EXPECT_EQ(describe(row.value.floor()), row.floor);
        EXPECT_EQ(describe(row.value.ceiling()), row.ceiling);
        EXPECT_EQ(describe(row.value.round()), row.round);
    }
    EXPECT_EQ(RyValue(8388609.0F).round().getRealValue(), 8388609.0F);
}

}  // namespace
}  // namespace RynCommon
