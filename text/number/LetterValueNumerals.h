// Greek and Arabic numerals, whose letters stand for units, tens and hundreds.
#pragma once

#include <string_view>

#include <RynCommon/Forward.h>

namespace RynCommon {

/// Letters by decimal place.
struct LetterValues {
    std::u16string_view units;
    std::u16string_view tens;
    std::u16string_view hundreds;
    /// What a letter of the units stands behind to count thousands; where it is 0, `thousand` is a
    /// letter of its own and counts one.
    char16_t thousandsSign;
    char16_t thousand;
};

/// Greek numerals reach 9999; neither the keraia behind them nor anything else is added.
extern const LetterValues GREEK_SMALL_VALUES;
extern const LetterValues GREEK_CAPITAL_VALUES;
/// Abjad numerals in the eastern order reach 1999.
extern const LetterValues ABJAD_VALUES;

/// False, and nothing appended, below 1 and above what the letters reach.
bool appendLetterValues(UnicodeString& text, int n, const LetterValues& values);

}  // namespace RynCommon
