// Double-byte text by tables, with ICU's converter for what the tables leave open.
//
// The converter that stands behind the tables is what makes the results the same byte for byte:
// everything but plain single and double bytes goes through it. It gets a character that is cut at
// a block's end and keeps it for the next round; it decides what a broken sequence consumes, and
// knows the three- and four-byte characters of EUC-JP and GB18030, the supplementary ones of
// Big5-HKSCS, and what an unfinished end is. The tables are only used while it is in its initial
// state and holds nothing, and it is only left in that state. So there is no second description of
// any of this to keep in step.
//
// Three loops do the work of whole documents:
// - Pairs go four at a time: one load of eight bytes gives four table indices, and the four units
//   found are stored with one store. One comparison tells whether all four were pairs; the number
//   that were is counted, not branched on. So a run of text mispredicts at its end, not within. A
//   blank or digit alone between pairs is taken along, which saves a sixth of the time on Korean.
// - ASCII goes through the vector kernel. Up to seven ASCII bytes between other characters, such as
//   numbers and short tags, are widened in a register. In IBM's encodings, Shift_JIS among them, a
//   few bytes below 0x80 are not ASCII; those are looked for in words of eight bytes.
// - Single bytes that are not ASCII (the katakana of Shift_JIS) and lone pairs go one by one.
// Short paragraphs with markup decode at 0.9 to 1.2 GB/s at 2.5 GHz, Korean ones, whose blanks end
// a run every few characters, at 0.45; the converter alone gives 0.25 to 0.3.
//
// Text that keeps the converter busy, such as GB18030 in a script that it writes with four bytes,
// would cost calls for each character. Stretches that follow one another closely therefore double
// in length, up to what makes the calls vanish.
#include "streams/DoubleByteDecoder.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <utility>

#include "core/UnitScan.h"

namespace RynCommon::streams {

namespace {

constexpr char16_t NONE = DoubleByteTable::NONE;
/// Loads and stores of eight bytes stand for lanes in this byte order; elsewhere everything goes
/// through the loops behind them.
constexpr bool HAS_LANES = std::endian::native == std::endian::little;
constexpr std::uint64_t UNIT_ONES = 0x0001000100010001u;
constexpr std::uint64_t UNIT_TOPS = 0x8000800080008000u;
constexpr std::uint64_t BYTE_ONES = 0x0101010101010101u;
constexpr std::uint64_t BYTE_TOPS = 0x8080808080808080u;

constexpr std::ptrdiff_t FIRST_STRETCH = 2;
constexpr std::ptrdiff_t LONGEST_STRETCH = 1024;
/// So many bytes by the tables show that the text is not one for the converter.
constexpr std::ptrdiff_t CLOSE = 32;

std::uint64_t load(const std::uint8_t* p) {
    std::uint64_t word;
    std::memcpy(&word, p, sizeof word);
    return word;
}

/// Four bytes to four units, in the order of memory.
constexpr std::uint64_t widenFour(std::uint64_t bytes) {
    bytes = (bytes | bytes << 16) & 0x0000FFFF0000FFFFu;
    return (bytes | bytes << 8) & 0x00FF00FF00FF00FFu;
}

/// One pass over a block, as far as the tables reach.
class TableWalk {
public:
    TableWalk(const DoubleByteTable& table, const std::uint8_t* from, const std::uint8_t* fromEnd,
              char16_t* to, char16_t* toEnd)
        : table_(table), from_(from), fromEnd_(fromEnd), to_(to), toEnd_(toEnd) {}

    /// Stops at the end of the source or the target, or at what is for the converter.
    void run() {
        for (takeText(); !isAtEnd(); takeText()) {
            if (*from_ < 0x80)
                takeAscii();
            else if (!takeOther())
                break;
        }
    }

    const std::uint8_t* from() const { return from_; }
    char16_t* to() const { return to_; }

private:
    bool isAtEnd() const { return from_ == fromEnd_ || to_ == toEnd_; }
    std::ptrdiff_t bytesLeft() const { return fromEnd_ - from_; }
    std::ptrdiff_t roomLeft() const { return toEnd_ - to_; }

    void take(std::ptrdiff_t bytes, std::ptrdiff_t units) {
        from_ += bytes;
        to_ += units;
    }

    /// Takes a run of bytes below 0x80.
    void takeAscii() {
        if constexpr (HAS_LANES) {
            if (bytesLeft() >= 8 && roomLeft() >= 8 && takeAsciiWord() < 8) return;
        }
        const auto left = static_cast<std::size_t>(std::min(bytesLeft(), roomLeft()));
        const std::size_t run = widenAscii(from_, left, to_);
        if (table_.odd) mapOddities(run);
        take(static_cast<std::ptrdiff_t>(run), static_cast<std::ptrdiff_t>(run));
    }

    /// Takes the ASCII among the next eight bytes up to the first other one.
    int takeAsciiWord() {
        const std::uint64_t word = load(from_);
        const std::uint64_t units[] = {widenFour(word & 0xFFFFFFFFu), widenFour(word >> 32)};
        std::memcpy(to_, units, sizeof units);
        const std::uint64_t beyond = word & BYTE_TOPS;
        const int run = beyond == 0 ? 8 : std::countr_zero(beyond) >> 3;
        if (table_.odd && markOddities(word) != 0) mapSingles(0, static_cast<std::size_t>(run));
        take(run, run);
        return run;
    }

    /// Not 0 when one of eight bytes below 0x80 is an oddity, and sometimes when none is.
    std::uint64_t markOddities(std::uint64_t word) const {
        std::uint64_t marks = 0;
        for (const std::uint64_t bytes : table_.oddities) marks |= (word ^ bytes) - BYTE_ONES;
        return marks & ~word & BYTE_TOPS;
    }

