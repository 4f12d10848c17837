// The text form of colours.
#pragma once

#include <RynCommon/RyValue.h>

namespace RynCommon {

/// Appends the text of a colour value: "#" and six upper-case hexadecimal digits for a plain one.
/// False, and nothing appended, for a colour kept as a compound, which prints as such.
bool appendColorText(UnicodeString& text, const RyValue& color);

}  // namespace RynCommon
