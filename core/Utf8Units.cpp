// The kernels for sequences of three bytes, for each instruction set, and the choice between them.
//
// This file is compiled once per instruction set, like core/UnitScan.cpp. A group is eight units
// of 16 bits in a block of 128, or 24 bytes; wider vectors take two groups at a time, each in a
// block of its own, since shuffles of bytes stay within blocks.
//
// Decoding loads the 24 bytes of a group as two vectors that overlap, and shuffles the leads into
// one vector of units and the two continuations into another. The bits that mark them as such, ten
// of a sequence, are put together and compared at once. A vector is stored before it is judged:
// what lies behind the first bad unit is overwritten later.
// Encoding puts a lead and its first continuation into one vector of units and the second
// continuation into another, interleaves them, and shuffles away the byte left over.
#include "core/Utf8Units.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "core/Utf8Units.cpp"
// Between SSSE3 and AVX2, and above AVX2, nothing that these kernels use gets faster.
#define HWY_DISABLED_TARGETS (HWY_SSE4 | HWY_AVX3 | HWY_AVX3_DL)
#include <hwy/foreach_target.h>
// foreach_target.h comes first.
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace RynCommon {
namespace HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR || HWY_TARGET == HWY_EMU128 || \
    __BYTE_ORDER__ != __ORDER_LITTLE_ENDIAN__

// A processor without vectors, or one whose units have their bytes the other way round.
using scalar::decodeThreeByteRun;
using scalar::encodeThreeByteRun;

#else

namespace hn = hwy::HWY_NAMESPACE;

constexpr std::size_t GROUP_BYTES = 3 * THREE_BYTE_GROUP;

using GroupUnits = hn::FixedTag<std::uint16_t, THREE_BYTE_GROUP>;
using GroupBytes = hn::Repartition<std::uint8_t, GroupUnits>;

// The 16 bytes at the same place of each group that a vector takes.
HWY_INLINE hn::Vec<GroupBytes> loadBlocks(GroupUnits, const std::uint8_t* p) {
    return hn::LoadU(GroupBytes(), p);
}

// The 12 bytes that each block of `lower` and `upper` begins with, one after the other.
HWY_INLINE void storeBlocks(GroupUnits, hn::Vec<GroupBytes> lower, hn::Vec<GroupBytes> upper,
                            std::uint8_t* out) {
    hn::StoreU(lower, GroupBytes(), out);
    hn::StoreU(upper, GroupBytes(), out + GROUP_BYTES / 2);
}

#if HWY_MAX_BYTES == 32

using TwoGroupUnits = hn::FixedTag<std::uint16_t, 2 * THREE_BYTE_GROUP>;
using TwoGroupBytes = hn::Repartition<std::uint8_t, TwoGroupUnits>;

HWY_INLINE hn::Vec<TwoGroupBytes> loadBlocks(TwoGroupUnits, const std::uint8_t* p) {
    return hn::Combine(TwoGroupBytes(), hn::LoadU(GroupBytes(), p + GROUP_BYTES),
                       hn::LoadU(GroupBytes(), p));
}

HWY_INLINE void storeBlocks(TwoGroupUnits, hn::Vec<TwoGroupBytes> lower,
                            hn::Vec<TwoGroupBytes> upper, std::uint8_t* out) {
    const GroupBytes half;
    storeBlocks(GroupUnits(), hn::LowerHalf(half, lower), hn::LowerHalf(half, upper), out);
    storeBlocks(GroupUnits(), hn::UpperHalf(half, lower), hn::UpperHalf(half, upper),
                out + GROUP_BYTES);
}

#endif

constexpr std::uint8_t NO_BYTE = 0x80;

// Where the bytes of the units lie in the first and in the last 16 bytes of a group.
struct GroupShuffle {
    alignas(16) std::uint8_t head[16];
    alignas(16) std::uint8_t tail[16];
};

// The low byte of unit `i` is byte 3 * i + `low` of the group, the high byte 3 * i + `high`, or 0
// where that is negative. A unit is taken whole from one of the two loads.
constexpr GroupShuffle groupShuffle(int low, int high) {
    GroupShuffle shuffle{};
    for (int i = 0; i < 8; ++i) {
        const bool inHead = 3 * i + 2 < 16;
        for (int part = 0; part < 2; ++part) {
            const int of = part == 0 ? low : high;
            const int at = 2 * i + part;
            const int from = 3 * i + of - (inHead ? 0 : 8);
            shuffle.head[at] = shuffle.tail[at] = NO_BYTE;
            if (of >= 0)
                (inHead ? shuffle.head : shuffle.tail)[at] = static_cast<std::uint8_t>(from);
        }
    }
    return shuffle;
}

constexpr GroupShuffle LEADS = groupShuffle(0, -1);
constexpr GroupShuffle CONTINUATIONS = groupShuffle(2, 1);

template <class D, class Bytes>
HWY_INLINE hn::Vec<D> gather(D d, Bytes head, Bytes tail, const GroupShuffle& shuffle) {
    const hn::Repartition<std::uint8_t, D> bytes;
    return hn::BitCast(d,
                       hn::Or(hn::TableLookupBytesOr0(head, hn::LoadDup128(bytes, shuffle.head)),
                              hn::TableLookupBytesOr0(tail, hn::LoadDup128(bytes, shuffle.tail))));
}

// The units that are not plain.
template <class D>
HWY_INLINE hn::Mask<D> specials(D d, hn::Vec<D> units) {
    const auto top = hn::ShiftRight<11>(units);
    const auto ranges = hn::Or(hn::Eq(top, hn::Zero(d)), hn::Eq(top, hn::Set(d, 0xD800 >> 11)));
    return hn::Or(ranges,
                  hn::Or(hn::Eq(units, hn::Set(d, 0x2028)), hn::Eq(units, hn::Set(d, 0xFFFF))));
}

// The number of units before the first that is not good.
template <class D>
HWY_INLINE std::size_t countGood(D d, hn::Mask<D> good) {
    if (hn::AllTrue(d, good)) [[likely]]
        return hn::Lanes(d);
    return hn::FindKnownFirstTrue(d, hn::Not(good));
}

// Takes as many sequences as a vector has units; returns the number of good ones.
template <class D>
HWY_INLINE std::size_t decodeVector(D d, const std::uint8_t* in, char16_t* out) {
    const auto head = loadBlocks(d, in);
    const auto tail = loadBlocks(d, in + 8);
    const auto leads = gather(d, head, tail, LEADS);
    const auto pairs = gather(d, head, tail, CONTINUATIONS);
    const auto low = hn::And(pairs, hn::Set(d, 0x003F));
    const auto middle = hn::And(hn::ShiftRight<2>(pairs), hn::Set(d, 0x0FC0));
    const auto units = hn::Or(hn::Or(hn::ShiftLeft<12>(leads), middle), low);
    hn::StoreU(units, d, reinterpret_cast<std::uint16_t*>(out));
    const auto fixed = hn::Or(hn::And(pairs, hn::Set(d, 0xC0C0)), hn::ShiftRight<4>(leads));
    return countGood(d, hn::AndNot(specials(d, units), hn::Eq(fixed, hn::Set(d, 0x808E))));
}

// Takes as many units as a vector has; returns the number of good ones.
template <class D>
HWY_INLINE std::size_t encodeVector(D d, const char16_t* in, std::uint8_t* out) {
    const hn::Repartition<std::uint8_t, D> bytes;
    alignas(16) constexpr std::uint8_t TRIPLES[16] = {
        0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, NO_BYTE, NO_BYTE, NO_BYTE, NO_BYTE};
    const auto units = hn::LoadU(d, reinterpret_cast<const std::uint16_t*>(in));
    const auto middle = hn::And(hn::ShiftLeft<2>(units), hn::Set(d, 0x3F00));
    const auto pairs = hn::Or(hn::Or(hn::ShiftRight<12>(units), middle), hn::Set(d, 0x80E0));
    const auto low = hn::Or(hn::And(units, hn::Set(d, 0x3F)), hn::Set(d, 0x80));
    const auto triples = hn::LoadDup128(bytes, TRIPLES);
    const auto packed = [&](hn::Vec<D> words) {
        return hn::TableLookupBytesOr0(hn::BitCast(bytes, words), triples);
    };
    storeBlocks(d, packed(hn::InterleaveLower(d, pairs, low)),
                packed(hn::InterleaveUpper(d, pairs, low)), out);
    return countGood(d, hn::Not(specials(d, units)));
}

// Whole vectors from `done` on. False where one has a bad unit.
template <class D>
HWY_INLINE bool decodeVectors(D d, const std::uint8_t* in, std::size_t n, char16_t* out,
                              std::size_t& done) {
    const std::size_t lanes = hn::Lanes(d);
    while (n - 3 * done >= 3 * lanes) {
        const std::size_t good = decodeVector(d, in + 3 * done, out + done);
        done += good;
        if (good != lanes) return false;
    }
    return true;
}

template <class D>
HWY_INLINE bool encodeVectors(D d, const char16_t* in, std::size_t n, std::uint8_t* out,
                              std::size_t& done) {
    const std::size_t lanes = hn::Lanes(d);
    while (n - done >= lanes) {
        const std::size_t good = encodeVector(d, in + done, out + 3 * done);
        done += good;
        if (good != lanes) return false;
    }
    return true;
}

std::size_t decodeThreeByteRun(const std::uint8_t* in, std::size_t n, char16_t* out) {
    std::size_t done = 0;
#if HWY_MAX_BYTES == 32
    if (!decodeVectors(TwoGroupUnits(), in, n, out, done)) return done;
#endif
    decodeVectors(GroupUnits(), in, n, out, done);
    return done;
}

std::size_t encodeThreeByteRun(const char16_t* in, std::size_t n, std::uint8_t* out) {
    std::size_t done = 0;
#if HWY_MAX_BYTES == 32
    if (!encodeVectors(TwoGroupUnits(), in, n, out, done)) return done;
#endif
    encodeVectors(GroupUnits(), in, n, out, done);
    return done;
}

#endif

}  // namespace HWY_NAMESPACE
}  // namespace RynCommon
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

