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

/// Number of characters of the longest unit text.
constexpr std::size_t LONGEST_UNIT = 4;
constexpr std::size_t SLOT_COUNT = 64;

constexpr std::size_t slotOf(std::uint64_t key, std::uint64_t multiplier) {
    return key * multiplier >> 58;
}

/// Texts of units as numbers, one character in 16 bits, each in a slot of its own.
struct SuffixTable {
    std::uint64_t multiplier = 0;
    std::array<std::uint64_t, SLOT_COUNT> keys{};
    std::array<RyValueUnitType, SLOT_COUNT> units{};
};

/// 0 for a unit without a text.
consteval std::array<std::uint64_t, 32> makeKeys() {
    std::array<std::uint64_t, 32> keys{};
#define RYN_BUILTIN_NAME(number, identifier, text) text,
    constexpr const char* TEXTS[] = {
        "",
#include <RynCommon/RyBuiltinNames.inc>
    };
#undef RYN_BUILTIN_NAME
    for (std::size_t unit = 0; unit < keys.size(); ++unit) {
        const char* const text = TEXTS[UNITS[unit].name];
        for (std::size_t i = 0; text[i] != '\0'; ++i) {
            if (i == LONGEST_UNIT) throw "a unit text is too long";
            keys[unit] |= std::uint64_t{static_cast<unsigned char>(text[i])} << 16 * i;
        }
    }
    return keys;
}

consteval SuffixTable makeSuffixes() {
    const std::array<std::uint64_t, 32> keys = makeKeys();
    // Odd multipliers are tried until no two keys meet.
    for (std::uint64_t multiplier = 0x9E3779B97F4A7C15u;; multiplier += 0x3C6EF372FE94F82Au) {
        SuffixTable table;
        table.multiplier = multiplier;
        bool isPerfect = true;
        for (std::size_t i = 0; i < keys.size(); ++i) {
            if (keys[i] == 0) continue;
            const std::size_t slot = slotOf(keys[i], multiplier);
            isPerfect = isPerfect && table.keys[slot] == 0;
            table.keys[slot] = keys[i];
            table.units[slot] = static_cast<RyValueUnitType>(i);
        }
        if (isPerfect) return table;
    }
}
constexpr SuffixTable SUFFIXES = makeSuffixes();

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

RyValueUnitType findUnit(std::u16string_view suffix) {
    if (suffix == u"%") return RYUNIT_PERCENTAGE;
    if (suffix.empty() || suffix.size() > LONGEST_UNIT) return RYUNIT_NONE;
    // A unit beyond ASCII keeps a bit that no key has. Of those only the Kelvin sign has an ASCII
    // lower case, "k", which is in no unit that can be found.
    std::uint64_t key = 0;
    for (std::size_t i = 0; i < suffix.size(); ++i)
        key |= std::uint64_t{suffix[i] | 0x20u} << 16 * i;
    const std::size_t slot = slotOf(key, SUFFIXES.multiplier);
    return SUFFIXES.keys[slot] == key ? SUFFIXES.units[slot] : RYUNIT_NONE;
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
