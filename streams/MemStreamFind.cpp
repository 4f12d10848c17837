// The search kernels for each instruction set, and the choice between them.
//
// Everything between HWY_BEFORE_NAMESPACE and HWY_AFTER_NAMESPACE is compiled once per instruction
// set, with vectors of at most 256 bits. A range at least one vector long is finished by a vector
// that overlaps the one before it, a shorter one byte by byte.
#include "streams/MemStreamFind.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "streams/MemStreamFind.cpp"
// Between SSE2 and AVX2, and above AVX2, nothing that these kernels use gets faster.
#define HWY_DISABLED_TARGETS (HWY_SSSE3 | HWY_SSE4 | HWY_AVX3 | HWY_AVX3_DL)
#include <hwy/foreach_target.h>
// foreach_target.h comes first.
#include <hwy/highway.h>

#include <cstdint>
#include <cstring>

HWY_BEFORE_NAMESPACE();
namespace RynCommon {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

/// What the kernels share of a search: the pattern, of two bytes or more, and what it may cost.
struct Search {
    const char* pattern;
    std::size_t length;
    std::size_t& credit;
    bool found = false;

    bool mayStandAt(const char* p) const {
        return p[0] == pattern[0] && p[length - 1] == pattern[length - 1];
    }
    /// Compares the bytes before the last, at a place where that one stands. The byte before it
    /// tells most near misses of text apart without a call.
    bool standsAt(const char* p) {
        if (p[length - 2] != pattern[length - 2]) return false;
        credit = credit > length ? credit - length : 0;
        return found = std::memcmp(p, pattern, length - 2) == 0;
    }
};

#undef RYN_HAS_VECTORS
#if HWY_TARGET == HWY_SCALAR || HWY_TARGET == HWY_EMU128
#define RYN_HAS_VECTORS 0
#else
#define RYN_HAS_VECTORS 1
#endif

HWY_INLINE const char* findPlainly(const char* p, const char* end, Search& search) {
    for (; p != end && search.credit != 0; ++p)
        if (search.mayStandAt(p) && search.standsAt(p)) return p;
    return p;
}

HWY_INLINE bool isLineEnd(char c) {
    return c == '\n' || c == '\r';
}

#if RYN_HAS_VECTORS

using Tag = hn::CappedTag<std::uint8_t, 32>;

HWY_INLINE const std::uint8_t* bytesAt(const char* p) {
    return reinterpret_cast<const std::uint8_t*>(p);
}

HWY_INLINE std::uint64_t bitsOf(hn::Mask<Tag> mask) {
    std::uint64_t bits = 0;
    hn::StoreMaskBits(Tag(), mask, reinterpret_cast<std::uint8_t*>(&bits));
    return bits;
}

/// Compares at each place of `bits` from `p`; null when the pattern stands at none.
HWY_INLINE const char* tryPlaces(const char* p, std::uint64_t bits, Search& search) {
    for (; bits != 0; bits &= bits - 1) {
        const char* const place = p + hwy::Num0BitsBelowLS1Bit_Nonzero64(bits);
        if (search.standsAt(place)) return place;
    }
    return nullptr;
}

/// The places are [p, end), at least a vector of them. Stops early, between two vectors, when the
/// credit is used up.
HWY_INLINE const char* findInVectors(const char* p, const char* end, Search& search) {
    const Tag d;
    const std::size_t lanes = hn::Lanes(d);
    const std::size_t last = search.length - 1;
    const auto first = hn::Set(d, static_cast<std::uint8_t>(search.pattern[0]));
    const auto closing = hn::Set(d, static_cast<std::uint8_t>(search.pattern[last]));
    const auto placesAt = [&](const char* at) HWY_ATTR {
        return hn::And(hn::Eq(hn::LoadU(d, bytesAt(at)), first),
                       hn::Eq(hn::LoadU(d, bytesAt(at + last)), closing));
    };
    for (; static_cast<std::size_t>(end - p) >= 2 * lanes; p += 2 * lanes) {
        const auto low = placesAt(p);
        const auto high = placesAt(p + lanes);
        if (hn::AllFalse(d, hn::Or(low, high))) continue;
        const std::uint64_t bits = bitsOf(low) | bitsOf(high) << (lanes % 64);
        if (const char* const found = tryPlaces(p, bits, search)) return found;
        if (search.credit == 0) return p + 2 * lanes;
    }
    for (std::size_t skip = 0; p != end && search.credit != 0; p += lanes - skip, skip = 0) {
        const auto left = static_cast<std::size_t>(end - p);
        if (left < lanes) skip = lanes - left;
        const std::uint64_t bits = bitsOf(placesAt(p - skip)) >> skip;
        if (const char* const found = tryPlaces(p, bits, search)) return found;
    }
    return p;
}

#endif

/// Where the pattern stands first among the places [p, end), with `found` set; or where the search
/// ended: at `end`, or before it without credit.
const char* findPattern(const char* p, const char* end, const char* pattern, std::size_t length,
                        std::size_t& credit, bool& found) {
    Search search{pattern, length, credit};
#if RYN_HAS_VECTORS
    const bool wide = static_cast<std::size_t>(end - p) >= hn::Lanes(Tag());
    p = wide ? findInVectors(p, end, search) : findPlainly(p, end, search);
#else
    p = findPlainly(p, end, search);
#endif
    found = search.found;
    return p;
}

const char* findLineEnd(const char* p, const char* end) {
#if RYN_HAS_VECTORS
    const Tag d;
    const std::size_t lanes = hn::Lanes(d);
    const auto feed = hn::Set(d, std::uint8_t{'\n'});
    const auto carriage = hn::Set(d, std::uint8_t{'\r'});
    for (; static_cast<std::size_t>(end - p) >= lanes; p += lanes) {
        const auto bytes = hn::LoadU(d, bytesAt(p));
        const auto mask = hn::Or(hn::Eq(bytes, feed), hn::Eq(bytes, carriage));
        if (!hn::AllFalse(d, mask)) return p + hn::FindKnownFirstTrue(d, mask);
    }
#endif
    while (p != end && !isLineEnd(*p)) ++p;
    return p;
}

}  // namespace HWY_NAMESPACE
}  // namespace RynCommon
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace RynCommon {

HWY_EXPORT(findPattern);
HWY_EXPORT(findLineEnd);

namespace {

/// Bytes that may be compared in vain for each byte passed.
constexpr std::size_t CREDIT_RATE = 4;

/// memmem() is a common extension of C libraries, and linear in theirs.
std::size_t findWithLibrary(std::string_view text, std::string_view pattern) {
    const void* const found = memmem(text.data(), text.size(), pattern.data(), pattern.size());
    if (found == nullptr) return BytePattern::NOT_FOUND;
    return static_cast<std::size_t>(static_cast<const char*>(found) - text.data());
}

}  // namespace

std::size_t BytePattern::find(std::string_view text) {
    if (text.size() < pattern_.size()) return NOT_FOUND;
    if (pattern_.size() == 1) return text.find(pattern_.front());
    if (nearMisses_) return findWithLibrary(text, pattern_);
    credit_ += CREDIT_RATE * text.size() + pattern_.size();
    bool found = false;
    const char* const end = text.data() + (text.size() - pattern_.size() + 1);
    const char* const place = HWY_DYNAMIC_DISPATCH(findPattern)(text.data(), end, pattern_.data(),
                                                                pattern_.size(), credit_, found);
    const auto offset = static_cast<std::size_t>(place - text.data());
    if (found) return offset;
    nearMisses_ = credit_ == 0;
    if (!nearMisses_ || place == end) return NOT_FOUND;
    const std::size_t later = findWithLibrary(text.substr(offset), pattern_);
    return later == NOT_FOUND ? NOT_FOUND : offset + later;
}

const char* findLineEnd(const char* p, const char* end) noexcept {
    return HWY_DYNAMIC_DISPATCH(findLineEnd)(p, end);
}

}  // namespace RynCommon

#endif
