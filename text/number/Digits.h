// Decimal numbers: digit families, padding and grouping.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include <RynCommon/Forward.h>
#include "text/number/FormatToken.h"

namespace RynCommon {

/// What stands between groups of digits; nothing does when the size is below 1 or the separator
/// empty.
struct Grouping {
    std::u16string_view separator;
    std::int32_t size = 0;
};

/// How a decimal number looks: its digits, and how many characters (a sign among them) it has at
/// least.
struct DecimalForm {
    char16_t zero = u'0';
    std::int32_t width = 0;
};

/// The form that the token asks for: a family's digit one, alone or at the end of a token that
/// begins with the family's zero. What stands between the two counts for the width only.
std::optional<DecimalForm> findDecimalForm(const FormatPieces& pieces);

/// Appends `n` in the form, padded as C's "%0*d" does, and then grouped.
void appendDecimal(UnicodeString& text, int n, const DecimalForm& form, const Grouping& grouping);

}  // namespace RynCommon
