// Numbers as text and back, the same in every locale.
#pragma once

#include <cstdint>
#include <string_view>

#include <RynCommon/Forward.h>

namespace RynCommon {

/// Appends the decimal text, as C's "%lld".
void appendInteger(UnicodeString& text, std::int64_t value);

/// Appends the text of C's "%g" in the "C" locale: at most six significant digits, trailing zeros
/// dropped, an exponent of at least two digits below 1e-4 and from 1e6 on; "inf" and "nan", signed
/// where the number is.
void appendReal(UnicodeString& text, double value);

/// Appends the shortest decimal text without an exponent that is read back as the number; an
/// infinite one as digits beyond the range of float.
void appendExactReal(UnicodeString& text, float value);

/// Appends the low `digits` hexadecimal digits of `value` (at most 8), in upper case.
void appendHex(UnicodeString& text, std::uint32_t value, int digits);

/// Value of a hexadecimal digit, -1 for any other unit.
constexpr int getHexDigit(char16_t unit) {
    if (unit >= u'0' && unit <= u'9') return unit - u'0';
    const int letter = unit | 0x20;
    return letter >= u'a' && letter <= u'f' ? letter - u'a' + 10 : -1;
}

/// Length of the number at the start of `text`: digits, and a fraction when a digit follows the
/// ".". No sign, no exponent. 0 when there is none.
std::size_t scanNumber(std::u16string_view text);

/// The number that `digits` (a whole run of scanNumber) stands for, correctly rounded; infinite
/// beyond the range.
double readNumber(std::u16string_view digits);

}  // namespace RynCommon
