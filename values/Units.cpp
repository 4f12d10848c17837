// The units of property values: what there is to know of each, and conversion between them.
#include "values/Units.h"

#include <array>
#include <limits>

#include <RynCommon/RyNameTable.h>
#include <RynCommon/RyString.h>

namespace RynCommon {

namespace {

constexpr float POINTS_PER_CM = static_cast<float>(72 / 2.54);
constexpr float POINTS_PER_MM = static_cast<float>(72 / 25.4);
constexpr float POINTS_PER_Q = static_cast<float>(72 / 101.6);

constexpr std::array<Unit, 32> makeUnits() {
    using enum UnitClass;
    std::array<Unit, 32> units{};
    for (std::uint8_t i = 0; i < 32; ++i) units[i].canonical = static_cast<RyValueUnitType>(i);
    units[RYUNIT_NUMBER] = {RN_EMPTY, NUMBER, RYUNIT_NUMBER, 1};
    units[RYUNIT_PERCENTAGE] = {RN_EMPTY, PERCENTAGE, RYUNIT_PERCENTAGE, 1};
    units[RYUNIT_EM] = {RN_em, RELATIVE_LENGTH, RYUNIT_EM, 0};
    units[RYUNIT_EX] = {RN_ex, RELATIVE_LENGTH, RYUNIT_EX, 0};
    units[RYUNIT_PX] = {RN_px, RELATIVE_LENGTH, RYUNIT_PX, 0};
    units[RYUNIT_CM] = {RN_cm, ABSOLUTE_LENGTH, RYUNIT_PT, POINTS_PER_CM};
    units[RYUNIT_MM] = {RN_mm, ABSOLUTE_LENGTH, RYUNIT_PT, POINTS_PER_MM};
    units[RYUNIT_IN] = {RN_in, ABSOLUTE_LENGTH, RYUNIT_PT, 72};
    units[RYUNIT_PT] = {RN_pt, ABSOLUTE_LENGTH, RYUNIT_PT, 1};
    units[RYUNIT_PC] = {RN_pc, ABSOLUTE_LENGTH, RYUNIT_PT, 12};
    units[RYUNIT_JPT] = {RN_jpt, ABSOLUTE_LENGTH, RYUNIT_JPT, 0};
    units[RYUNIT_Q] = {RN_q, ABSOLUTE_LENGTH, RYUNIT_PT, POINTS_PER_Q};
    units[RYUNIT_DEG] = {RN_deg, ANGLE, RYUNIT_DEG, 1};
    units[RYUNIT_RAD] = {RN_rad, ANGLE, RYUNIT_DEG, 57.295776F};
    units[RYUNIT_GRAD] = {RN_grad, ANGLE, RYUNIT_DEG, 0.9F};
    units[RYUNIT_MS] = {RN_ms, TIME, RYUNIT_MS, 1};
    units[RYUNIT_S] = {RN_s, TIME, RYUNIT_MS, 1000};
    units[RYUNIT_HZ] = {RN_Hz, FREQUENCY, RYUNIT_HZ, 1};
    units[RYUNIT_KHZ] = {RN_kHz, FREQUENCY, RYUNIT_HZ, 1000};
    units[RYUNIT_DPI] = {RN_dpi, RESOLUTION, RYUNIT_NUMBER, 1};
    units[RYUNIT_TWIP] = {RN_twip, ABSOLUTE_LENGTH, RYUNIT_PT, 0.05F};
    units[RYUNIT_AREA] = {RN_EMPTY, AREA, RYUNIT_AREA, 1};
    units[RYUNIT_VOLUME] = {RN_EMPTY, VOLUME, RYUNIT_VOLUME, 1};
    return units;
}

constexpr std::array<Unit, 32> UNITS = makeUnits();

constexpr float NO_NUMBER = std::numeric_limits<float>::quiet_NaN();

/// Angles have a factor of their own for each pair. The one from degrees to grads is that of
/// degrees to radians: formatters have always computed so, and documents depend on it.
float convertAngle(float value, RyValueUnitType from, RyValueUnitType to) {
    static constexpr float FACTORS[3][3] = {
        {1, 0.017453292F, 0.017453292F}, {57.295776F, 1, 63.661976F}, {0.9F, 0.015707964F, 1}};
    return value * FACTORS[from - RYUNIT_DEG][to - RYUNIT_DEG];
}

float convertAcrossClasses(float value, UnitClass from, UnitClass to) {
    using enum UnitClass;
    if (from == PERCENTAGE && to == NUMBER) return value / 100;
    if (from == NUMBER && to == PERCENTAGE) return value * 100;
    if (from == RESOLUTION && to == NUMBER) return value;
    if (from == PERCENTAGE && to == RESOLUTION) return value;
    return NO_NUMBER;
}

}  // namespace

const Unit& getUnit(RyValueUnitType unit) {
    return UNITS[unit & 31];
}

const UnicodeString& getUnitText(RyValueUnitType unit) {
    if (unit == RYUNIT_PERCENTAGE) {
        // Never destroyed, so that the texts of values can be asked for until the very end of a
        // program.
        static const UnicodeString* const percent = new UnicodeString(u'%');
        return *percent;
    }
    const RyNameEnum name = getUnit(unit).name;
    if (name == RN_EMPTY) return RyEmptyString::EMPTY_VALUE;
    return RyNameTable::getBuiltinNameString(name);
}

float convertUnit(float value, RyValueUnitType from, RyValueUnitType to) {
    if (to == from || to == RYUNIT_NONE) return value;
    const Unit& source = getUnit(from);
    const Unit& target = getUnit(to);
    if (source.unitClass != target.unitClass)
        return convertAcrossClasses(value, source.unitClass, target.unitClass);
    if (source.factor == 0 || target.factor == 0) return NO_NUMBER;
    if (source.unitClass == UnitClass::ANGLE) return convertAngle(value, from, to);
    return value * source.factor / target.factor;
}

}  // namespace RynCommon
