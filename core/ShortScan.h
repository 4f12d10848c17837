// Scans and comparisons that mostly end within a few units, in line.
//
// The vector kernels of UnitScan.h pay from some ten units on; a call costs more than a look at the
// first units, where the texts, values and names of dense documents end. Each function looks at the
// first few itself and leaves longer runs to the kernel, so that both give the same answer.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "core/UnitScan.h"

namespace RynCommon {

namespace detail {

inline constexpr std::uint64_t LANE_ONES = 0x0001000100010001u;
inline constexpr std::uint64_t LANE_TOPS = 0x8000800080008000u;

inline std::uint64_t loadUnits(const char16_t* p) {
    std::uint64_t word;
    std::memcpy(&word, p, sizeof word);
    return word;
}

/// Marks the top bit of each 16-bit lane that is `unit`; exact in the lowest marked lane, which is
/// the one that counts.
constexpr std::uint64_t markEqual(std::uint64_t word, char16_t unit) {
    const std::uint64_t x = word ^ LANE_ONES * unit;
    return (x - LANE_ONES) & ~x & LANE_TOPS;
}

}  // namespace detail

/// findTextStop() for runs that are often short.
inline const char16_t* scanTextStop(const char16_t* p, const char16_t* end) {
    if constexpr (std::endian::native == std::endian::little) {
        for (int i = 0; i < 2 && end - p >= 4; ++i, p += 4) {
            const std::uint64_t word = detail::loadUnits(p);
            const std::uint64_t stops = detail::markEqual(word, u'<') |
                                        detail::markEqual(word, u'&') |
                                        detail::markEqual(word, u']');
            if (stops != 0) return p + (std::countr_zero(stops) >> 4);
        }
    }
    return findTextStop(p, end);
}

/// findValueStop() for runs that are often short.
inline const char16_t* scanValueStop(const char16_t* p, const char16_t* end, char16_t quote) {
    // All stops are below 64, so that one word of bits tells them.
    const std::uint64_t stops = std::uint64_t{1} << 9 | std::uint64_t{1} << 10 |
                                std::uint64_t{1} << 13 | std::uint64_t{1} << u'&' |
                                std::uint64_t{1} << u'<' | std::uint64_t{1} << quote;
    const char16_t* const near = end - p < 16 ? end : p + 16;
    for (; p != near; ++p)
        if (*p < 64 && (stops >> *p & 1) != 0) return p;
    return p == end ? p : findValueStop(p, end, quote);
}

/// Whether both runs of `length` units are equal.
inline bool equalUnits(const char16_t* a, const char16_t* b, std::size_t length) {
    if (length >= 16) return std::memcmp(a, b, length * sizeof(char16_t)) == 0;
    for (; length >= 4; length -= 4, a += 4, b += 4)
        if (detail::loadUnits(a) != detail::loadUnits(b)) return false;
    for (; length != 0; --length)
        if (*a++ != *b++) return false;
    return true;
}

}  // namespace RynCommon
