// Vector kernels over runs of UTF-16 units: find the first of a few stop units, widen and narrow,
// count line ends.
//
// Each kernel has a scalar twin of the same meaning in the namespace `scalar`. The kernels are
// compiled for several instruction sets; the first call picks the best that the processor has and
// from then on a call costs one indirect jump. The environment variable RYNCOMMON_SCALAR, set to
// anything at the first call, picks the scalar twins. All functions may be called from any thread
// and from static initialisers; none allocates or throws. No kernel reads outside of the range
// given.
#pragma once

#include <cstddef>
#include <cstdint>

namespace RynCommon {

/// What countLines() finds in a run.
struct LineCount {
    std::size_t lines = 0;  ///< number of LF units
    /// Number of characters after the last LF, or from the start when there is none: every unit
    /// counts except low surrogates.
    std::size_t charactersAfterLast = 0;
};

/// Characters that pass as they are: U+0020 to U+0020 + `span`, and `control`, without `stops`.
/// All are ASCII.
struct PassingSet {
    std::uint8_t span;
    std::uint8_t control;
    std::uint8_t stops[5];

    constexpr bool holds(unsigned unit) const {
        for (const std::uint8_t stop : stops)
            if (unit == stop) return false;
        return unit == control || unit - 0x20u <= span;
    }
};

/// First "<", "&" or "]" in [p, end), or `end`.
const char16_t* findTextStop(const char16_t* p, const char16_t* end) noexcept;
/// First `quote`, "<", "&", TAB, LF or CR in [p, end), or `end`.
const char16_t* findValueStop(const char16_t* p, const char16_t* end, char16_t quote) noexcept;
/// First `unit` in [p, end), or `end`.
const char16_t* findUnit(const char16_t* p, const char16_t* end, char16_t unit) noexcept;
/// First `a` or `b` in [p, end), or `end`.
const char16_t* findMarkupStop(const char16_t* p, const char16_t* end, char16_t a,
                               char16_t b) noexcept;
/// First CR, U+0085, U+2028 or U+FFFF in [p, end), or `end`: what line-end normalisation has to
/// look at.
const char16_t* findLineBreakUnit(const char16_t* p, const char16_t* end) noexcept;

/// The LFs and low surrogates of a run: all other units are a column each.
struct ColumnStops {
    static constexpr std::size_t MOST = 64;

    std::size_t count = 0;
    const char16_t* places[MOST];
};
/// Notes those of [p, end) in order, as far as there is room for them, and returns the place before
/// which they are all noted.
const char16_t* findColumnStops(const char16_t* p, const char16_t* end,
                                ColumnStops& stops) noexcept;

/// Counts the line ends of [p, end) and the characters after the last.
LineCount countLines(const char16_t* p, const char16_t* end) noexcept;

/// Widens the longest ASCII prefix of `in` and returns its length. `out` has room for `n` units,
/// all of which may be written to.
std::size_t widenAscii(const std::uint8_t* in, std::size_t n, char16_t* out) noexcept;
/// Whether all `n` units are below U+0100.
bool isLatin1(const char16_t* p, std::size_t n) noexcept;
/// Keeps the low byte of each unit; the units are below U+0100.
void narrowLatin1(const char16_t* in, std::size_t n, std::uint8_t* out) noexcept;
/// Makes each byte a unit.
void widenLatin1(const std::uint8_t* in, std::size_t n, char16_t* out) noexcept;

/// Copies what passes from the start of `in`, in whole groups of PASSING_GROUP characters up to the
/// first that does not pass, and returns the number copied. `out` has room for `n` bytes, all of
/// which may be written to.
constexpr std::size_t PASSING_GROUP = 16;
std::size_t copyPassing(const std::uint8_t* in, std::size_t n, const PassingSet& set,
                        char* out) noexcept;
/// The same for units, which become bytes.
std::size_t narrowPassing(const char16_t* in, std::size_t n, const PassingSet& set,
                          char* out) noexcept;

/// The scalar twins: the reference that the vector kernels are tested against, and what
/// RYNCOMMON_SCALAR selects.
namespace scalar {
const char16_t* findTextStop(const char16_t* p, const char16_t* end);
const char16_t* findValueStop(const char16_t* p, const char16_t* end, char16_t quote);
const char16_t* findUnit(const char16_t* p, const char16_t* end, char16_t unit);
const char16_t* findMarkupStop(const char16_t* p, const char16_t* end, char16_t a, char16_t b);
const char16_t* findLineBreakUnit(const char16_t* p, const char16_t* end);
const char16_t* findColumnStops(const char16_t* p, const char16_t* end, ColumnStops& stops);
LineCount countLines(const char16_t* p, const char16_t* end);
std::size_t widenAscii(const std::uint8_t* in, std::size_t n, char16_t* out);
bool isLatin1(const char16_t* p, std::size_t n);
void narrowLatin1(const char16_t* in, std::size_t n, std::uint8_t* out);
void widenLatin1(const std::uint8_t* in, std::size_t n, char16_t* out);
std::size_t copyPassing(const std::uint8_t* in, std::size_t n, const PassingSet& set, char* out);
std::size_t narrowPassing(const char16_t* in, std::size_t n, const PassingSet& set, char* out);
}  // namespace scalar

}  // namespace RynCommon