#include "core/KernelChoice.h"

namespace RynCommon {

HWY_EXPORT(decodeThreeByteRun);
HWY_EXPORT(encodeThreeByteRun);

namespace {

struct Utf8Kernels {
    std::size_t (*decodeThreeByteRun)(const std::uint8_t*, std::size_t, char16_t*);
    std::size_t (*encodeThreeByteRun)(const char16_t*, std::size_t, std::uint8_t*);
};

Utf8Kernels selectUtf8Kernels() noexcept {
    if (wantsScalarKernels()) return {scalar::decodeThreeByteRun, scalar::encodeThreeByteRun};
    // The tables' first entry chooses at each call; asking for the targets once makes them hand out
    // the kernels.
    hwy::GetChosenTarget().Update(hwy::SupportedTargets());
    return {HWY_DYNAMIC_DISPATCH(decodeThreeByteRun), HWY_DYNAMIC_DISPATCH(encodeThreeByteRun)};
}

inline const Utf8Kernels& utf8Kernels() noexcept {
    return KernelChoice<Utf8Kernels, selectUtf8Kernels>::get();
}

}  // namespace

std::size_t decodeThreeByteRun(const std::uint8_t* in, std::size_t n, char16_t* out) noexcept {
    return utf8Kernels().decodeThreeByteRun(in, n, out);
}

std::size_t encodeThreeByteRun(const char16_t* in, std::size_t n, std::uint8_t* out) noexcept {
    return utf8Kernels().encodeThreeByteRun(in, n, out);
}

}  // namespace RynCommon

#endif  // HWY_ONCE
