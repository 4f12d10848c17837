// Decimal numbers: digit families, padding and grouping.
#include "text/number/Digits.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace RynCommon {

namespace {

/// The digit one of each family; its zero is the character before it.
constexpr char16_t DIGIT_ONES[] = {
    0x0031,  // ASCII
    0x0661,  // Arabic-Indic
    0x06F1,  // extended Arabic-Indic
    0x0967,  // Devanagari
    0x09E7,  // Bengali
    0x0A67,  // Gurmukhi
    0x0AE7,  // Gujarati
    0x0B67,  // Oriya
    0x0C67,  // Telugu
    0x0CE7,  // Kannada
    0x0D67,  // Malayalam
    0x0E51,  // Thai
    0x0ED1,  // Lao
    0x0F21,  // Tibetan
    0x1041,  // Myanmar
    0x17E1,  // Khmer
    0x1811,  // Mongolian
    0xFF11,  // full-width
};

/// Separators in sum may take this much room in any case, and beyond it four times what was passed
/// in.
constexpr std::int64_t SEPARATOR_UNITS = 64 * 1024;

/// Digits and separators together stay far from the end of the range of a string's length.
constexpr std::int64_t ROOM_MAX = std::int64_t{1} << 30;

/// The digits of a number, the last one first.
struct DigitList {
    std::array<std::uint8_t, 10> digits;
    std::int32_t count = 0;

    explicit DigitList(std::int64_t magnitude) {
        do {
            digits[static_cast<std::size_t>(count++)] = static_cast<std::uint8_t>(magnitude % 10);
            magnitude /= 10;
        } while (magnitude != 0);
    }
};

/// How many separators `length` digits get.
std::int32_t countSeparators(std::int32_t length, const Grouping& grouping) {
    if (grouping.size < 1 || grouping.separator.empty()) return 0;
    const std::int32_t count = (length - 1) / grouping.size;
    const auto separatorLength = static_cast<std::int64_t>(grouping.separator.size());
    const std::int64_t allowed = std::max(SEPARATOR_UNITS, 4 * (length + separatorLength));
    return count * separatorLength <= std::min(allowed, ROOM_MAX - length) ? count : 0;
}

/// Writes the padding and the digits at `out`.
void writePlain(char16_t* out, const DigitList& digits, std::int32_t length, char16_t zero) {
    out = std::fill_n(out, length - digits.count, zero);
    for (std::int32_t i = digits.count - 1; i >= 0; --i)
        *out++ = static_cast<char16_t>(zero + digits.digits[static_cast<std::size_t>(i)]);
}

/// Spreads the `length` plain digits at `digits` out to the right of them, the last group first, so
/// that the room they come from is overwritten only after they have been moved.
void spreadGroups(char16_t* digits, std::int32_t length, std::int32_t separators,
                  const Grouping& grouping) {
    const std::u16string_view separator = grouping.separator;
    const char16_t* from = digits + length;
    char16_t* to = digits + length + separators * static_cast<std::ptrdiff_t>(separator.size());
    for (; separators > 0; --separators) {
        from -= grouping.size;
        to -= grouping.size;
        std::memmove(to, from, static_cast<std::size_t>(grouping.size) * sizeof(char16_t));
        to -= separator.size();
        separator.copy(to, separator.size());
    }
}

}  // namespace

std::optional<DecimalForm> findDecimalForm(const FormatPieces& pieces) {
    // Most tokens are letters, and need not be looked for.
    if (pieces.last < 0x80 && pieces.last != DIGIT_ONES[0]) return std::nullopt;
    const auto* one = std::find(std::begin(DIGIT_ONES), std::end(DIGIT_ONES), pieces.last);
    if (one == std::end(DIGIT_ONES)) return std::nullopt;
    const auto zero = static_cast<char16_t>(*one - 1);
    if (pieces.tokenLength != 1 && pieces.first != zero) return std::nullopt;
    return DecimalForm{zero, pieces.tokenLength};
}

void appendDecimal(UnicodeString& text, int n, const DecimalForm& form, const Grouping& grouping) {
    const DigitList digits(n < 0 ? -std::int64_t{n} : std::int64_t{n});
    const std::int32_t sign = n < 0 ? 1 : 0;
    const std::int32_t length = std::max(digits.count, form.width - sign);
    const std::int32_t separators = countSeparators(length, grouping);
    const auto room =
        sign + length + separators * static_cast<std::int32_t>(grouping.separator.size());
    const std::int32_t before = text.length();
    char16_t* out = text.getBuffer(before + room);
    if (out == nullptr) return;
    out += before;
    if (n < 0) *out++ = u'-';
    writePlain(out, digits, length, form.zero);
    spreadGroups(out, length, separators, grouping);
    text.releaseBuffer(before + room);
}

}  // namespace RynCommon
