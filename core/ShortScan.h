// Scans and comparisons that mostly end within a few units, in line.
//
// The vector kernels of UnitScan.h pay from some ten units on; a call costs more than a look at the
// first units, where the texts, values and names of dense documents end. Each function looks at the
// first few itself and leaves longer runs to the kernel, so that both give the same answer. A loop
// over single units ends at another place each time, which the processor cannot foresee; a look at
// eight at once ends at the first or the second mostly.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "core/EightUnits.h"
#include "core/UnitScan.h"

namespace RynCommon {

namespace detail {

/// Looks for `units` in the first sixteen units from `p` on, as far as there are as many: moves `p`
/// to what it finds, or behind what it looked at. Whether it found one.
template <class... Units>
bool findNear(const char16_t*& p, const char16_t* end, Units... units) {
    for (int i = 0; i < 2 && end - p >= EightUnits::COUNT; ++i) {
        const std::uint64_t marks = EightUnits(p).marks(units...);
        if (marks != 0) {
            p += EightUnits::first(marks);
            return true;
        }
        p += EightUnits::COUNT;
    }
    return false;
}

template <class Word>
bool equalWords(const char16_t* a, const char16_t* b, std::size_t at) {
    Word first, second;
    std::memcpy(&first, a + at, sizeof(Word));
    std::memcpy(&second, b + at, sizeof(Word));
    return first == second;
}

}  // namespace detail

/// findTextStop() for runs that are often short.
inline const char16_t* scanTextStop(const char16_t* p, const char16_t* end) {
    return detail::findNear(p, end, u'<', u'&', u']') ? p : findTextStop(p, end);
}

/// findValueStop() for runs that are often short.
inline const char16_t* scanValueStop(const char16_t* p, const char16_t* end, char16_t quote) {
    const bool found = detail::findNear(p, end, quote, u'<', u'&', u'\t', u'\n', u'\r');
    return found ? p : findValueStop(p, end, quote);
}

/// Whether both runs of `length` units are equal. Words that overlap compare any length up to
/// sixteen in a few steps.
inline bool equalUnits(const char16_t* a, const char16_t* b, std::size_t length) {
    using detail::equalWords;
    if (length > 16) return std::memcmp(a, b, length * sizeof(char16_t)) == 0;
    if (length >= 8) {
        return equalWords<std::uint64_t>(a, b, 0) && equalWords<std::uint64_t>(a, b, 4) &&
               equalWords<std::uint64_t>(a, b, length - 8) &&
               equalWords<std::uint64_t>(a, b, length - 4);
    }
    if (length >= 4)
        return equalWords<std::uint64_t>(a, b, 0) && equalWords<std::uint64_t>(a, b, length - 4);
    if (length >= 2)
        return equalWords<std::uint32_t>(a, b, 0) && equalWords<std::uint32_t>(a, b, length - 2);
    return length == 0 || *a == *b;
}

}  // namespace RynCommon
