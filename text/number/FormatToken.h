// The three pieces of a number format.
#pragma once

#include <cstdint>
#include <string_view>

namespace RynCommon {

/// Views into the format's text. Only the token says how to write; the rest stands around the
/// number.
struct FormatPieces {
    std::u16string_view prefix;
    std::u16string_view token;
    std::u16string_view suffix;
    /// Of the token: its characters (a surrogate pair is one), the first and the last; 0 without a
    /// token.
    std::int32_t tokenLength = 0;
    char32_t first = 0;
    char32_t last = 0;
};

/// The token is the first run of letters, digits and Roman numeral characters; one scan, by
/// character.
FormatPieces splitFormat(std::u16string_view format);

}  // namespace RynCommon
