// The units of property values: what there is to know of each, and conversion between them.
#pragma once

#include <string_view>

#include <RynCommon/RyName.h>
#include <RynCommon/RyValueUnit.h>

namespace RynCommon {

/// Units convert within their class. The classes that hold one unit only keep their units apart.
enum class UnitClass : std::uint8_t {
    NONE,
    NUMBER,
    PERCENTAGE,
    RELATIVE_LENGTH,
    ABSOLUTE_LENGTH,
    ANGLE,
    TIME,
    FREQUENCY,
    RESOLUTION,
    AREA,
    VOLUME
};

struct Unit {
    /// The interned text; empty for units without one, and for the percentage, whose sign is no
    /// name.
    RyNameEnum name = RN_EMPTY;
    UnitClass unitClass = UnitClass::NONE;
    /// What normalizing turns the unit into; the unit itself when it stays.
    RyValueUnitType canonical = RYUNIT_NONE;
    /// Canonical units in one of this; 0 where nothing converts.
    float factor = 0;
};

/// The row of a unit; numbers above 31 wrap, as they do in a value's tag.
const Unit& getUnit(RyValueUnitType unit);

/// The unit whose text is that suffix in lower case; NONE for any other suffix. Texts with capitals
/// ("Hz", "kHz") are never found.
RyValueUnitType findUnit(std::u16string_view suffix);

/// Text of a unit, empty where it has none.
const UnicodeString& getUnitText(RyValueUnitType unit);

/// `value` of unit `from` in unit `to` (RYUNIT_NONE: as it is); NaN where there is no such
/// conversion.
float convertUnit(float value, RyValueUnitType from, RyValueUnitType to);

}  // namespace RynCommon