    /// Gives the oddities among the next `run` bytes, which have been widened, their units.
    void mapOddities(std::size_t run) const {
        std::size_t i = 0;
        for (; i + 8 <= run; i += 8)
            if (markOddities(load(from_ + i)) != 0) mapSingles(i, i + 8);
        mapSingles(i, run);
    }

    void mapSingles(std::size_t begin, std::size_t end) const {
        for (; begin != end; ++begin) to_[begin] = table_.singles[from_[begin]];
    }

    /// Takes pairs, and ASCII bytes that stand alone among them. Stops near the ends, too, where
    /// there may be more of them.
    void takeText() {
        if constexpr (HAS_LANES) {
            while (bytesLeft() >= 8 && roomLeft() >= 4) {
                const std::uint64_t word = load(from_);
                const std::uint64_t units =
                    lookUp(word, 0) | lookUp(word, 1) | lookUp(word, 2) | lookUp(word, 3);
                std::memcpy(to_, &units, sizeof units);
                // Lanes without a pair, exact up to the first: those with NONE, and those whose
                // first byte is below 0x80, for which the table was looked up without its top bit.
                const std::uint64_t others =
                    (((units - UNIT_ONES) & ~units) | ~(word << 8)) & UNIT_TOPS;
                if (others == 0) {
                    take(8, 4);
                    continue;
                }
                const int pairs = std::countr_zero(others) >> 4;
                take(2 * pairs, pairs);
                if (*from_ >= 0x80) return;
                *to_ = table_.singles[*from_];
                take(1, 1);
                if (*from_ < 0x80) return;
            }
        }
    }

    /// The unit for two bytes of a word, in the lane of its place.
    std::uint64_t lookUp(std::uint64_t word, int lane) const {
        const auto lead = static_cast<std::uint8_t>(word >> (16 * lane));
        const auto trail = static_cast<std::uint8_t>(word >> (16 * lane + 8));
        return std::uint64_t{table_.pairs[DoubleByteTable::indexOf(lead, trail)]} << (16 * lane);
    }

    /// Takes what begins with a byte of 0x80 or more. False when that is for the converter.
    bool takeOther() {
        char16_t single = table_.singles[*from_];
        if (single == NONE) return takePair();
        for (; single != NONE && *from_ >= 0x80; single = table_.singles[*from_]) {
            *to_ = single;
            take(1, 1);
            if (isAtEnd()) break;
        }
        return true;
    }

    bool takePair() {
        if (bytesLeft() < 2) return false;
        const char16_t unit = table_.pairs[DoubleByteTable::indexOf(from_[0], from_[1])];
        if (unit == NONE) return false;
        *to_ = unit;
        take(2, 1);
        return true;
    }

    const DoubleByteTable& table_;
    const std::uint8_t* from_;
    const std::uint8_t* const fromEnd_;
    char16_t* to_;
    char16_t* const toEnd_;
};

}  // namespace

DoubleByteDecoder::DoubleByteDecoder(icu::LocalUConverterPointer converter,
                                     std::shared_ptr<const DoubleByteTable> table)
    : converter_(std::move(converter)), table_(std::move(table)), stretch_(FIRST_STRETCH) {}

Conversion DoubleByteDecoder::decode(const char*& from, const char* fromEnd, char16_t*& to,
                                     char16_t* toEnd, bool last) {
    for (;;) {
        if (!holding_) {
            walkTables(from, fromEnd, to, toEnd);
            if (from == fromEnd) return Conversion::SourceUsed;
            if (to == toEnd) return Conversion::TargetFull;
        }
        const Conversion result = convertStretch(from, fromEnd, to, toEnd);
        if (result != Conversion::SourceUsed) return result;
        if (from == fromEnd) {
            if (!holding_ || !last) return result;
            return convert(from, fromEnd, to, toEnd, true);
        }
    }
}

void DoubleByteDecoder::walkTables(const char*& from, const char* fromEnd, char16_t*& to,
                                   char16_t* toEnd) {
    const auto* const start = reinterpret_cast<const std::uint8_t*>(from);
    TableWalk walk(*table_, start, start + (fromEnd - from), to, toEnd);
    walk.run();
    const std::ptrdiff_t taken = walk.from() - start;
    if (taken > CLOSE) stretch_ = FIRST_STRETCH;
    from += taken;
    to = walk.to();
}

/// Gives the converter bytes until it holds none of them, or none are left.
Conversion DoubleByteDecoder::convertStretch(const char*& from, const char* fromEnd, char16_t*& to,
                                             char16_t* toEnd) {
    const char* end = from + std::min(holding_ ? 1 : stretch_, fromEnd - from);
    if (!holding_) stretch_ = std::min(2 * stretch_, LONGEST_STRETCH);
    for (;;) {
        const Conversion result = convert(from, end, to, toEnd, false);
        if (result != Conversion::SourceUsed || !holding_ || from == fromEnd) return result;
        end = from + 1;
    }
}

Conversion DoubleByteDecoder::convert(const char*& from, const char* fromEnd, char16_t*& to,
                                      char16_t* toEnd, bool flush) {
    UErrorCode status = U_ZERO_ERROR;
    ucnv_toUnicode(converter_.getAlias(), &to, toEnd, &from, fromEnd, nullptr, flush, &status);
    holding_ = status == U_BUFFER_OVERFLOW_ERROR;
    if (holding_) return Conversion::TargetFull;
    if (U_FAILURE(status)) return Conversion::Failed;
    holding_ = ucnv_toUCountPending(converter_.getAlias(), &status) != 0;
    return Conversion::SourceUsed;
}

}  // namespace RynCommon::streams
