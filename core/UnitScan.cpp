// The scan kernels for each instruction set, and the choice between them.
//
// This file is compiled once per instruction set: everything between HWY_BEFORE_NAMESPACE and
// HWY_AFTER_NAMESPACE is repeated in a namespace of its own. Vectors are capped at 256 bits: runs
// in documents are short, and wider ones make some processors lower their clock. A range at least
// one vector long is finished by a vector that overlaps the one before it, a shorter one by half a
// vector or unit by unit.
#include "core/UnitScan.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "core/UnitScan.cpp"
// Between SSSE3 and AVX2, and above AVX2, nothing that these kernels use gets faster.
#define HWY_DISABLED_TARGETS (HWY_SSE4 | HWY_AVX3 | HWY_AVX3_DL)
#include <hwy/foreach_target.h>
// foreach_target.h comes first.
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace RynCommon {
namespace HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR || HWY_TARGET == HWY_EMU128

// A processor without vectors.
using scalar::copyPassing;
using scalar::countLines;
using scalar::findColumnStops;
using scalar::findLineBreakUnit;
using scalar::findMarkupStop;
using scalar::findTextStop;
using scalar::findUnit;
using scalar::findValueStop;
using scalar::isLatin1;
using scalar::narrowLatin1;
using scalar::narrowPassing;
using scalar::widenAscii;
using scalar::widenLatin1;

#else

namespace hn = hwy::HWY_NAMESPACE;

using WideTag = hn::CappedTag<std::uint16_t, 16>;
using HalfTag = hn::CappedTag<std::uint16_t, 8>;

template <class D>
HWY_INLINE hn::Vec<D> load(D d, const char16_t* p) {
    return hn::LoadU(d, reinterpret_cast<const std::uint16_t*>(p));
}

template <class D>
HWY_INLINE hn::Mask<D> matches(D d, hn::Vec<D> v, char16_t unit) {
    return hn::Eq(v, hn::Set(d, unit));
}

template <class D, class... Units>
HWY_INLINE hn::Mask<D> matches(D d, hn::Vec<D> v, char16_t unit, Units... more) {
    return hn::Or(hn::Eq(v, hn::Set(d, unit)), matches(d, v, more...));
}

// Two equal bits for each unit, set where the mask is; the first unit has the lowest.
template <class D>
HWY_INLINE std::uint64_t bitsOf(D d, hn::Mask<D> mask) {
    const hn::Repartition<std::uint8_t, D> bytes;
    std::uint64_t bits = 0;
    hn::StoreMaskBits(bytes, hn::MaskFromVec(hn::BitCast(bytes, hn::VecFromMask(d, mask))),
                      reinterpret_cast<std::uint8_t*>(&bits));
    return bits;
}

template <class D, class... Units>
HWY_INLINE std::uint64_t hits(D d, const char16_t* p, Units... units) {
    return bitsOf(d, matches(d, load(d, p), units...));
}

HWY_INLINE const char16_t* firstHit(const char16_t* p, std::uint64_t bits) {
    return p + hwy::Num0BitsBelowLS1Bit_Nonzero64(bits) / 2;
}

// The range is at least one vector long. Vectors are taken in pairs as far as they go, which halves
// the branches that depend on the length of a run. `hitsAt(d, p)` gives the bits of a vector.
template <class D, class HitsAt>
HWY_INLINE const char16_t* findInVectors(D d, const char16_t* p, const char16_t* end,
                                         const HitsAt& hitsAt) {
    const std::size_t lanes = hn::Lanes(d);
    for (; static_cast<std::size_t>(end - p) >= 2 * lanes; p += 2 * lanes) {
        const std::uint64_t bits = hitsAt(d, p) | hitsAt(d, p + lanes) << (2 * lanes);
        if (bits != 0) return firstHit(p, bits);
    }
    if (static_cast<std::size_t>(end - p) >= lanes) {
        const std::uint64_t bits = hitsAt(d, p);
        if (bits != 0) return firstHit(p, bits);
        p += lanes;
    }
    if (p == end) return end;
    const std::uint64_t bits = hitsAt(d, end - lanes);
    return bits != 0 ? firstHit(end - lanes, bits) : end;
}

template <class HitsAt, class IsHit>
HWY_INLINE const char16_t* findHit(const char16_t* p, const char16_t* end, const HitsAt& hitsAt,
                                   const IsHit& isHit) {
    const std::size_t n = static_cast<std::size_t>(end - p);
    const WideTag wide;
    const HalfTag half;
    if (n >= hn::Lanes(wide)) return findInVectors(wide, p, end, hitsAt);
    if (n >= hn::Lanes(half)) return findInVectors(half, p, end, hitsAt);
    while (p != end && !isHit(*p)) ++p;
    return p;
}

template <class... Units>
HWY_INLINE const char16_t* find(const char16_t* p, const char16_t* end, Units... units) {
    const auto hitsAt = [units...](auto d, const char16_t* at) { return hits(d, at, units...); };
    return findHit(p, end, hitsAt, [units...](char16_t unit) { return ((unit == units) || ...); });
}

// The stop units of a value, each at the place that its lowest four bits give, in which they all
// differ; elsewhere what no unit with these bits equals. A row for either quote.
alignas(16) constexpr std::uint8_t VALUE_STOPS[2][16] = {
    {1, 0, '"', 0, 0, 0, '&', 0, 0, '\t', '\n', 0, '<', '\r', 0, 0},
    {1, 0, 0, 0, 0, 0, '&', '\'', 0, '\t', '\n', 0, '<', '\r', 0, 0},
};

// Six comparisons in one: each unit's lowest bits look up the only stop that it can be, and its
// high byte looks up 0. Path data is read in a tenth less time.
template <class D>
HWY_INLINE std::uint64_t valueStopHits(D d, const char16_t* p, const std::uint8_t* table) {
    const hn::Repartition<std::uint8_t, D> bytes;
    const auto v = load(d, p);
    const auto index = hn::Or(hn::And(v, hn::Set(d, 0x000F)), hn::Set(d, 0x8000));
    const auto stops =
        hn::TableLookupBytesOr0(hn::LoadDup128(bytes, table), hn::BitCast(bytes, index));
    return bitsOf(d, hn::Eq(hn::BitCast(d, stops), v));
}

const char16_t* findTextStop(const char16_t* p, const char16_t* end) {
    return find(p, end, u'<', u'&', u']');
}

const char16_t* findValueStop(const char16_t* p, const char16_t* end, char16_t quote) {
    if (quote != u'"' && quote != u'\'')
        return find(p, end, quote, u'<', u'&', u'\t', u'\n', u'\r');
    const std::uint8_t* const table = VALUE_STOPS[quote == u'"' ? 0 : 1];
    const auto hitsAt = [table](auto d, const char16_t* at) { return valueStopHits(d, at, table); };
    return findHit(p, end, hitsAt, [table](char16_t unit) { return table[unit & 0xF] == unit; });
}

const char16_t* findUnit(const char16_t* p, const char16_t* end, char16_t unit) {
    return find(p, end, unit);
}

const char16_t* findMarkupStop(const char16_t* p, const char16_t* end, char16_t a, char16_t b) {
    return find(p, end, a, b);
}

const char16_t* findLineBreakUnit(const char16_t* p, const char16_t* end) {
    return find(p, end, u'\r', char16_t{0x85}, char16_t{0x2028}, char16_t{0xFFFF});
}

template <class D>
HWY_INLINE std::uint64_t columnStops(D d, const char16_t* p) {
    const auto v = load(d, p);
    const auto lows = hn::Eq(hn::And(v, hn::Set(d, 0xFC00)), hn::Set(d, 0xDC00));
    return bitsOf(d, hn::Or(lows, hn::Eq(v, hn::Set(d, u'\n'))));
}

const char16_t* findColumnStops(const char16_t* p, const char16_t* end, ColumnStops& stops) {
    const WideTag d;
    const std::size_t lanes = hn::Lanes(d);
    std::size_t count = 0;
    while (static_cast<std::size_t>(end - p) >= 2 * lanes &&
           count + 2 * lanes <= ColumnStops::MOST) {
        std::uint64_t bits = columnStops(d, p) | columnStops(d, p + lanes) << (2 * lanes);
        for (; bits != 0; bits &= bits - 1) {
            stops.places[count++] = firstHit(p, bits);
            bits &= bits - 1;  // of the two that stand for a unit
        }
        p += 2 * lanes;
    }
    stops.count = count;
    const bool isNearEnd = static_cast<std::size_t>(end - p) < 2 * lanes;
    if (!isNearEnd || count + 2 * lanes > ColumnStops::MOST) return p;
    for (; p != end; ++p)
        if (*p == u'\n' || (*p & 0xFC00) == 0xDC00) stops.places[stops.count++] = p;
    return p;
}

// The units for which `bits` is set, two bits each. The range is at least one vector long; what the
// last vector shares with the one before it is shifted out.
template <class D, class BitsAt>
HWY_INLINE std::size_t countUnits(D d, const char16_t* p, const char16_t* end, BitsAt bitsAt) {
    const std::size_t lanes = hn::Lanes(d);
    std::size_t bits = 0;
    for (; static_cast<std::size_t>(end - p) >= lanes; p += lanes) bits += hwy::PopCount(bitsAt(p));
    const std::size_t left = static_cast<std::size_t>(end - p);
    if (left != 0) bits += hwy::PopCount(bitsAt(end - lanes) >> (2 * (lanes - left)));
    return bits / 2;
}

// Behind the last line feed of a range of at least one vector that holds one.
template <class D>
HWY_INLINE const char16_t* behindLastFeed(D d, const char16_t* begin, const char16_t* end) {
    const std::size_t lanes = hn::Lanes(d);
    const auto behind = [](const char16_t* p, std::uint64_t bits) {
        return p + (64 - hwy::Num0BitsAboveMS1Bit_Nonzero64(bits)) / 2;
    };
    const char16_t* p = end - lanes;
    for (;;) {
        const std::uint64_t bits = hits(d, p, u'\n');
        if (bits != 0) return behind(p, bits);
        p = static_cast<std::size_t>(p - begin) < lanes ? begin : p - lanes;
    }
}

// One pass counts line feeds alone; only the last line is looked at for its characters. Reading
// prose spends 6 % less time than with both in one pass over all of it.
template <class D>
HWY_INLINE LineCount countInVectors(D d, const char16_t* p, const char16_t* end) {
    const auto feeds = [d](const char16_t* at) { return hits(d, at, u'\n'); };
    const auto lows = [d](const char16_t* at) {
        return bitsOf(d, hn::Eq(hn::And(load(d, at), hn::Set(d, 0xFC00)), hn::Set(d, 0xDC00)));
    };
    LineCount count;
    count.lines = countUnits(d, p, end, feeds);
    if (count.lines != 0) p = behindLastFeed(d, p, end);
    const std::size_t units = static_cast<std::size_t>(end - p);
    if (units < hn::Lanes(d)) {
        count.charactersAfterLast = scalar::countLines(p, end).charactersAfterLast;
    } else {
        count.charactersAfterLast = units - countUnits(d, p, end, lows);
    }
    return count;
}

LineCount countLines(const char16_t* p, const char16_t* end) {
    const std::size_t n = static_cast<std::size_t>(end - p);
    if (n >= hn::Lanes(WideTag())) return countInVectors(WideTag(), p, end);
    if (n >= hn::Lanes(HalfTag())) return countInVectors(HalfTag(), p, end);
    return scalar::countLines(p, end);
}

// Widens whole vectors; returns how far it came. `ascii` says whether all of that was ASCII.
template <class D>
HWY_INLINE std::size_t widenAsciiVectors(D wide, const std::uint8_t* in, std::size_t n,
                                         char16_t* out, bool& ascii) {
    const hn::Rebind<std::uint8_t, D> narrow;
    const hn::RebindToSigned<decltype(narrow)> narrowSigned;
    const std::size_t lanes = hn::Lanes(wide);
    std::size_t i = 0;
    for (; n - i >= lanes; i += lanes) {
        const auto bytes = hn::LoadU(narrow, in + i);
        hn::StoreU(hn::PromoteTo(wide, bytes), wide, reinterpret_cast<std::uint16_t*>(out + i));
        const auto beyond = hn::Lt(hn::BitCast(narrowSigned, bytes), hn::Zero(narrowSigned));
        if (!hn::AllFalse(narrowSigned, beyond)) {
            ascii = false;
            return i + hn::FindKnownFirstTrue(narrowSigned, beyond);
        }
    }
    return i;
}

std::size_t widenAscii(const std::uint8_t* in, std::size_t n, char16_t* out) {
    bool ascii = true;
    std::size_t i = widenAsciiVectors(WideTag(), in, n, out, ascii);
    if (ascii) i += widenAsciiVectors(HalfTag(), in + i, n - i, out + i, ascii);
    if (ascii) i += scalar::widenAscii(in + i, n - i, out + i);
    return i;
}

template <class D>
HWY_INLINE bool isLatin1InVectors(D d, const char16_t* p, std::size_t n) {
    const std::size_t lanes = hn::Lanes(d);
    auto seen = load(d, p + n - lanes);
    for (std::size_t i = 0; n - i >= lanes; i += lanes) seen = hn::Or(seen, load(d, p + i));
    return hn::AllTrue(d, hn::Eq(hn::And(seen, hn::Set(d, 0xFF00)), hn::Zero(d)));
}

bool isLatin1(const char16_t* p, std::size_t n) {
    if (n >= hn::Lanes(WideTag())) return isLatin1InVectors(WideTag(), p, n);
    if (n >= hn::Lanes(HalfTag())) return isLatin1InVectors(HalfTag(), p, n);
    return scalar::isLatin1(p, n);
}

template <class D>
HWY_INLINE void narrowVector(D wide, const char16_t* in, std::uint8_t* out) {
    const hn::RebindToSigned<D> wideSigned;
    const hn::Rebind<std::uint8_t, D> narrow;
    // Values below 256 are the same when signed, and the saturation of the demotion leaves them
    // alone.
    hn::StoreU(hn::DemoteTo(narrow, hn::BitCast(wideSigned, load(wide, in))), narrow, out);
}

template <class D>
HWY_INLINE void widenVector(D wide, const std::uint8_t* in, char16_t* out) {
    const hn::Rebind<std::uint8_t, D> narrow;
    hn::StoreU(hn::PromoteTo(wide, hn::LoadU(narrow, in)), wide,
               reinterpret_cast<std::uint16_t*>(out));
}

template <class D>
HWY_INLINE void narrowInVectors(D d, const char16_t* in, std::size_t n, std::uint8_t* out) {
    const std::size_t lanes = hn::Lanes(d);
    for (std::size_t i = 0; n - i > lanes; i += lanes) narrowVector(d, in + i, out + i);
    narrowVector(d, in + n - lanes, out + n - lanes);
}

template <class D>
HWY_INLINE void widenInVectors(D d, const std::uint8_t* in, std::size_t n, char16_t* out) {
    const std::size_t lanes = hn::Lanes(d);
    for (std::size_t i = 0; n - i > lanes; i += lanes) widenVector(d, in + i, out + i);
    widenVector(d, in + n - lanes, out + n - lanes);
}

void narrowLatin1(const char16_t* in, std::size_t n, std::uint8_t* out) {
    if (n >= hn::Lanes(WideTag())) return narrowInVectors(WideTag(), in, n, out);
    if (n >= hn::Lanes(HalfTag())) return narrowInVectors(HalfTag(), in, n, out);
    scalar::narrowLatin1(in, n, out);
}

void widenLatin1(const std::uint8_t* in, std::size_t n, char16_t* out) {
    if (n >= hn::Lanes(WideTag())) return widenInVectors(WideTag(), in, n, out);
    if (n >= hn::Lanes(HalfTag())) return widenInVectors(HalfTag(), in, n, out);
    scalar::widenLatin1(in, n, out);
}

// What passes, as lanes of bytes or of units.
template <class D>
HWY_INLINE hn::Mask<D> passing(D d, hn::Vec<D> v, const PassingSet& set) {
    const auto is = [d, v](std::uint8_t c) { return hn::Eq(v, hn::Set(d, c)); };
    const auto above = hn::Sub(v, hn::Set(d, ' '));
    const auto inSpan = hn::Eq(hn::Min(above, hn::Set(d, set.span)), above);
    const auto markup = hn::Or(is(set.stops[0]), hn::Or(is(set.stops[1]), is(set.stops[2])));
    const auto stops = hn::Or(markup, hn::Or(is(set.stops[3]), is(set.stops[4])));
    return hn::And(hn::Or(inSpan, is(set.control)), hn::Not(stops));
}

// The first lane that does not pass, or the number of lanes.
template <class D>
HWY_INLINE std::size_t countPassing(D d, hn::Mask<D> passes) {
    if (hn::AllTrue(d, passes)) [[likely]]
        return hn::Lanes(d);
    return hn::FindKnownFirstTrue(d, hn::Not(passes));
}

template <class D>
HWY_INLINE bool copyVectors(D d, const std::uint8_t* in, std::size_t n, const PassingSet& set,
                            char* out, std::size_t& done) {
    const std::size_t lanes = hn::Lanes(d);
    while (n - done >= lanes) {
        const auto v = hn::LoadU(d, in + done);
        hn::StoreU(v, d, reinterpret_cast<std::uint8_t*>(out + done));
        const std::size_t passed = countPassing(d, passing(d, v, set));
        done += passed;
        if (passed != lanes) return false;
    }
    return true;
}

std::size_t copyPassing(const std::uint8_t* in, std::size_t n, const PassingSet& set, char* out) {
    const hn::CappedTag<std::uint8_t, 2 * PASSING_GROUP> wide;
    const hn::CappedTag<std::uint8_t, PASSING_GROUP> half;
    std::size_t done = 0;
    if (copyVectors(wide, in, n, set, out, done)) copyVectors(half, in, n, set, out, done);
    return done;
}

std::size_t narrowPassing(const char16_t* in, std::size_t n, const PassingSet& set, char* out) {
    const WideTag d;
    const std::size_t lanes = hn::Lanes(d);
    const std::size_t inGroups = n - n % PASSING_GROUP;
    std::size_t done = 0;
    while (done < inGroups) {
        narrowVector(d, in + done, reinterpret_cast<std::uint8_t*>(out + done));
        const std::size_t passed = countPassing(d, passing(d, load(d, in + done), set));
        done += passed;
        if (passed != lanes) break;
    }
    return done;
}

#endif

}  // namespace HWY_NAMESPACE
}  // namespace RynCommon
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

