// The hash of a run of UTF-16 units, for the name tables and for the caches in front of them.
//
// Four units are mixed at a time by a multiplication to 128 bits whose halves are folded together.
// A table whose contents come from documents passes textHashSeed(), so that nobody can prepare
// names that collide; only a table of fixed contents passes a constant. Equal seeds give equal
// hashes on all machines.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

namespace RynCommon {

namespace detail {

inline constexpr std::uint64_t TEXT_HASH_STEP = 0x9E3779B97F4A7C15u;
inline constexpr std::uint64_t TEXT_HASH_LAST = 0xE7037ED1A0B428DBu;

constexpr std::uint64_t mixText(std::uint64_t a, std::uint64_t b) {
    __extension__ using Wide = unsigned __int128;
    const Wide product = static_cast<Wide>(a) * b;
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
}

/// Up to four units, the first in the lowest bits.
constexpr std::uint64_t packUnits(const char16_t* p, std::size_t count) {
    std::uint64_t word = 0;
    for (std::size_t i = 0; i < count; ++i) word |= std::uint64_t{p[i]} << (16 * i);
    return word;
}

constexpr std::uint64_t loadFourUnits(const char16_t* p) {
    if (std::is_constant_evaluated() || std::endian::native != std::endian::little)
        return packUnits(p, 4);
    std::uint64_t word;
    std::memcpy(&word, p, sizeof word);
    return word;
}

}  // namespace detail

/// Hash of `length` units. All bits of the result are usable.
constexpr std::uint64_t hashText(const char16_t* text, std::size_t length, std::uint64_t seed) {
    using namespace detail;
    std::uint64_t hash = seed ^ (length * TEXT_HASH_LAST);
    if (length < 4) {
        hash ^= packUnits(text, length);
    } else {
        const char16_t* const tail = text + length - 4;
        for (; text < tail; text += 4) hash = mixText(hash ^ loadFourUnits(text), TEXT_HASH_STEP);
        hash ^= loadFourUnits(tail);
    }
    return mixText(hash ^ TEXT_HASH_STEP, TEXT_HASH_LAST);
}

/// This process's seed: fixed from the first call on, and not to be guessed from outside.
std::uint64_t textHashSeed() noexcept;

}  // namespace RynCommon
