// Conversion between units and normalizing.
#include "values/Units.h"

#include <cmath>
#include <map>
#include <utility>

#include <gtest/gtest.h>

#include "tests/values/ValueTestSupport.h"

namespace RynCommon {
namespace {

TEST(Units, Texts) {
    EXPECT_EQ(RyValue::getUnitString(RYUNIT_KHZ), u"kHz");
    EXPECT_TRUE(RyValue::getUnitString(RYUNIT_NUMBER).isEmpty());
}

/// Every conversion there is between two different units, as the value of 1.
std::map<std::pair<int, int>, double> makeConversions() {
    std::map<std::pair<int, int>, double> result = {{{RYUNIT_PERCENTAGE, RYUNIT_NUMBER}, 0.01},
                                                    {{RYUNIT_NUMBER, RYUNIT_PERCENTAGE}, 100},
                                                    {{RYUNIT_DPI, RYUNIT_NUMBER}, 1},
                                                    {{RYUNIT_PERCENTAGE, RYUNIT_DPI}, 1},
                                                    {{RYUNIT_RAD, RYUNIT_DEG}, 57.295776},
                                                    {{RYUNIT_GRAD, RYUNIT_DEG}, 0.9},
                                                    {{RYUNIT_DEG, RYUNIT_RAD}, 0.017453292},
                                                    {{RYUNIT_GRAD, RYUNIT_RAD}, 0.015707964},
                                                    {{RYUNIT_RAD, RYUNIT_GRAD}, 63.661976},
                                                    {{RYUNIT_DEG, RYUNIT_GRAD}, 0.017453292},
                                                    {{RYUNIT_S, RYUNIT_MS}, 1000},
                                                    {{RYUNIT_MS, RYUNIT_S}, 0.001},
                                                    {{RYUNIT_KHZ, RYUNIT_HZ}, 1000},
                                                    {{RYUNIT_HZ, RYUNIT_KHZ}, 0.001}};
    const std::pair<int, double> lengths[] = {
        {RYUNIT_CM, 28.346457}, {RYUNIT_MM, 2.8346457}, {RYUNIT_IN, 72},    {RYUNIT_PT, 1},
        {RYUNIT_PC, 12},        {RYUNIT_Q, 0.70866142}, {RYUNIT_TWIP, 0.05}};
    for (const auto& [from, points] : lengths)
        for (const auto& [to, divisor] : lengths)
            if (from != to) result[{from, to}] = points / divisor;
    return result;
}

TEST(Units, EveryPairConvertsAsTheTableSaysOrNotAtAll) {
    const auto conversions = makeConversions();
    for (int from = 0; from < 32; ++from) {
        const RyValue real(3, static_cast<RyValueUnitType>(from));
        const RyValue integer = makeInteger(3, static_cast<RyValueUnitType>(from));
        for (int to = 0; to < 32; ++to) {
            const float result = real.getRealValue(static_cast<RyValueUnitType>(to));
            const auto found = conversions.find({from, to});
            if (to == from || to == RYUNIT_NONE) {
                EXPECT_EQ(result, 3);
            } else if (found == conversions.end()) {
                EXPECT_TRUE(std::isnan(result)) << from << " to " << to;
                continue;
            } else {
                EXPECT_NEAR(static_cast<double>(result) / (3 * found->second), 1, 3e-7)
                    << from << " to " << to;
            }
            EXPECT_EQ(integer.getRealValue(static_cast<RyValueUnitType>(to)), result);
        }
    }
    EXPECT_EQ(RyValue(1, RYUNIT_IN).getRealValue(RYUNIT_PT), 72);
    EXPECT_EQ(RyValue(1, RYUNIT_MS).getRealValue(RYUNIT_S), 1 / 1000.0F);
}

TEST(Units, Normalizing) {
    const struct {
        RyValue value;
        const char* expected;
    } rows[] = {
        {RyValue(1, RYUNIT_IN), "2/9 72pt"},
        {makeInteger(2, RYUNIT_PC), "2/9 24pt"},
        {RyValue(20, RYUNIT_TWIP), "2/9 1pt"},
        {makeInteger(2, RYUNIT_PT), "1/9 2pt"},
        {makeInteger(2, RYUNIT_JPT), "1/11 2jpt"},
        {RyValue(1, RYUNIT_RAD), "2/13 57.2958deg"},
        {makeInteger(2, RYUNIT_S), "2/16 2000ms"},
        {RyValue(2, RYUNIT_KHZ), "2/18 2000Hz"},
        {makeInteger(96, RYUNIT_DPI), "1/1 96"},
        {RyValue(96, RYUNIT_DPI), "2/1 96"},
        {RyValue(1, RYUNIT_EM), "2/3 1em"},
        {makeInteger(5, RYUNIT_PERCENTAGE), "1/2 5%"},
        {RyValue(u"1in"), "4/0 1in"},
    };
    for (const auto& row : rows) {
        RyValue value(row.value);
        value.normalizeUnit();
        EXPECT_EQ(describe(value), row.expected);
    }
}

}  // namespace
}  // namespace RynCommon
