// Character classes of XML names and white space.
#pragma once

#include <array>
#include <cstdint>

namespace RynCommon {

namespace charclass {

enum : std::uint8_t { NAME_START = 1, NAME = 2, SPACE = 4 };

inline constexpr std::array<std::uint8_t, 128> TABLE = [] {
    std::array<std::uint8_t, 128> table{};
    for (int c = 'A'; c <= 'Z'; ++c)
        table[static_cast<std::size_t>(c)] = table[static_cast<std::size_t>(c | 0x20)] =
            NAME_START | NAME;
    table['_'] = NAME_START | NAME;
    for (std::size_t c = '0'; c <= '9'; ++c) table[c] = NAME;
    table['-'] = table['.'] = NAME;
    table[' '] = table['\t'] = table['\n'] = table['\r'] = SPACE;
    return table;
}();

/// Units beyond ASCII that begin a name without a colon: NameStartChar of XML 1.1 in the
/// established, slightly wider form (U+00C0 to U+02FF without a gap, U+F900 to U+EFFFF). High
/// surrogates stand for their supplementary characters.
constexpr bool isWideNameStart(char16_t c) {
    return (c >= 0x00C0 && c <= 0x02FF) || (c >= 0x0370 && c <= 0x1FFF && c != 0x037E) ||
           c == 0x200C || c == 0x200D || (c >= 0x2070 && c <= 0x218F) ||
           (c >= 0x2C00 && c <= 0x2FEF) || (c >= 0x3001 && c <= 0xD7FF) ||
           (c >= 0xF900 && c <= 0xFFFD) || (c >= 0xD800 && c <= 0xDB7F);
}

/// Units beyond ASCII that go on in a name. Low surrogates follow their high ones.
constexpr bool isWideName(char16_t c) {
    return isWideNameStart(c) || c == 0x00B7 || (c >= 0x0300 && c <= 0x036F) || c == 0x203F ||
           c == 0x2040 || (c >= 0xDC00 && c <= 0xDFFF);
}

}  // namespace charclass

constexpr bool isNameStart(char16_t c) {
    return c < 128 ? (charclass::TABLE[c] & charclass::NAME_START) != 0
                   : charclass::isWideNameStart(c);
}

constexpr bool isNameUnit(char16_t c) {
    return c < 128 ? (charclass::TABLE[c] & charclass::NAME) != 0 : charclass::isWideName(c);
}

/// S of XML 1.0.
constexpr bool isXmlSpace(char16_t c) {
    return c < 128 && (charclass::TABLE[c] & charclass::SPACE) != 0;
}

/// End of the run of name units that starts at `p`.
inline const char16_t* nameEnd(const char16_t* p, const char16_t* end) {
    while (p != end && isNameUnit(*p)) ++p;
    return p;
}

}  // namespace RynCommon
