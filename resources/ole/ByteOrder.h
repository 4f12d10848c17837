// Integers of a given byte order in memory.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

namespace RynCommon::ole {

constexpr std::uint16_t swapBytes(std::uint16_t value) {
    return __builtin_bswap16(value);
}
constexpr std::uint32_t swapBytes(std::uint32_t value) {
    return __builtin_bswap32(value);
}
constexpr std::uint64_t swapBytes(std::uint64_t value) {
    return __builtin_bswap64(value);
}

/// The unsigned integer at `bytes`, which need not be aligned.
template <class Integer>
Integer load(const unsigned char* bytes, bool littleEndian) {
    Integer value;
    std::memcpy(&value, bytes, sizeof value);
    return littleEndian == (std::endian::native == std::endian::little) ? value : swapBytes(value);
}

inline std::uint16_t load16(const unsigned char* bytes, bool littleEndian) {
    return load<std::uint16_t>(bytes, littleEndian);
}

inline std::uint32_t load32(const unsigned char* bytes, bool littleEndian) {
    return load<std::uint32_t>(bytes, littleEndian);
}

inline std::int32_t loadSigned32(const unsigned char* bytes, bool littleEndian) {
    return static_cast<std::int32_t>(load32(bytes, littleEndian));
}

inline std::uint64_t load64(const unsigned char* bytes, bool littleEndian) {
    return load<std::uint64_t>(bytes, littleEndian);
}

}  // namespace RynCommon::ole
