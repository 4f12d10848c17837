// Vector kernels between UTF-16 units and the UTF-8 sequences of three bytes in which most
// ideographs, kana, Hangul and the scripts of India stand.
//
// As for the kernels over units (core/UnitScan.h), the first call picks the best form that the
// processor has, RYNCOMMON_SCALAR picks the scalar twins, and none reads outside of the range
// given, allocates or throws.
#pragma once

#include <cstddef>
#include <cstdint>

namespace RynCommon {

/// Whether a unit of three bytes is one that the kernels pass: from U+0800 on, without surrogates,
/// and without U+2028 and U+FFFF, which readers and writers of XML treat on their own.
constexpr bool isPlainThreeByteUnit(std::uint32_t unit) {
    return unit >= 0x800 && (unit & 0xF800) != 0xD800 && unit != 0x2028 && unit != 0xFFFF;
}

/// Three bytes as one number, the first highest.
constexpr std::uint32_t threeBytesAt(const std::uint8_t* p) {
    return std::uint32_t{p[0]} << 16 | std::uint32_t{p[1]} << 8 | p[2];
}
/// Whether they have the form of a sequence: a lead and two continuations.
constexpr bool isThreeByteForm(std::uint32_t bytes) {
    return (bytes & 0xF0C0C0) == 0xE08080;
}
/// What a sequence stands for, which may be an overlong form or a surrogate.
constexpr std::uint32_t threeByteUnit(std::uint32_t bytes) {
    return (bytes >> 4 & 0xF000) | (bytes >> 2 & 0x0FC0) | (bytes & 0x3F);
}

/// Sequences or units that are looked at together.
constexpr std::size_t THREE_BYTE_GROUP = 8;

/// Makes units of the sequences of three bytes at the start of `in`, in whole groups up to the
/// first that is not well formed or whose unit is not plain, and returns the number of units made.
/// `out` has room for a unit for every three of the `n` bytes, all of which may be written to.
std::size_t decodeThreeByteRun(const std::uint8_t* in, std::size_t n, char16_t* out) noexcept;

/// Makes sequences of three bytes of the units at the start of `in`, in whole groups up to the
/// first that is not plain, and returns the number of units taken. `out` has room for three bytes
/// for each of the `n` units and four more, all of which may be written to.
std::size_t encodeThreeByteRun(const char16_t* in, std::size_t n, std::uint8_t* out) noexcept;

/// The scalar twins: the reference that the vector kernels are tested against, and what
/// RYNCOMMON_SCALAR selects.
namespace scalar {
std::size_t decodeThreeByteRun(const std::uint8_t* in, std::size_t n, char16_t* out);
std::size_t encodeThreeByteRun(const char16_t* in, std::size_t n, std::uint8_t* out);
}  // namespace scalar

}  // namespace RynCommon
