// A length in points.
#include <RynCommon/RyLength.h>

#include <limits>

#include <RynCommon/RyNamedValue.h>
#include <RynCommon/RyUtil.h>

#include "values/Units.h"

namespace RynCommon {

namespace {

constexpr float AUTO = std::numeric_limits<float>::quiet_NaN();

/// 100 metres.
constexpr float MAX_POINTS = 2.8346457F * 100000;

/// The entry that gives a compound its length.
RyValue getLengthEntry(const RyNamedValueMap& map) {
    const RyNamedValue named = map.getNamedItem(RN_length);
    return named.getName() == RN_length ? named.getValue() : map.getNamedItem(RN_EMPTY).getValue();
}

float getPoints(const RyValue& value) {
    return value.isAbsoluteLength() ? value.getRealValue(RYUNIT_PT) : AUTO;
}

}  // namespace

RyLength::RyLength(float length, RyValueUnitType unit) : points_(length * getPointsPerUnit(unit)) {}

float RyLength::fromValue(const RyValue& value) {
    if (const RyNamedValueMap* const map = value.getNamedValueMap())
        return getPoints(getLengthEntry(*map));
    return getPoints(value);
}

float RyLength::getRealValue(RyValueUnitType unit) const {
    return points_ / getPointsPerUnit(unit);
}

float RyLength::getPointsPerUnit(RyValueUnitType unit) {
    const Unit& row = getUnit(unit);
    const bool hasFactor = row.unitClass == UnitClass::ABSOLUTE_LENGTH && row.factor != 0;
    return hasFactor ? row.factor : AUTO;
}

int RyLength::getPixelCount(int dpi) const {
    return RyUtil::roundToInteger(static_cast<double>(points_) * dpi / 72);
}

bool RyLength::isInvalid() const {
    return std::fabs(points_) > MAX_POINTS;
}

RyLength& RyLength::operator+=(const RyLength& other) {
    if (!isAuto()) points_ += other.points_;
    return *this;
}

RyLength& RyLength::operator-=(const RyLength& other) {
    if (!isAuto()) points_ -= other.points_;
    return *this;
}

RyLength& RyLength::operator*=(float factor) {
    if (!isAuto()) points_ *= factor;
    return *this;
}

RyLength& RyLength::operator/=(float divisor) {
    if (!isAuto()) points_ /= divisor;
    return *this;
}

}  // namespace RynCommon
