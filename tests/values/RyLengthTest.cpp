// Lengths.
#include <cmath>
#include <limits>

#include <RynCommon/RyLength.h>
#include <RynCommon/RyNamedValue.h>
#include <RynCommon/RyValue.h>
#include <gtest/gtest.h>

#include "tests/values/ValueTestSupport.h"

namespace RynCommon {
namespace {

const float NO_NUMBER = std::nanf("");

TEST(RyLength, UnitsBothWays) {
    const std::pair<RyValueUnitType, double> rows[] = {
        {RYUNIT_CM, 72 / 2.54},  {RYUNIT_MM, 72 / 25.4}, {RYUNIT_IN, 72},     {RYUNIT_PT, 1},
        {RYUNIT_PC, 12},         {RYUNIT_Q, 72 / 101.6}, {RYUNIT_TWIP, 0.05}, {RYUNIT_NONE, -1},
        {RYUNIT_PERCENTAGE, -1}, {RYUNIT_PX, -1},        {RYUNIT_JPT, -1},
    };
    for (const auto& [unit, points] : rows) {
        const RyLength length(10, unit);
        EXPECT_EQ(length.isAuto(), points < 0) << unit;
        EXPECT_EQ(std::isnan(RyLength(10.0F).getRealValue(unit)), points < 0);
        if (points < 0) continue;
        EXPECT_FLOAT_EQ(length, static_cast<float>(10 * points));
        EXPECT_FLOAT_EQ(length.getRealValue(unit), 10);
    }
}

TEST(RyLength, PixelsRoundHalvesAwayFromZeroAndSaturate) {
    const struct {
        float points;
        int dpi, pixels;
    } rows[] = {
        {3, 96, 4},
        {-3, 96, -4},
        {0.375F, 96, 1},
        {10, 0, 0},
        {10, -72, -10},
        {NO_NUMBER, 96, 0},
        {3e9F, 72, std::numeric_limits<int>::max()},
        {-3e9F, 2000000000, std::numeric_limits<int>::min()},
    };
    for (const auto& row : rows)
        EXPECT_EQ(RyLength(row.points).getPixelCount(row.dpi), row.pixels) << row.points;
}

TEST(RyLength, FromValues) {
    const auto makeCompound = [](RyName name, const RyValue& entry) {
        RyValue compound;
        compound.makeCompound();
        compound.setNamedItem(name, entry);
        return compound;
    };
    const RyValue named = makeCompound(RN_EMPTY, RyValue(2, RYUNIT_PT));
    RyValue both = makeCompound(RN_EMPTY, RyValue(2, RYUNIT_PT));
    both.setNamedItem(RN_length, RyValue(1, RYUNIT_IN));
    const struct {
        RyValue value;
        float points;
    } rows[] = {
        {RyValue(7.5, RYUNIT_PT), 7.5F},
        {makeInteger(1, RYUNIT_IN), 72},
        {named, 2},
        {both, 72},
        {makeCompound(RN_length, both), NO_NUMBER},
        {RyValue(1, RYUNIT_JPT), NO_NUMBER},
        {RyValue(1), NO_NUMBER},
        {RyValue(u"1pt"), NO_NUMBER},
        {RyValue(), NO_NUMBER},
    };
    for (const auto& row : rows) {
        const float points = row.value.getLengthValue();
        EXPECT_TRUE(std::isnan(row.points) ? std::isnan(points) : points == row.points)
            << describe(row.value) << ": " << points;
    }
}

TEST(RyLength, ComparisonAndArithmetic) {
    const RyLength a(10.0F);
    EXPECT_TRUE(RyLength().isZero() && RyLength(-0.1F).isNegative() && !a.isNegative());
    EXPECT_TRUE(a.isAlmostEqual(RyLength(10.4F), 0.5F) && !a.isAlmostEqual(RyLength(10.5F), 0.5F));
    EXPECT_TRUE(RyLength(-0.4F).isAlmostZero(0.5F) && !RyLength(-0.5F).isAlmostZero(0.5F));
    EXPECT_TRUE(RyLength(-9).isAlmostZeroOrNegative(0.5F) && !a.isAlmostZeroOrNegative(0.5F));
    EXPECT_TRUE(RyLength(-283465).isInvalid() && !RyLength(283464).isInvalid());
    EXPECT_FALSE(RyLength(NO_NUMBER).isInvalid());
    EXPECT_EQ(float(a + RyLength(2.0F)), 12);
    EXPECT_EQ(float(2 * a - 1 + 0.5), 19.5F);
    EXPECT_EQ(float(-a / 4), -2.5F);
    EXPECT_EQ(float(1 - +a), -9);
    for (const bool isNumber : {true, false}) {
        RyLength b(isNumber ? a : RyLength(NO_NUMBER));
        b += RyLength(2.0F);
        b *= 3;
        b -= RyLength(6.0F);
        b /= 2;
        EXPECT_EQ(b.isAuto(), !isNumber);
        EXPECT_EQ((a + b).isAuto(), !isNumber);
        if (isNumber) {
            EXPECT_EQ(float(b), 15);
        }
    }
}

}  // namespace
}  // namespace RynCommon
