// Roman numerals in letters, in Roman numeral characters and in full-width letters.
#pragma once

#include <string_view>

#include <RynCommon/Forward.h>

namespace RynCommon {

/// The numeral of 1 to 3999 for a token that begins with i or I, in constant storage; empty for all
/// other numbers and tokens.
std::u16string_view findReadyRoman(int n, char32_t first);

/// Appends `n` in the letters that a token beginning with `first` stands for. False, and nothing
/// appended, when it is no Roman token, and for numbers below 1 or above what the letters reach:
/// seven small ones 3999, nine capital ones 39999.
bool appendRoman(UnicodeString& text, int n, char32_t first);

}  // namespace RynCommon
