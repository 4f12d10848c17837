// Eight UTF-16 units at a time, in line.
//
// The kernels of UnitScan.h are called through a table of pointers, since they use what the
// processor at hand has. Names, values and texts of dense documents are shorter than such a call is
// long. This much every processor that the compilers' vector extension knows can do without asking:
// sixteen bytes are compared with a unit at once, and the answers are narrowed into one word.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace RynCommon {

class EightUnits {
public:
    static constexpr std::ptrdiff_t COUNT = 8;

    explicit EightUnits(const char16_t* p) { std::memcpy(&units_, p, sizeof units_); }

    /// Byte i of the result is not 0 where unit i is one of `units`.
    template <class... Units>
    std::uint64_t marks(Units... units) const {
#if defined(__GNUC__)
        const Wide found = reinterpret_cast<Wide>(((units_ == static_cast<Unit>(units)) | ...));
        return wordOf(__builtin_convertvector(found, Narrow));
#else
        std::uint64_t word = 0;
        for (int i = 0; i < COUNT; ++i)
            if (((units_[i] == units) || ...)) word |= std::uint64_t{0xFF} << 8 * i;
        return word;
#endif
    }
    /// The low bytes of the first `count` units, 1 to 7, the first in the lowest bits; false where
    /// one of these units is not Latin-1.
    bool toLatin1(std::size_t count, std::uint64_t& bytes) const {
        const std::uint64_t mask = (std::uint64_t{1} << 8 * count) - 1;
#if defined(__GNUC__)
        if constexpr (std::endian::native == std::endian::little) {
            bytes = wordOf(__builtin_convertvector(units_ & Unit{0xFF}, Narrow)) & mask;
            return (wordOf(__builtin_convertvector(units_ >> 8, Narrow)) & mask) == 0;
        }
#endif
        std::uint64_t all = 0;
        bytes = 0;
        for (std::size_t i = 0; i < count; ++i) {
            all |= units_[i];
            bytes |= std::uint64_t{units_[i]} << 8 * i;
        }
        bytes &= mask;
        return all < 0x100;
    }
    /// The index of the first unit that is marked; `marks` is not 0.
    static int first(std::uint64_t marks) {
        if constexpr (std::endian::native == std::endian::big) return std::countl_zero(marks) >> 3;
        return std::countr_zero(marks) >> 3;
    }

private:
    using Unit = std::uint16_t;
#if defined(__GNUC__)
    using Wide = Unit __attribute__((vector_size(16)));
    using Narrow = std::uint8_t __attribute__((vector_size(8)));

    static std::uint64_t wordOf(Narrow narrow) {
        std::uint64_t word;
        std::memcpy(&word, &narrow, sizeof word);
        return word;
    }

    Wide units_;
#else
    Unit units_[8];
#endif
};

}  // namespace RynCommon
