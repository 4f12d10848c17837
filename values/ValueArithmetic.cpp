// Arithmetic with values.
#include <cmath>
#include <limits>
#include <optional>

#include <RynCommon/RyValue.h>

namespace RynCommon {

namespace {

/// Integers wrap around in two's complement, which only unsigned numbers may.
int wrap(std::uint32_t bits) {
    return static_cast<int>(bits);
}
std::uint32_t bits(int number) {
    return static_cast<std::uint32_t>(number);
}

int negate(int number) {
    return wrap(0U - bits(number));
}

RyValue makeInteger(int number, RyValueUnitType unit) {
    RyValue value(number);
    value.setUnitType(unit);
    return value;
}

bool isAlike(const RyValue& a, const RyValue& b) {
    return a.getValueType() == b.getValueType() && a.getUnitType() == b.getUnitType();
}

/// Brings two numbers to one kind and one unit; false when their units do not agree.
bool reconcile(RyValue& a, RyValue& b) {
    if (isAlike(a, b)) return true;
    a.normalizeUnit();
    b.normalizeUnit();
    if (a.getUnitType() != b.getUnitType()) return false;
    if (a.getValueType() != b.getValueType()) {
        a = RyValue(a.getRealValue(), a.getUnitType());
        b = RyValue(b.getRealValue(), b.getUnitType());
    }
    return true;
}

/// Computes with two numbers of like unit. `ofIntegers` gives an optional integer, `ofReals` a
/// float.
template <class OfIntegers, class OfReals>
RyValue computeAlike(const RyValue& left, const RyValue& right, OfIntegers ofIntegers,
                     OfReals ofReals) {
    if (!left.isNumeric() || !right.isNumeric()) return {};
    RyValue a(left);
    RyValue b(right);
    if (!reconcile(a, b)) return {};
    if (a.isReal()) return RyValue(ofReals(a.getRealValue(), b.getRealValue()), a.getUnitType());
    const std::optional<int> result = ofIntegers(a.getIntegerValue(), b.getIntegerValue());
    return result ? makeInteger(*result, a.getUnitType()) : RyValue();
}

std::optional<int> integerRemainder(int a, int b) {
    if (b == 0) return std::nullopt;
    // INT_MIN % -1 overflows in the processor.
    const int remainder = b == -1 ? 0 : a % b;
    const bool signsDiffer = (remainder < 0) != (a < 0);
    return signsDiffer ? wrap(bits(remainder) - bits(b)) : remainder;
}

/// A factor: percentages as their hundredth, other numbers in their canonical unit.
struct Factor {
    explicit Factor(const RyValue& value) {
        RyValue normal(value);
        normal.normalizeUnit();
        unit = normal.isPercentage() ? RYUNIT_NUMBER : normal.getUnitType();
        number = normal.getRealValue(unit);
    }
    float number = 0;
    RyValueUnitType unit = RYUNIT_NONE;
};

std::optional<RyValueUnitType> getProductUnit(RyValueUnitType a, RyValueUnitType b) {
    if (a == RYUNIT_NUMBER) return b;
    if (b == RYUNIT_NUMBER) return a;
    if (a == RYUNIT_PT && b == RYUNIT_PT) return RYUNIT_AREA;
    if ((a == RYUNIT_AREA && b == RYUNIT_PT) || (a == RYUNIT_PT && b == RYUNIT_AREA))
        return RYUNIT_VOLUME;
    return std::nullopt;
}

std::optional<RyValueUnitType> getQuotientUnit(RyValueUnitType a, RyValueUnitType b) {
    if (b == RYUNIT_NUMBER) return a;
    if (a == b) return RYUNIT_NUMBER;
    if (a == RYUNIT_VOLUME && b == RYUNIT_PT) return RYUNIT_AREA;
    if (a == RYUNIT_VOLUME && b == RYUNIT_AREA) return RYUNIT_PT;
    if (a == RYUNIT_AREA && b == RYUNIT_PT) return RYUNIT_PT;
    return std::nullopt;
}

template <class GetUnit, class OfReals>
RyValue computeFactors(const RyValue& left, const RyValue& right, GetUnit getUnit,
                       OfReals ofReals) {
    if (!left.isNumeric() || !right.isNumeric()) return {};
    const Factor a(left);
    const Factor b(right);
    const std::optional<RyValueUnitType> unit = getUnit(a.unit, b.unit);
    return unit ? RyValue(ofReals(a.number, b.number), *unit) : RyValue();
}

/// Rounding serves plain numbers only. It is done in double, where adding a half is exact.
template <class Round>
RyValue roundNumber(const RyValue& value, Round round) {
    if (!value.isNumber()) return {};
    if (value.isInteger()) return value;
    return RyValue(static_cast<float>(round(static_cast<double>(value.getRealValue()))));
}

}  // namespace

RyValue& RyValue::operator+=(const RyValue& other) {
    return *this = computeAlike(
               *this, other, [](int a, int b) { return wrap(bits(a) + bits(b)); },
               [](float a, float b) { return a + b; });
}

RyValue& RyValue::operator-=(const RyValue& other) {
    return *this = computeAlike(
               *this, other, [](int a, int b) { return wrap(bits(a) - bits(b)); },
               [](float a, float b) { return a - b; });
}

RyValue& RyValue::operator*=(const RyValue& other) {
    return *this =
               computeFactors(*this, other, getProductUnit, [](float a, float b) { return a * b; });
}

RyValue& RyValue::operator/=(const RyValue& other) {
    return *this = computeFactors(*this, other, getQuotientUnit,
                                  [](float a, float b) { return a / b; });
}

RyValue& RyValue::operator%=(const RyValue& other) {
    return *this = computeAlike(*this, other, integerRemainder,
                                [](float a, float b) { return std::fmod(a, b); });
}

RyValue RyValue::operator-() const {
    if (isInteger()) return makeInteger(negate(integer_), getUnitType());
    return isReal() ? RyValue(0 - real_, getUnitType()) : RyValue();
}

RyValue RyValue::abs() const {
    if (isInteger()) return makeInteger(integer_ < 0 ? negate(integer_) : integer_, getUnitType());
    return isReal() ? RyValue(std::fabs(real_), getUnitType()) : RyValue();
}

RyValue RyValue::floor() const {
    return roundNumber(*this, [](double x) { return std::floor(x); });
}

RyValue RyValue::ceiling() const {
    return roundNumber(*this, [](double x) { return std::ceil(x); });
}

RyValue RyValue::round() const {
    return roundNumber(*this, [](double x) { return std::floor(x + 0.5); });
}

}  // namespace RynCommon
