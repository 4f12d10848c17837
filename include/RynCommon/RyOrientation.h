// A rotation in quarter turns.
#pragma once

#include <concepts>

#include <RynCommon/Forward.h>

namespace RynCommon {

/// A rotation by 0, 90, 180 or 270 degrees, counter-clockwise.
class RYNCOMMON_API RyOrientation {
public:
    constexpr RyOrientation() = default;
    /// Any angle in degrees, brought to the nearest quarter turn (halves away from zero).
    RyOrientation(int degrees);
    /// The value's integer value, in the same way.
    template <std::same_as<RyValue> Value>
    RyOrientation(const Value& value) : RyOrientation(fromValue(value)) {}

    bool isPerpendicular() const { return degrees_ == 90 || degrees_ == 270; }
    constexpr operator int() const { return degrees_; }
    /// A plain integer.
    operator RyValue() const;

private:
    static int fromValue(const RyValue& value);

    std::int32_t degrees_ = 0;
};

}  // namespace RynCommon
