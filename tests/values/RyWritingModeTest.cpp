// Writing modes and orientations.
#include <cstdlib>
#include <limits>
#include <string>

#include <RynCommon/RyOrientation.h>
#include <RynCommon/RyValue.h>
#include <RynCommon/RyWritingMode.h>
#include <gtest/gtest.h>

#include "tests/values/ValueTestSupport.h"

namespace RynCommon {
namespace {

std::string textOf(RyNameEnum name) {
    return s(RyName(name).toString());
}

TEST(RyOrientation, BringsAnglesToQuarterTurns) {
    for (int degrees = -1000; degrees <= 1000; ++degrees) {
        const RyOrientation orientation(degrees);
        // Halves go away from zero.
        const int turns = (std::abs(degrees) + 45) / 90 % 4;
        const int expected = (degrees < 0 ? 4 - turns : turns) % 4 * 90;
        ASSERT_EQ(int(orientation), expected) << degrees;
        ASSERT_EQ(orientation.isPerpendicular(), expected % 180 == 90) << degrees;
        ASSERT_EQ(RyValue(orientation), RyValue(expected)) << degrees;
    }
    EXPECT_EQ(int(RyOrientation(std::numeric_limits<int>::max())), 90);
    EXPECT_EQ(int(RyOrientation(std::numeric_limits<int>::min())), 270);
    EXPECT_EQ(int(RyOrientation(RyValue(89.6, RYUNIT_DEG))), 90);
    EXPECT_EQ(int(RyOrientation(RyValue(u"90"))), 0);
}

const struct {
    const char* name;
    const char* directions;  // inline, block, shift, paging; by their first letters
} MODES[8] = {{"lr-tb", "ltbl"}, {"rl-tb", "rtbr"}, {"tb-rl", "trlr"}, {"bt-rl", "brlr"},
              {"lr-bt", "lbbl"}, {"rl-bt", "rbbr"}, {"tb-lr", "tlrl"}, {"bt-lr", "blrl"}};

std::string fullDirection(char letter) {
    switch (letter) {
        case 'l':
            return "left-to-right";
        case 'r':
            return "right-to-left";
        case 't':
            return "top-to-bottom";
        default:
            return "bottom-to-top";
    }
}

TEST(RyWritingMode, Table) {
    for (int i = 0; i < 8; ++i) {
        const RyWritingMode mode(RyName(UnicodeString::fromUTF8(MODES[i].name)));
        const char* const letters = MODES[i].directions;
        EXPECT_EQ(mode.getIndex(), i);
        EXPECT_EQ(textOf(mode), MODES[i].name);
        EXPECT_EQ(RyValue(mode), RyValue(mode.getName()));
        EXPECT_EQ(textOf(mode.getIPDirection()), fullDirection(letters[0]));
        EXPECT_EQ(textOf(mode.getBPDirection()), fullDirection(letters[1]));
        EXPECT_EQ(textOf(mode.getShiftDirection()), fullDirection(letters[2]));
        EXPECT_EQ(textOf(mode.getPagingDirection()), fullDirection(letters[3]));
        EXPECT_EQ(mode.isLTR(), letters[0] == 'l');
        EXPECT_EQ(mode.isRTL(), letters[0] == 'r');
        EXPECT_EQ(mode.isTTB(), letters[0] == 't');
        EXPECT_EQ(mode.isBTT(), letters[0] == 'b');
        EXPECT_EQ(mode.isRtlOrBtt(), letters[0] == 'r' || letters[0] == 'b');
        EXPECT_EQ(mode.isVerticalText(), letters[0] == 't' || letters[0] == 'b');
        EXPECT_EQ(mode.isBPDirLtrOrBtt(), letters[1] == 'l' || letters[1] == 'b');
        EXPECT_EQ(mode.isBPDirRtlOrBtt(), letters[1] == 'r' || letters[1] == 'b');
        const bool leftIsOdd = letters[3] == 'r';
        EXPECT_EQ(mode.leftRight2oddEven(RN_left), leftIsOdd ? RN_odd : RN_even);
        EXPECT_EQ(mode.leftRight2oddEven(RN_right), leftIsOdd ? RN_even : RN_odd);
        EXPECT_EQ(mode.leftRight2oddEven(RN_odd), RN_odd);
        for (const RyNameEnum name : {RN_left, RN_right, RN_auto})
            EXPECT_EQ(mode.oddEven2leftRight(mode.leftRight2oddEven(name)), name);
    }
}

TEST(RyWritingMode, FromNames) {
    const struct {
        const char16_t* mode;
        const char16_t* direction;  // null: from one name
        int index;
    } rows[] = {
        {u"lr", nullptr, 0},
        {u"rl", nullptr, 1},
        {u"tb", nullptr, 2},
        {u"", nullptr, 0},
        {u"lr-tb", u"rtl", 1},
        {u"rl-tb", u"ltr", 0},
        {u"top-to-bottom", u"right-to-left", 1},
        {u"tb-rl", u"bottom-to-top", 3},
        {u"right-to-left", u"rtl", 3},
        {u"left-to-right", u"bottom-to-top", 7},
        {u"tb", u"rtl", 0},
    };
    for (const auto& row : rows) {
        const RyName mode{UnicodeString(row.mode)};
        const RyWritingMode made = row.direction == nullptr
                                       ? RyWritingMode(mode)
                                       : RyWritingMode(mode, RyName(UnicodeString(row.direction)));
        EXPECT_EQ(made.getIndex(), row.index)
            << s(row.mode) << ", " << s(UnicodeString(row.direction));
    }
}

TEST(RyWritingMode, IsPerpendicularTo) {
    const RyWritingMode horizontal(RN_rl_tb);
    const RyWritingMode vertical(RN_tb_lr);
    for (const int degrees : {0, 90, 180, 270}) {
        const bool isTurned = degrees % 180 != 0;
        EXPECT_EQ(horizontal.isPerpendicularTo(RN_lr_bt, degrees), isTurned);
        EXPECT_EQ(vertical.isPerpendicularTo(RN_bt_rl, degrees), isTurned);
        EXPECT_EQ(horizontal.isPerpendicularTo(vertical, degrees), !isTurned);
        EXPECT_EQ(vertical.isPerpendicularTo(horizontal, degrees), !isTurned);
    }
}

}  // namespace
}  // namespace RynCommon
