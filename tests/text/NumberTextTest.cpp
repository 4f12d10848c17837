// Numbers as text, against C's own formatting, and reading them back.
#include "text/NumberText.h"

#include <clocale>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <locale>
#include <random>
#include <string>

#include <RynCommon/RyUtil.h>
#include <gtest/gtest.h>

#include "tests/Text.h"

namespace RynCommon {
namespace {

std::string formatInC(double value) {
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%g", value);
    return buffer;
}

TEST(NumberText, RealsPrintAsInC) {
    constexpr double INF = std::numeric_limits<double>::infinity();
    const double nan = RyUtil::getNaN();
    for (const double value : {0.0, -0.0, 1.0, 0.5, 100000.0, 999999.5, 1e6, 1e-4, 9.9999e-5, 1e100,
                               1e-300, 5e-324, -INF, INF, nan, std::copysign(nan, -1.0)})
        EXPECT_EQ(s(RyUtil::toString(value)), formatInC(value));

    std::mt19937_64 random(1);
    for (int i = 0; i < 50000; ++i) {
        const std::uint64_t bits = random();
        double value = 0;
        std::memcpy(&value, &bits, sizeof value);
        ASSERT_EQ(s(RyUtil::toString(value)), formatInC(value));
        const auto fraction = static_cast<float>(static_cast<int>(bits % 2000001) - 1000000);
        const auto typical = static_cast<double>(fraction / 1000.0F);
        ASSERT_EQ(s(RyUtil::toString(typical)), formatInC(typical));
    }
}

TEST(NumberText, IntegersAtTheEndsOfTheirRange) {
    EXPECT_EQ(s(RyUtil::toString(std::numeric_limits<int>::min())), "-2147483648");
    EXPECT_EQ(s(RyUtil::toString(std::numeric_limits<long long>::min())), "-9223372036854775808");
}

struct Comma : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

TEST(NumberText, FollowsNoLocale) {
    const std::locale before = std::locale::global(std::locale(std::locale::classic(), new Comma));
    for (const char* name : {"de_DE.UTF-8", "fr_FR.UTF-8", "de_DE.utf8"})
        if (std::setlocale(LC_ALL, name) != nullptr) break;
    EXPECT_EQ(s(RyUtil::toString(12345.5)), "12345.5");
    EXPECT_EQ(s(RyUtil::toString(1234567)), "1234567");
    int position = 0;
    double value = 0;
    EXPECT_TRUE(RyUtil::parseNumber(u"1.5", position, value));
    EXPECT_EQ(value, 1.5);
    std::setlocale(LC_ALL, "C");
    std::locale::global(before);
}

TEST(NumberText, ParseNumberTakesWhatIsANumber) {
    constexpr double INF = std::numeric_limits<double>::infinity();
    const UnicodeString zeros(400, u'0', 400);
    const struct {
        UnicodeString text;
        int start;
        int end;  // -1: no number
        double value;
    } rows[] = {
        {u"12.5pt", 0, 4, 12.5},
        {u".5", 0, 2, 0.5},
        {u"1.2.3", 0, 3, 1.2},
        {u"x007", 1, 4, 7},
        {u".", 0, -1, 0},
        {u"7", 1, -1, 0},
        {u"\u0661", 0, -1, 0},
        {u"0.1000000000000000055511151231257827", 0, 36, 0.1},
        {u"1" + zeros, 0, 401, INF},
        {u"0." + zeros + u"1", 0, 403, 0},
        {zeros + u"7." + zeros, 0, 802, 7},
    };
    for (const auto& row : rows) {
        int position = row.start;
        double value = 0;
        const bool found = RyUtil::parseNumber(row.text, position, value);
        EXPECT_EQ(found, row.end >= 0) << s(row.text);
        EXPECT_EQ(position, found ? row.end : row.start) << s(row.text);
        EXPECT_EQ(value, found ? row.value : 0) << s(row.text);
    }
}

TEST(NumberText, ParseNumberRoundsAsC) {
    std::mt19937 random(2);
    for (int i = 0; i < 20000; ++i) {
        std::string digits = std::to_string(random() % 1000000);
        const int fraction = static_cast<int>(random() % 25);
        if (fraction > 0) digits += '.';
        for (int d = 0; d < fraction; ++d) digits += static_cast<char>('0' + random() % 10);
        int position = 0;
        double value = 0;
        ASSERT_TRUE(RyUtil::parseNumber(UnicodeString::fromUTF8(digits), position, value));
        ASSERT_EQ(value, std::strtod(digits.c_str(), nullptr)) << digits;
    }
}

TEST(NumberText, ParseHexNumKeepsTheLowBits) {
    const struct {
        const char16_t* text;
        int start, end;
        std::uint32_t value;
    } rows[] = {
        {u"#aBc", 1, 4, 0xABC}, {u"ffg", 0, 2, 0xFF}, {u"123456789A", 0, 10, 0x3456789A},
        {u"g", 0, 0, 0},        {u"", 0, 0, 0},
    };
    for (const auto& row : rows) {
        int position = row.start;
        std::uint32_t value = 0;
        EXPECT_EQ(RyUtil::parseHexNum(row.text, position, value), row.end != row.start);
        EXPECT_EQ(position, row.end);
        EXPECT_EQ(value, row.value);
    }
}

}  // namespace
}  // namespace RynCommon
