// Sides of a box, relative to the writing mode or absolute.
#include <RynCommon/RySide.h>

#include <RynCommon/RyOrientation.h>
#include <RynCommon/RyValue.h>
#include <RynCommon/RyWritingMode.h>

namespace RynCommon {

namespace {

enum Side : std::int8_t { BEFORE, AFTER, START, END, TOP, BOTTOM, LEFT, RIGHT };

constexpr RyNameEnum SIDE_NAMES[8] = {RN_before, RN_after,  RN_start, RN_end,
                                      RN_top,    RN_bottom, RN_left,  RN_right};

/// For each writing mode the absolute sides of before, after, start and end.
constexpr Side ABSOLUTE_SIDES[8][4] = {
    {TOP, BOTTOM, LEFT, RIGHT}, {TOP, BOTTOM, RIGHT, LEFT}, {RIGHT, LEFT, TOP, BOTTOM},
    {RIGHT, LEFT, BOTTOM, TOP}, {BOTTOM, TOP, LEFT, RIGHT}, {BOTTOM, TOP, RIGHT, LEFT},
    {LEFT, RIGHT, TOP, BOTTOM}, {LEFT, RIGHT, BOTTOM, TOP},
};

/// What becomes of top, bottom, left and right in a quarter turn counter-clockwise.
constexpr Side QUARTER_TURN[4] = {LEFT, RIGHT, BOTTOM, TOP};

}  // namespace

RySide::RySide(int index) : name_(index >= 0 && index < 8 ? SIDE_NAMES[index] : RN_EMPTY) {}

RySide::RySide(RyNameEnum name) : name_(name) {
    if (getIndex() < 0) name_ = RyName();
}

int RySide::getIndex() const {
    for (int i = 0; i < 8; ++i)
        if (SIDE_NAMES[i] == name_) return i;
    return -1;
}

RySide::operator RyValue() const {
    return RyValue(name_);
}

bool RySide::isRelative() const {
    const int index = getIndex();
    return index >= BEFORE && index <= END;
}

// Opposite sides stand next to each other, an even index first.
RySide RySide::toOpposite() const {
    const int index = getIndex();
    return index < 0 ? RySide() : RySide(index ^ 1);
}

RySide RySide::toAbsolute(const RyWritingMode& mode) const {
    return isRelative() ? RySide(int{ABSOLUTE_SIDES[mode.getIndex()][getIndex()]}) : *this;
}

RySide RySide::toRelative(const RyWritingMode& mode) const {
    const int index = getIndex();
    for (int relative = BEFORE; relative <= END; ++relative)
        if (ABSOLUTE_SIDES[mode.getIndex()][relative] == index) return RySide(relative);
    return *this;
}

RySide RySide::rotate(const RyOrientation& orientation) const {
    const int degrees = orientation;
    if (degrees == 180) return toOpposite();
    if (degrees == 0 || !isAbsolute()) return *this;
    const RySide turned(int{QUARTER_TURN[getIndex() - TOP]});
    return degrees == 90 ? turned : turned.toOpposite();
}

}  // namespace RynCommon
