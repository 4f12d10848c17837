// The eight writing modes.
#pragma once

#include <RynCommon/Forward.h>
#include <RynCommon/RyName.h>

namespace RynCommon {

/// One of eight writing modes: how lines progress (inline direction) and how they stack (block
/// direction).
///
/// Index: 0 "lr-tb", 1 "rl-tb", 2 "tb-rl", 3 "bt-rl", 4 "lr-bt", 5 "rl-bt", 6 "tb-lr", 7 "bt-lr".
/// Bit 0: the inline progression runs right-to-left or bottom-to-top; bit 1: the text is vertical;
/// bit 2: the block progression runs bottom-to-top or left-to-right.
class RYNCOMMON_API RyWritingMode {
public:
    /// "lr-tb".
    constexpr RyWritingMode() = default;
    /// A mode name, or "lr", "rl", "tb"; any other name is "lr-tb".
    RyWritingMode(RyNameEnum name);
    RyWritingMode(RyName name) : RyWritingMode(RyNameEnum(name)) {}
    /// `mode` is a mode's name or a block-progression direction, `direction` the text direction
    /// ("right-to-left", "bottom-to-top" or "rtl" flip the inline progression where they fit).
    RyWritingMode(RyName mode, RyName direction);

    RyNameEnum getName() const;
    operator RyNameEnum() const { return getName(); }
    operator RyValue() const;
    int getIndex() const { return index_; }

    RyNameEnum getIPDirection() const;
    RyNameEnum getBPDirection() const;
    RyNameEnum getShiftDirection() const;
    RyNameEnum getPagingDirection() const;

    bool isLTR() const { return (index_ & 3) == 0; }
    bool isRTL() const { return (index_ & 3) == 1; }
    bool isTTB() const { return (index_ & 3) == 2; }
    bool isBTT() const { return (index_ & 3) == 3; }
    bool isRtlOrBtt() const { return (index_ & 1) != 0; }
    bool isVerticalText() const { return (index_ & 2) != 0; }
    bool isBPDirLtrOrBtt() const { return (index_ & 4) != 0; }
    bool isBPDirRtlOrBtt() const { return ((index_ >> 1 ^ index_ >> 2) & 1) != 0; }
    /// Whether text in `other`, turned by `orientation`, stands across text in this mode.
    bool isPerpendicularTo(const RyWritingMode& other, const RyOrientation& orientation) const;

    /// "left" and "right" as the "odd" or "even" page side of this mode's paging direction; other
    /// names unchanged.
    RyNameEnum leftRight2oddEven(RyNameEnum name) const;
    RyNameEnum oddEven2leftRight(RyNameEnum name) const;

    friend bool operator==(RyWritingMode a, RyWritingMode b) { return a.index_ == b.index_; }
    friend bool operator!=(RyWritingMode a, RyWritingMode b) { return a.index_ != b.index_; }

private:
    std::int32_t index_ = 0;
};

}  // namespace RynCommon
