// Colours inside of values.
#pragma once

#include <RynCommon/RyColor.h>
#include <RynCommon/RyValue.h>

namespace RynCommon {

/// The value of a plain colour.
RyValue makeColorValue(std::uint32_t rgb);

/// The colour that a value of the colour unit holds. False, and `color` unchanged, for any other
/// value and for a compound that is no colour.
bool readColorValue(const RyValue& value, RyColor& color);

}  // namespace RynCommon
