// UTF-16LE bytes over arrays of units.
//
// The conversion streams hand out and take UTF-16LE bytes and convert whole arrays of units. On
// little-endian machines the bytes of such an array are the stream's bytes; on others they are
// swapped in place.
#pragma once

#include <bit>
#include <cstddef>

namespace RynCommon::streams {

/// Turns units of the machine's byte order into little-endian ones, or back.
inline void swapToLittleEndian([[maybe_unused]] char16_t* units,
                               [[maybe_unused]] std::size_t count) {
    if constexpr (std::endian::native != std::endian::little) {
        for (std::size_t i = 0; i < count; ++i) {
            units[i] = static_cast<char16_t>((units[i] << 8) | (units[i] >> 8));
        }
    }
}

inline char* bytesOf(char16_t* units) {
    return reinterpret_cast<char*>(units);
}

}  // namespace RynCommon::streams
