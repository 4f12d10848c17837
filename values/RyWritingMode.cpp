// The eight writing modes.
#include <RynCommon/RyWritingMode.h>

#include <RynCommon/RyOrientation.h>
#include <RynCommon/RyValue.h>

namespace RynCommon {

namespace {

struct Mode {
    RyNameEnum name;
    RyNameEnum inlineDirection;
    RyNameEnum blockDirection;
    RyNameEnum shiftDirection;
    RyNameEnum pagingDirection;
};

constexpr RyNameEnum LTR = RN_left_to_right;
constexpr RyNameEnum RTL = RN_right_to_left;
constexpr RyNameEnum TTB = RN_top_to_bottom;
constexpr RyNameEnum BTT = RN_bottom_to_top;

constexpr Mode MODES[8] = {
    {RN_lr_tb, LTR, TTB, BTT, LTR}, {RN_rl_tb, RTL, TTB, BTT, RTL}, {RN_tb_rl, TTB, RTL, LTR, RTL},
    {RN_bt_rl, BTT, RTL, LTR, RTL}, {RN_lr_bt, LTR, BTT, BTT, LTR}, {RN_rl_bt, RTL, BTT, BTT, RTL},
    {RN_tb_lr, TTB, LTR, RTL, LTR}, {RN_bt_lr, BTT, LTR, RTL, LTR},
};

std::int32_t findMode(RyNameEnum name) {
    switch (name) {
        case RN_lr:
            return 0;
        case RN_rl:
            return 1;
        case RN_tb:
            return 2;
        default:
            break;
    }
    for (std::int32_t i = 0; i < 8; ++i)
        if (MODES[i].name == name) return i;
    return 0;
}

/// Index of the mode that keeps `mode`'s block direction and has the inline direction from the left
/// or the top; -1 for a name that is neither a mode nor a block direction.
std::int32_t findBlockDirection(RyNameEnum mode) {
    for (std::int32_t i = 0; i < 8; ++i)
        if (MODES[i].name == mode || MODES[i].blockDirection == mode) return i & ~1;
    return -1;
}

}  // namespace

RyWritingMode::RyWritingMode(RyNameEnum name) : index_(findMode(name)) {}

RyWritingMode::RyWritingMode(RyName mode, RyName direction) {
    const std::int32_t base = findBlockDirection(mode);
    if (base < 0) return;
    const RyNameEnum reverse = (base & 2) != 0 ? RN_bottom_to_top : RN_right_to_left;
    index_ = base | (direction == reverse || direction == RN_rtl ? 1 : 0);
}

RyNameEnum RyWritingMode::getName() const {
    return MODES[index_].name;
}
RyWritingMode::operator RyValue() const {
    return RyValue(getName());
}

RyNameEnum RyWritingMode::getIPDirection() const {
    return MODES[index_].inlineDirection;
}
RyNameEnum RyWritingMode::getBPDirection() const {
    return MODES[index_].blockDirection;
}
RyNameEnum RyWritingMode::getShiftDirection() const {
    return MODES[index_].shiftDirection;
}
RyNameEnum RyWritingMode::getPagingDirection() const {
    return MODES[index_].pagingDirection;
}

bool RyWritingMode::isPerpendicularTo(const RyWritingMode& other,
                                      const RyOrientation& orientation) const {
    const bool hasSameVerticality = isVerticalText() == other.isVerticalText();
    return hasSameVerticality == orientation.isPerpendicular();
}

RyNameEnum RyWritingMode::leftRight2oddEven(RyNameEnum name) const {
    const bool leftIsOdd = getPagingDirection() == RN_right_to_left;
    if (name == RN_left) return leftIsOdd ? RN_odd : RN_even;
    if (name == RN_right) return leftIsOdd ? RN_even : RN_odd;
    return name;
}

RyNameEnum RyWritingMode::oddEven2leftRight(RyNameEnum name) const {
    const bool leftIsOdd = getPagingDirection() == RN_right_to_left;
    if (name == RN_odd) return leftIsOdd ? RN_left : RN_right;
    if (name == RN_even) return leftIsOdd ? RN_right : RN_left;
    return name;
}

}  // namespace RynCommon