#include "core/KernelChoice.h"

namespace RynCommon {

HWY_EXPORT(findTextStop);
HWY_EXPORT(findValueStop);
HWY_EXPORT(findUnit);
HWY_EXPORT(findMarkupStop);
HWY_EXPORT(findLineBreakUnit);
HWY_EXPORT(findColumnStops);
HWY_EXPORT(countLines);
HWY_EXPORT(widenAscii);
HWY_EXPORT(isLatin1);
HWY_EXPORT(narrowLatin1);
HWY_EXPORT(widenLatin1);
HWY_EXPORT(copyPassing);
HWY_EXPORT(narrowPassing);

namespace {

struct Kernels {
    const char16_t* (*findTextStop)(const char16_t*, const char16_t*);
    const char16_t* (*findValueStop)(const char16_t*, const char16_t*, char16_t);
    const char16_t* (*findUnit)(const char16_t*, const char16_t*, char16_t);
    const char16_t* (*findMarkupStop)(const char16_t*, const char16_t*, char16_t, char16_t);
    const char16_t* (*findLineBreakUnit)(const char16_t*, const char16_t*);
    const char16_t* (*findColumnStops)(const char16_t*, const char16_t*, ColumnStops&);
    LineCount (*countLines)(const char16_t*, const char16_t*);
    std::size_t (*widenAscii)(const std::uint8_t*, std::size_t, char16_t*);
    bool (*isLatin1)(const char16_t*, std::size_t);
    void (*narrowLatin1)(const char16_t*, std::size_t, std::uint8_t*);
    void (*widenLatin1)(const std::uint8_t*, std::size_t, char16_t*);
    std::size_t (*copyPassing)(const std::uint8_t*, std::size_t, const PassingSet&, char*);
    std::size_t (*narrowPassing)(const char16_t*, std::size_t, const PassingSet&, char*);
};

Kernels selectKernels() noexcept {
    if (wantsScalarKernels()) {
        return {scalar::findTextStop,   scalar::findValueStop,     scalar::findUnit,
                scalar::findMarkupStop, scalar::findLineBreakUnit, scalar::findColumnStops,
                scalar::countLines,     scalar::widenAscii,        scalar::isLatin1,
                scalar::narrowLatin1,   scalar::widenLatin1,       scalar::copyPassing,
                scalar::narrowPassing};
    }
    // The tables' first entry chooses at each call; asking for the targets once makes them hand out
    // the kernels.
    hwy::GetChosenTarget().Update(hwy::SupportedTargets());
    return {HWY_DYNAMIC_DISPATCH(findTextStop),      HWY_DYNAMIC_DISPATCH(findValueStop),
            HWY_DYNAMIC_DISPATCH(findUnit),          HWY_DYNAMIC_DISPATCH(findMarkupStop),
            HWY_DYNAMIC_DISPATCH(findLineBreakUnit), HWY_DYNAMIC_DISPATCH(findColumnStops),
            HWY_DYNAMIC_DISPATCH(countLines),        HWY_DYNAMIC_DISPATCH(widenAscii),
            HWY_DYNAMIC_DISPATCH(isLatin1),          HWY_DYNAMIC_DISPATCH(narrowLatin1),
            HWY_DYNAMIC_DISPATCH(widenLatin1),       HWY_DYNAMIC_DISPATCH(copyPassing),
            HWY_DYNAMIC_DISPATCH(narrowPassing)};
}

inline const Kernels& kernels() noexcept {
    return KernelChoice<Kernels, selectKernels>::get();
}

}  // namespace

const char16_t* findTextStop(const char16_t* p, const char16_t* end) noexcept {
    return kernels().findTextStop(p, end);
}

const char16_t* findValueStop(const char16_t* p, const char16_t* end, char16_t quote) noexcept {
    return kernels().findValueStop(p, end, quote);
}

const char16_t* findUnit(const char16_t* p, const char16_t* end, char16_t unit) noexcept {
    return kernels().findUnit(p, end, unit);
}

const char16_t* findMarkupStop(const char16_t* p, const char16_t* end, char16_t a,
                               char16_t b) noexcept {
    return kernels().findMarkupStop(p, end, a, b);
}

const char16_t* findLineBreakUnit(const char16_t* p, const char16_t* end) noexcept {
    return kernels().findLineBreakUnit(p, end);
}

const char16_t* findColumnStops(const char16_t* p, const char16_t* end,
                                ColumnStops& stops) noexcept {
    return kernels().findColumnStops(p, end, stops);
}

LineCount countLines(const char16_t* p, const char16_t* end) noexcept {
    return kernels().countLines(p, end);
}

std::size_t widenAscii(const std::uint8_t* in, std::size_t n, char16_t* out) noexcept {
    return kernels().widenAscii(in, n, out);
}

bool isLatin1(const char16_t* p, std::size_t n) noexcept {
    return kernels().isLatin1(p, n);
}

void narrowLatin1(const char16_t* in, std::size_t n, std::uint8_t* out) noexcept {
    kernels().narrowLatin1(in, n, out);
}

void widenLatin1(const std::uint8_t* in, std::size_t n, char16_t* out) noexcept {
    kernels().widenLatin1(in, n, out);
}

std::size_t copyPassing(const std::uint8_t* in, std::size_t n, const PassingSet& set,
                        char* out) noexcept {
    return kernels().copyPassing(in, n, set, out);
}

std::size_t narrowPassing(const char16_t* in, std::size_t n, const PassingSet& set,
                          char* out) noexcept {
    return kernels().narrowPassing(in, n, set, out);
}

}  // namespace RynCommon

#endif  // HWY_ONCE
