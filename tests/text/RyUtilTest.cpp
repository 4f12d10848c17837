// Rounding, clean-up and identifiers.
#include <cmath>
#include <limits>
#include <set>

#include <RynCommon/RyUUID.h>
#include <RynCommon/RyUtil.h>
#include <gtest/gtest.h>

#include "text/Cleanup.h"

namespace RynCommon {
namespace {

TEST(RyUtil, RoundToIntegerGoesAwayFromZeroAndSaturates) {
    constexpr int MIN = std::numeric_limits<int>::min();
    constexpr int MAX = std::numeric_limits<int>::max();
    const std::pair<double, int> rows[] = {
        {2.5, 3},
        {-2.5, -3},
        {2147483646.5, MAX},
        {2147483646.4, 2147483646},
        {-2147483648.4, MIN},
        {RyUtil::getNaN(), 0},
    };
    for (const auto& [value, expected] : rows)
        EXPECT_EQ(RyUtil::roundToInteger(value), expected) << value;
    EXPECT_EQ(RyUtil::roundToInteger(8388609.0F), 8388609);
    EXPECT_EQ(RyUtil::roundToInteger(-2.5F), -3);
    EXPECT_EQ(RyUtil::roundToInteger(RyUtil::getNaNf()), 0);
    EXPECT_TRUE(RyUtil::isNaN(RyUtil::getNaN()) && RyUtil::isNaN(RyUtil::getNaNf()));
    EXPECT_FALSE(RyUtil::isNaN(std::numeric_limits<double>::infinity()));
}

int releases = 0;
constinit CleanupHook hook([] { ++releases; });

TEST(RyUtil, CleanupReleasesEachEnrolledTableOnce) {
    RyUtil::cleanup();
    EXPECT_EQ(releases, 0);
    hook.enrol();
    hook.enrol();
    RyUtil::cleanup();
    EXPECT_EQ(releases, 1);
    RyUtil::cleanup();
    EXPECT_EQ(releases, 2);
}

TEST(RyUUID, IsRandomVersion4) {
    std::set<UnicodeString> seen;
    for (int i = 0; i < 100; ++i) {
        const RyUUID uuid;
        const UnicodeString text = uuid.toString();
        ASSERT_EQ(text.length(), 32);
        for (int at = 0; at < 32; ++at)
            ASSERT_GE(UnicodeString(u"0123456789ABCDEF").indexOf(text.charAt(at)), 0);
        ASSERT_EQ(text.charAt(12), u'4');
        ASSERT_GE(UnicodeString(u"89AB").indexOf(text.charAt(16)), 0);
        ASSERT_TRUE(seen.insert(text).second);
        ASSERT_EQ(RyUUID(uuid), uuid);
    }
}

}  // namespace
}  // namespace RynCommon
