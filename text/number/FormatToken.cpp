// The three pieces of a number format.
#include "text/number/FormatToken.h"

#include <unicode/uchar.h>
#include <unicode/utf16.h>

namespace RynCommon {

namespace {

constexpr bool isAsciiAlnum(char32_t c) {
    return (c >= U'0' && c <= U'9') || ((c | 0x20) >= U'a' && (c | 0x20) <= U'z');
}

/// ICU counts the Roman numeral characters, which are letter numbers, neither as letters nor as
/// digits.
bool isTokenCharacter(char32_t c) {
    if (c < 0x80) return isAsciiAlnum(c);
    return (c >= 0x2160 && c <= 0x2183) || u_isalnum(static_cast<UChar32>(c)) != 0;
}

/// The character at `position`; a lone surrogate is itself.
char32_t characterAt(std::u16string_view text, std::size_t position) {
    const char16_t unit = text[position];
    if (!U16_IS_LEAD(unit) || position + 1 == text.size()) return unit;
    const char16_t next = text[position + 1];
    return U16_IS_TRAIL(next) ? static_cast<char32_t>(U16_GET_SUPPLEMENTARY(unit, next))
                              : char32_t{unit};
}

std::size_t unitsOf(char32_t c) {
    return U16_LENGTH(c);
}

}  // namespace

FormatPieces splitFormat(std::u16string_view format) {
    FormatPieces pieces;
    std::size_t begin = 0;
    for (; begin < format.size(); begin += unitsOf(pieces.first)) {
        pieces.first = characterAt(format, begin);
        if (isTokenCharacter(pieces.first)) break;
    }
    pieces.prefix = format.substr(0, begin);
    if (begin == format.size()) {
        pieces.first = 0;
        return pieces;
    }
    std::size_t end = begin;
    for (char32_t c = pieces.first; isTokenCharacter(c); c = characterAt(format, end)) {
        pieces.last = c;
        ++pieces.tokenLength;
        end += unitsOf(c);
        if (end == format.size()) break;
    }
    pieces.token = format.substr(begin, end - begin);
    pieces.suffix = format.substr(end);
    return pieces;
}

}  // namespace RynCommon
