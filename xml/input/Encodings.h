// The encodings that are decoded here, and the names that select them.
#pragma once

#include <cstdint>

#include <RynCommon/Forward.h>

namespace RynCommon {

/// How bytes become characters. The values are fixed.
enum EncodingKind : std::uint8_t {
    ENCODING_UNKNOWN = 0,  ///< not told: decoded as UTF-8
    ENCODING_UTF8 = 1,
    ENCODING_UTF16 = 2,  ///< byte order not told: bytes are read as they are
    ENCODING_UTF16LE = 3,
    ENCODING_UTF16BE = 4,
    ENCODING_UTF32 = 5,  ///< byte order not told: bytes are read as they are
    ENCODING_UTF32LE = 6,
    ENCODING_UTF32BE = 7,
    ENCODING_ASCII = 8,      ///< a byte is a code point
    ENCODING_LATIN1 = 9,     ///< a byte is a code point
    ENCODING_CONVERTER = 10  ///< by name, through a converting stream
};

constexpr bool isWide(EncodingKind kind) {
    return kind >= ENCODING_UTF16 && kind <= ENCODING_UTF32BE;
}
/// UTF-16 or UTF-32 of a known byte order: no declaration changes it.
constexpr bool isOrderedWide(EncodingKind kind) {
    return isWide(kind) && kind != ENCODING_UTF16 && kind != ENCODING_UTF32;
}

/// The kind that a name (trimmed, in any case) selects: one of the table's, or ENCODING_CONVERTER
/// for every other name. Understands the one-character declarations that our own serializer writes:
/// U+00AD and U+008B are UTF-8.
EncodingKind encodingKindOf(const UnicodeString& name);

/// The name for a converter: the trimmed name itself, except for the "&#139;" that our own
/// serializer declares, which is Shift_JIS.
UnicodeString converterNameOf(const UnicodeString& name);

/// Decodes complete characters of [in, end) into `out`, moves `in` behind them and returns the end
/// of what was written. `out` has room for as many units as there are bytes, plus one. An
/// unfinished character at the end stays unread, unless `final`: then it becomes U+FFFD. So does
/// whatever is malformed; a byte or unit that breaks a sequence is read again on its own, so that
/// it cannot be hidden. Overlong UTF-8 forms are not refused. `hasBreaks` tells whether there may
/// be CR, U+0085, U+2028 or U+FFFF among the units.
char16_t* decodeBlock(EncodingKind kind, const std::uint8_t*& in, const std::uint8_t* end,
                      bool final, char16_t* out, bool& hasBreaks);

}  // namespace RynCommon
