// Colours from property texts.
#pragma once

#include <string_view>

#include <RynCommon/RyValue.h>

namespace RynCommon {

/// RyValue::parseColor of a view. False, and `value` unchanged, for a text that becomes an unknown
/// string there.
bool parseColorText(std::u16string_view text, bool full, RyValue& value);

}  // namespace RynCommon
