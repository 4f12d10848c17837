// Hebrew numerals.
#include "text/number/HebrewNumerals.h"

#include <string_view>

namespace RynCommon {

namespace {

constexpr std::u16string_view UNITS = u"אבגדהוזחט";
constexpr std::u16string_view TENS = u"יכלמנסעפצ";
constexpr std::u16string_view HUNDREDS = u"קרשת";

void appendLetter(UnicodeString& text, std::u16string_view letters, int digit) {
    if (digit > 0) text.append(letters[static_cast<std::size_t>(digit - 1)]);
}

/// `n` is below 1000. Ten and five, and ten and six, would begin to spell the divine name.
void appendBelowThousand(UnicodeString& text, int n) {
    for (; n >= 400; n -= 400) text.append(HUNDREDS.back());
    appendLetter(text, HUNDREDS, n / 100);
    n %= 100;
    const bool isAvoided = n == 15 || n == 16;
    const int tens = isAvoided ? 0 : n / 10;
    if (isAvoided) appendLetter(text, UNITS, 9);
    appendLetter(text, TENS, tens);
    appendLetter(text, UNITS, isAvoided ? n - 9 : n - 10 * tens);
}

void appendRoundThousands(UnicodeString& text, int thousands) {
    if (thousands == 1) {
        text.append(u"אלף", -1);
    } else if (thousands == 2) {
        text.append(u"אלפיים", -1);
    } else {
        appendBelowThousand(text, thousands);
        text.append(u" אלפים", -1);
    }
}

/// `n` is above 0 and below a million.
void appendBelowMillion(UnicodeString& text, int n) {
    if (n % 1000 == 0) return appendRoundThousands(text, n / 1000);
    appendBelowThousand(text, n / 1000);
    appendBelowThousand(text, n % 1000);
}

void appendMillions(UnicodeString& text, int millions) {
    if (millions > 1) {
        appendBelowMillion(text, millions);
        text.append(u' ');
    }
    text.append(u"מיליון", -1);
}

}  // namespace

bool appendHebrew(UnicodeString& text, int n) {
    if (n < 0) return false;
    if (n == 0) text.append(u"אפס", -1);
    const int millions = n / 1000000;
    const int rest = n % 1000000;
    if (millions > 0) appendMillions(text, millions);
    if (millions > 0 && rest > 0) text.append(u' ');
    if (rest > 0) appendBelowMillion(text, rest);
    return true;
}

}  // namespace RynCommon
