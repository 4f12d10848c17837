// A length in points.
#pragma once

#include <cmath>
#include <concepts>
#include <type_traits>

#include <RynCommon/Forward.h>
#include <RynCommon/RyValueUnit.h>

namespace RynCommon {

/// A length in points (1/72 inch), kept as a float; NaN means "auto".
class RYNCOMMON_API RyLength {
public:
    constexpr RyLength() = default;
    constexpr RyLength(float points) : points_(points) {}
    /// `length` in `unit`: cm, mm, in, pt, pc, q or twip; any other unit is "auto".
    RyLength(float length, RyValueUnitType unit);
    /// See RyValue::getLengthValue.
    template <std::same_as<RyValue> Value>
    explicit RyLength(const Value& value) : points_(fromValue(value)) {}

    /// The length in `unit`; NaN for a unit that is no absolute length, jpt included.
    float getRealValue(RyValueUnitType unit = RYUNIT_PT) const;
    /// Points in one `unit`, NaN where there is no factor.
    static float getPointsPerUnit(RyValueUnitType unit);
    /// Pixels at `dpi` dots per inch, rounded half away from zero; saturates, "auto" gives 0.
    int getPixelCount(int dpi) const;

    bool isZero() const { return points_ == 0; }
    bool isNegative() const { return points_ < 0; }
    bool isAlmostZero(float eps) const { return -eps < points_ && points_ < eps; }
    bool isAlmostZeroOrNegative(float eps) const { return points_ < eps; }
    bool isAlmostEqual(const RyLength& other, float eps) const {
        const float difference = points_ - other.points_;
        return -eps < difference && difference < eps;
    }
    bool isAuto() const { return std::isnan(points_); }
    /// Beyond 100 metres either way.
    bool isInvalid() const;

    constexpr operator float() const { return points_; }

    constexpr RyLength operator+() const { return *this; }
    constexpr RyLength operator-() const { return RyLength(-points_); }
    /// Compound assignment leaves an "auto" length as it is.
    RyLength& operator+=(const RyLength& other);
    RyLength& operator-=(const RyLength& other);
    RyLength& operator*=(float factor);
    RyLength& operator/=(float divisor);

private:
    static float fromValue(const RyValue& value);

    float points_ = 0;
};

/// Arithmetic with lengths and numbers; anything with "auto" is "auto". Computed in double, which
/// rounds to the same float as arithmetic in float, and takes integers whole.
constexpr RyLength operator+(RyLength a, RyLength b) {
    return RyLength(float(a) + float(b));
}
constexpr RyLength operator-(RyLength a, RyLength b) {
    return RyLength(float(a) - float(b));
}
template <class Number>
requires std::is_arithmetic_v<Number>
constexpr RyLength operator+(RyLength a, Number b) {
    return RyLength(static_cast<float>(static_cast<double>(float(a)) + static_cast<double>(b)));
}
template <class Number>
requires std::is_arithmetic_v<Number>
constexpr RyLength operator+(Number a, RyLength b) {
    return RyLength(static_cast<float>(static_cast<double>(a) + static_cast<double>(float(b))));
}
template <class Number>
requires std::is_arithmetic_v<Number>
constexpr RyLength operator-(RyLength a, Number b) {
    return RyLength(static_cast<float>(static_cast<double>(float(a)) - static_cast<double>(b)));
}
template <class Number>
requires std::is_arithmetic_v<Number>
constexpr RyLength operator-(Number a, RyLength b) {
    return RyLength(static_cast<float>(static_cast<double>(a) - static_cast<double>(float(b))));
}
template <class Number>
requires std::is_arithmetic_v<Number>
constexpr RyLength operator*(RyLength a, Number b) {
    return RyLength(static_cast<float>(static_cast<double>(float(a)) * static_cast<double>(b)));
}
template <class Number>
requires std::is_arithmetic_v<Number>
constexpr RyLength operator*(Number a, RyLength b) {
    return RyLength(static_cast<float>(static_cast<double>(a) * static_cast<double>(float(b))));
}
template <class Number>
requires std::is_arithmetic_v<Number>
constexpr RyLength operator/(RyLength a, Number b) {
    return RyLength(static_cast<float>(static_cast<double>(float(a)) / static_cast<double>(b)));
}

}  // namespace RynCommon
