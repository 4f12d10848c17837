// Roman numerals in letters, in Roman numeral characters and in full-width letters.
//
// The compiler writes those of the plain letters up to 999, each behind the three letters of 3000:
// the end of that text is the numeral of the number with no, one, two or three thousands. So the
// numerals that nearly all documents need are found and not made, and a string may refer to them.
#include "text/number/Roman.h"

#include <array>

#include "text/number/TextViews.h"

namespace RynCommon {

namespace {

/// 38888 has the longest numeral: 3 ten thousands, and 4 letters of each power below.
constexpr std::size_t LENGTH_MAX = 3 + 4 * 4;

/// Writes one decimal digit at `out`; the new end. `letters` begin with the one, the five and the
/// ten of its power, as far as there are any.
constexpr char16_t* writeDigit(char16_t* out, int digit, std::u16string_view letters) {
    const bool hasFive = letters.size() > 1;
    const bool hasTen = letters.size() > 2;
    if ((digit == 9 && hasTen) || (digit == 4 && hasFive)) {
        *out++ = letters[0];
        *out++ = letters[digit == 9 ? 2 : 1];
        return out;
    }
    if (digit >= 5 && hasFive) {
        *out++ = letters[1];
        digit -= 5;
    }
    for (; digit > 0; --digit) *out++ = letters[0];
    return out;
}

/// Writes the numeral at `out`; the new end. `letters` are one, five, ten, fifty and so on.
constexpr char16_t* writeNumeral(char16_t* out, int n, std::u16string_view letters) {
    int power = 1;
    std::size_t level = 0;
    for (; n / power >= 10; power *= 10) level += 2;
    for (; power > 0; power /= 10, level -= 2)
        out = writeDigit(out, n / power % 10, letters.substr(level));
    return out;
}

constexpr int READY_LAST = 3999;
constexpr std::size_t THOUSANDS_MAX = 3;

/// Numerals of 0 to 999 behind those of 3000.
class ReadyNumerals {
public:
    constexpr explicit ReadyNumerals(std::u16string_view letters) {
        for (std::size_t i = 0; i < rows_.size(); ++i) {
            char16_t* const row = rows_[i].data();
            char16_t* const end = writeNumeral(writeDigit(row, THOUSANDS_MAX, letters.substr(6)),
                                               static_cast<int>(i), letters);
            rows_[i].back() = static_cast<char16_t>(end - row - THOUSANDS_MAX);
        }
    }

    /// `n` is in 1 to READY_LAST.
    std::u16string_view find(std::uint32_t n) const {
        const std::uint32_t thousands = n / 1000;
        const Row& row = rows_[n % 1000];
        return {row.data() + THOUSANDS_MAX - thousands, std::size_t{row.back()} + thousands};
    }

private:
    /// mmmdccclxxxviii fills it but for the last unit, which counts the letters behind the mmm.
    using Row = std::array<char16_t, 16>;
    std::array<Row, 1000> rows_{};
};

constexpr std::u16string_view SMALL = u"ivxlcdm";
constexpr std::u16string_view CAPITAL = u"IVXLCDM\u2181\u2182";

constexpr ReadyNumerals READY_SMALL(SMALL);
constexpr ReadyNumerals READY_CAPITAL(CAPITAL);

/// Letters of a token; none when it is no Roman one.
constexpr std::u16string_view findLetters(char32_t first) {
    switch (first) {
        case U'i':
            return SMALL;
        case U'I':
            return CAPITAL;
        case U'\u2170':
            return u"\u2170\u2174\u2179\u217C\u217D\u217E\u217F";
        case U'\u2160':
            return u"\u2160\u2164\u2169\u216C\u216D\u216E\u216F\u2181\u2182";
        case U'\uFF49':
            return u"\uFF49\uFF56\uFF58\uFF4C\uFF43\uFF44\uFF4D";
        case U'\uFF29':
            return u"\uFF29\uFF36\uFF38\uFF2C\uFF23\uFF24\uFF2D\u2181\u2182";
        default:
            return {};
    }
}

/// The Roman numeral characters have single ones for the numbers up to this.
constexpr int PRECOMPOSED_LAST = 12;

}  // namespace

std::u16string_view findReadyRoman(int n, char32_t first) {
    if (n < 1 || n > READY_LAST) return {};
    if (first == U'i') return READY_SMALL.find(static_cast<std::uint32_t>(n));
    if (first == U'I') return READY_CAPITAL.find(static_cast<std::uint32_t>(n));
    return {};
}

bool appendRoman(UnicodeString& text, int n, char32_t first) {
    const std::u16string_view letters = findLetters(first);
    const int last = letters.size() == 9 ? 39999 : READY_LAST;
    if (letters.empty() || n < 1 || n > last) return false;
    if ((first == U'\u2160' || first == U'\u2170') && n <= PRECOMPOSED_LAST) {
        text.append(static_cast<char16_t>(static_cast<int>(first) + n - 1));
        return true;
    }
    std::array<char16_t, LENGTH_MAX> numeral;
    const char16_t* const end = writeNumeral(numeral.data(), n, letters);
    appendView(text, {numeral.data(), static_cast<std::size_t>(end - numeral.data())});
    return true;
}

}  // namespace RynCommon
