// The characters of names: NCName of Namespaces in XML 1.0 over XML 1.0 (fifth edition),
// productions 4 and 4a.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include <unicode/utf16.h>

namespace RynCommon {

namespace detail {

inline constexpr std::uint8_t NAME_START = 1;
inline constexpr std::uint8_t NAME_PART = 2;

consteval std::array<std::uint8_t, 128> makeAsciiNameChars() {
    std::array<std::uint8_t, 128> classes{};
    for (std::size_t c = 0; c < 26; ++c)
        classes[u'A' + c] = classes[u'a' + c] = NAME_START | NAME_PART;
    classes[u'_'] = NAME_START | NAME_PART;
    for (std::size_t c = u'0'; c <= u'9'; ++c) classes[c] = NAME_PART;
    classes[u'-'] = classes[u'.'] = NAME_PART;
    return classes;
}
inline constexpr std::array<std::uint8_t, 128> ASCII_NAME_CHARS = makeAsciiNameChars();

constexpr bool isWideNameStart(UChar32 c) {
    if (c < 0x370)
        return (c >= 0xC0 && c <= 0xD6) || (c >= 0xD8 && c <= 0xF6) || (c >= 0xF8 && c <= 0x2FF);
    return (c <= 0x1FFF && c != 0x37E) || (c >= 0x200C && c <= 0x200D) ||
           (c >= 0x2070 && c <= 0x218F) || (c >= 0x2C00 && c <= 0x2FEF) ||
           (c >= 0x3001 && c <= 0xD7FF) || (c >= 0xF900 && c <= 0xFDCF) ||
           (c >= 0xFDF0 && c <= 0xFFFD) || (c >= 0x10000 && c <= 0xEFFFF);
}

}  // namespace detail

constexpr bool isNameStartChar(UChar32 c) {
    if (c < 128)
        return (detail::ASCII_NAME_CHARS[static_cast<std::size_t>(c)] & detail::NAME_START) != 0;
    return detail::isWideNameStart(c);
}

constexpr bool isNamePartChar(UChar32 c) {
    if (c < 128)
        return (detail::ASCII_NAME_CHARS[static_cast<std::size_t>(c)] & detail::NAME_PART) != 0;
    return detail::isWideNameStart(c) || c == 0xB7 || (c >= 0x300 && c <= 0x36F) ||
           (c >= 0x203F && c <= 0x2040);
}

/// The code point at `at`; a lone surrogate stands for itself. `at` is inside of the text.
inline UChar32 codePointAt(std::u16string_view text, std::size_t at) {
    const char16_t unit = text[at];
    if (!U16_IS_LEAD(unit) || at + 1 == text.size() || !U16_IS_TRAIL(text[at + 1])) return unit;
    return U16_GET_SUPPLEMENTARY(unit, text[at + 1]);
}

/// End of the run of name characters that starts at `at`.
inline std::size_t findNameEnd(std::u16string_view text, std::size_t at) {
    while (at < text.size()) {
        if (text[at] < 128) {
            if (!isNamePartChar(text[at])) break;
            ++at;
            continue;
        }
        const UChar32 c = codePointAt(text, at);
        if (!isNamePartChar(c)) break;
        at += static_cast<std::size_t>(U16_LENGTH(c));
    }
    return at;
}

/// Whether the text is one NCName.
inline bool isNCName(std::u16string_view text) {
    return !text.empty() && isNameStartChar(codePointAt(text, 0)) &&
           findNameEnd(text, 0) == text.size();
}

}  // namespace RynCommon
