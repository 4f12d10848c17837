// Greek and Arabic numerals, whose letters stand for units, tens and hundreds.
#include "text/number/LetterValueNumerals.h"

namespace RynCommon {

namespace {

void appendLetter(UnicodeString& text, std::u16string_view letters, int digit) {
    if (digit > 0) text.append(letters[static_cast<std::size_t>(digit - 1)]);
}

}  // namespace

// 6, 90 and 900 are the letters stigma, koppa and sampi, which the alphabet has lost.
const LetterValues GREEK_SMALL_VALUES = {u"αβγδεϛζηθ", u"ικλμνξοπϟ", u"ρστυφχψωϡ", u'\u0375', 0};
const LetterValues GREEK_CAPITAL_VALUES = {u"ΑΒΓΔΕϚΖΗΘ", u"ΙΚΛΜΝΞΟΠϞ", u"ΡΣΤΥΦΧΨΩϠ", u'\u0375', 0};
const LetterValues ABJAD_VALUES = {u"ابجدهوزحط", u"يكلمنسعفص", u"قرشتثخذضظ", 0, u'غ'};

bool appendLetterValues(UnicodeString& text, int n, const LetterValues& values) {
    if (n < 1 || n > (values.thousandsSign != 0 ? 9999 : 1999)) return false;
    if (n >= 1000 && values.thousandsSign == 0) text.append(values.thousand);
    if (n >= 1000 && values.thousandsSign != 0) {
        text.append(values.thousandsSign);
        appendLetter(text, values.units, n / 1000);
    }
    appendLetter(text, values.hundreds, n / 100 % 10);
    appendLetter(text, values.tens, n / 10 % 10);
    appendLetter(text, values.units, n % 10);
    return true;
}

}  // namespace RynCommon
