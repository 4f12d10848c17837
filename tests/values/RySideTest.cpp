// Sides and the names of properties that bear one.
#include <string>
#include <vector>

#include <RynCommon/RyOrientation.h>
#include <RynCommon/RySide.h>
#include <RynCommon/RyValue.h>
#include <RynCommon/RyWritingMode.h>
#include <gtest/gtest.h>

#include "tests/values/ValueTestSupport.h"

namespace RynCommon {
namespace {

constexpr RyNameEnum SIDES[8] = {RN_before, RN_after,  RN_start, RN_end,
                                 RN_top,    RN_bottom, RN_left,  RN_right};
constexpr RyNameEnum MODES[8] = {RN_lr_tb, RN_rl_tb, RN_tb_rl, RN_bt_rl,
                                 RN_lr_bt, RN_rl_bt, RN_tb_lr, RN_bt_lr};

std::string textOf(RyName name) {
    return s(name.toString());
}
RyName nameOf(const std::string& text) {
    return RyName(UnicodeString::fromUTF8(text));
}

TEST(RySide, IndexNamesAndClasses) {
    for (int i = 0; i < 8; ++i) {
        const RySide side(i);
        EXPECT_EQ(side.getName(), SIDES[i]);
        EXPECT_EQ(RySide(SIDES[i]), side);
        EXPECT_EQ(side.getIndex(), i);
        EXPECT_EQ(side.isRelative(), i < 4);
        EXPECT_EQ(side.isAbsolute(), i >= 4);
        EXPECT_EQ(side.isBlock(), i / 2 == 0);
        EXPECT_EQ(side.isInline(), i / 2 == 1);
        EXPECT_EQ(side.isVertical(), i / 2 == 2);
        EXPECT_EQ(side.isHorizontal(), i / 2 == 3);
        EXPECT_EQ(side.toOpposite().getIndex(), i % 2 == 0 ? i + 1 : i - 1);
        EXPECT_EQ(RyValue(side), RyValue(SIDES[i]));
    }
    for (const RySide& none : {RySide(), RySide(-1), RySide(8), RySide(RN_auto)}) {
        EXPECT_EQ(none.getIndex(), -1);
        EXPECT_TRUE(none.getName().isEmpty());
        EXPECT_FALSE(none.isAbsolute() || none.isRelative());
        EXPECT_EQ(none.toOpposite(), RySide());
        EXPECT_EQ(none.rotate(90), RySide());
        EXPECT_EQ(none.toAbsolute(RN_tb), RySide());
        EXPECT_EQ(none.toRelative(RN_tb), RySide());
    }
}

/// The side where progression in a direction begins.
RySide getOrigin(RyNameEnum direction) {
    switch (direction) {
        case RN_left_to_right:
            return RN_left;
        case RN_right_to_left:
            return RN_right;
        case RN_top_to_bottom:
            return RN_top;
        default:
            return RN_bottom;
    }
}

TEST(RySide, RelativeSidesFollowTheProgression) {
    for (const RyNameEnum modeName : MODES) {
        const RyWritingMode mode(modeName);
        const RySide start = getOrigin(mode.getIPDirection());
        const RySide before = getOrigin(mode.getBPDirection());
        EXPECT_EQ(RySide(RN_start).toAbsolute(mode), start);
        EXPECT_EQ(RySide(RN_end).toAbsolute(mode), start.toOpposite());
        EXPECT_EQ(RySide(RN_before).toAbsolute(mode), before);
        EXPECT_EQ(RySide(RN_after).toAbsolute(mode), before.toOpposite());
        for (int i = 0; i < 8; ++i) {
            const RySide side(i);
            EXPECT_EQ(side.toAbsolute(mode).toRelative(mode),
                      side.isRelative() ? side : side.toRelative(mode));
            EXPECT_EQ(side.toRelative(mode).toAbsolute(mode),
                      side.isAbsolute() ? side : side.toAbsolute(mode));
            EXPECT_TRUE(side.toAbsolute(mode).isAbsolute() && side.toRelative(mode).isRelative());
        }
    }
}

TEST(RySide, RotationTurnsAbsoluteSidesCounterClockwise) {
    const RySide turned[4] = {RN_left, RN_bottom, RN_right, RN_top};
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(turned[i].rotate(90), turned[(i + 1) % 4]);
        EXPECT_EQ(turned[i].rotate(180), turned[(i + 2) % 4]);
        EXPECT_EQ(turned[i].rotate(270), turned[(i + 3) % 4]);
        EXPECT_EQ(turned[i].rotate(0), turned[i]);
    }
    EXPECT_EQ(RySide(RN_start).rotate(90), RySide(RN_start));
    EXPECT_EQ(RySide(RN_start).rotate(180), RySide(RN_end));
    EXPECT_EQ(RySide(RN_after).rotate(270), RySide(RN_after));
    EXPECT_EQ(RySide(RN_after).rotate(180), RySide(RN_before));
}

struct Family {
    const char *prefix, *suffix, *stem;
    bool hasRelative, hasAbsolute;
};

constexpr Family FAMILIES[] = {
    {"border-", "-color", "border-color", true, true},
    {"border-", "-style", "border-style", true, true},
    {"border-", "-width", "border-width", true, true},
    {"border-", "-precedence", "border-precedence", true, false},
    {"margin-", "", "margin", false, true},
    {"padding-", "", "padding", true, true},
    {"region-", "", "region", true, false},
    {"space-", "", "space", true, false},
    {"", "-position", "position", false, true},
};

/// The family's name for a side; empty when it has none.
std::string makeName(const Family& family, RySide side) {
    const bool exists = side.isRelative() ? family.hasRelative : family.hasAbsolute;
    return exists ? family.prefix + textOf(side.getName()) + family.suffix : "";
}

TEST(RySide, NamesOfEveryFamilySplitJoinAndMap) {
    for (const Family& family : FAMILIES)
        for (int i = 0; i < 8; ++i) {
            const RySide side(i);
            const std::string text = makeName(family, side);
            EXPECT_EQ(textOf(side.concatName(nameOf(family.stem))), text);
            if (text.empty()) continue;
            const RyName name = nameOf(text);
            EXPECT_EQ(RySide::getSideFromName(name), side) << text;
            EXPECT_EQ(textOf(RySide::removeSideFromName(name)), family.stem) << text;
            for (const RyWritingMode mode : MODES) {
                EXPECT_EQ(textOf(RySide::toAbsoluteName(name, mode)),
                          makeName(family, side.toAbsolute(mode)));
                EXPECT_EQ(textOf(RySide::toRelativeName(name, mode)),
                          makeName(family, side.toRelative(mode)));
            }
        }
}

TEST(RySide, OtherNamesBearNoSide) {
    for (const char* text :
         {"border-top", "border-top-left-radius", "padding-box", "region-body", "space",
          "space-after-punctuation", "start-indent", "left-to-right", "left", "color", "",
          "margin-start", "border-left-precedence", "a name that is not built in"}) {
        const RyName name = nameOf(text);
        EXPECT_EQ(RySide::getSideFromName(name), RySide()) << text;
        EXPECT_EQ(RySide::removeSideFromName(name), name) << text;
        EXPECT_EQ(RySide::toAbsoluteName(name, RN_tb), name) << text;
        EXPECT_EQ(RySide::toRelativeName(name, RN_tb), name) << text;
    }
    EXPECT_EQ(RySide::getSideFromName(RyName(-5)), RySide());
    EXPECT_TRUE(RySide(RN_top).concatName(RN_color).isEmpty());
    EXPECT_TRUE(RySide().concatName(RN_padding).isEmpty());
}

TEST(RySide, Dimensions) {
    constexpr RyNameEnum INLINE = RN_inline_progression_dimension;
    constexpr RyNameEnum BLOCK = RN_block_progression_dimension;
    for (const RyWritingMode mode : MODES) {
        const bool isVertical = mode.isVerticalText();
        for (const RyNameEnum width : {RN_width, RN_min_width, RN_max_width}) {
            EXPECT_EQ(RySide::toAbsoluteName(width, mode), width);
            EXPECT_EQ(RySide::toRelativeName(width, mode), isVertical ? BLOCK : INLINE);
        }
        for (const RyNameEnum height : {RN_height, RN_min_height, RN_max_height}) {
            EXPECT_EQ(RySide::toAbsoluteName(height, mode), height);
            EXPECT_EQ(RySide::toRelativeName(height, mode), isVertical ? INLINE : BLOCK);
        }
        EXPECT_EQ(RySide::toAbsoluteName(INLINE, mode), isVertical ? RN_height : RN_width);
        EXPECT_EQ(RySide::toAbsoluteName(BLOCK, mode), isVertical ? RN_width : RN_height);
        for (const RyNameEnum dimension : {INLINE, BLOCK})
            EXPECT_EQ(RySide::toRelativeName(dimension, mode), dimension);
    }
}

}  // namespace
}  // namespace RynCommon
