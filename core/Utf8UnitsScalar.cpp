// The scalar twins of the kernels for sequences of three bytes, one sequence at a time.
#include "core/Utf8Units.h"

namespace RynCommon::scalar {

std::size_t decodeThreeByteRun(const std::uint8_t* in, std::size_t n, char16_t* out) {
    const std::size_t inGroups = n / (3 * THREE_BYTE_GROUP) * THREE_BYTE_GROUP;
    std::size_t i = 0;
    for (; i < inGroups; ++i) {
        const std::uint32_t bytes = threeBytesAt(in + 3 * i);
        const std::uint32_t unit = threeByteUnit(bytes);
        if (!isThreeByteForm(bytes) || !isPlainThreeByteUnit(unit)) break;
        out[i] = static_cast<char16_t>(unit);
    }
    return i;
}

std::size_t encodeThreeByteRun(const char16_t* in, std::size_t n, std::uint8_t* out) {
    const std::size_t inGroups = n - n % THREE_BYTE_GROUP;
    std::size_t i = 0;
    for (; i < inGroups && isPlainThreeByteUnit(in[i]); ++i) {
        const std::uint32_t unit = in[i];
        out[3 * i] = static_cast<std::uint8_t>(0xE0 | unit >> 12);
        out[3 * i + 1] = static_cast<std::uint8_t>(0x80 | (unit >> 6 & 0x3F));
        out[3 * i + 2] = static_cast<std::uint8_t>(0x80 | (unit & 0x3F));
    }
    return i;
}

}  // namespace RynCommon::scalar
