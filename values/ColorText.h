// The text form of colours.
#pragma once

#include <RynCommon/RyColor.h>
#include <RynCommon/RyValue.h>

namespace RynCommon {

/// Appends RyColor::toString(named).
void appendColorText(UnicodeString& text, const RyColor& color, bool named);

/// Appends the text of a colour value, without keywords. False, and nothing appended, for a
/// compound that holds no colour, which prints as such.
bool appendColorText(UnicodeString& text, const RyValue& color);

}  // namespace RynCommon
