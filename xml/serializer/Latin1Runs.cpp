// Runs of text that a tree keeps as Latin-1.
//
// Nearly all of a document's texts and values are ASCII kept a byte a unit, which is what UTF-8 and
// Shift_JIS write for it: a vector kernel copies whole groups into the buffer as far as they pass,
// and the rest, which is all of most values, goes in words of eight bytes, instead of being widened
// first and narrowed again.
//
// In words, "<" and ">" differ in one bit, and so do "&" and the quote, so that one comparison
// behind an OR finds both. A line feed is a control character that passes, and the only frequent
// one.
#include <algorithm>
#include <bit>

#include "core/CompactUnits.h"
#include "xml/serializer/CharacterWriter.h"

namespace RynCommon {

namespace {

constexpr std::size_t WORD = 8;
constexpr std::size_t GROUP = PASSING_GROUP;

constexpr std::uint64_t ONES = 0x0101010101010101u;
constexpr std::uint64_t TOPS = ONES << 7;

std::uint64_t loadWord(const std::uint8_t* p) {
    std::uint64_t word;
    std::memcpy(&word, p, WORD);
    return word;
}

// Whether a byte is zero.
constexpr bool hasZero(std::uint64_t word) {
    return ((word - ONES) & ~word & TOPS) != 0;
}

template <unsigned escapes>
bool needsLook(std::uint64_t word) {
    // Nothing passes that is beyond ASCII, so that only the low bits count below.
    const bool control = ((word | (word - ONES * ' ')) & TOPS) != 0;
    const std::uint64_t angles = (word | ONES * 2) ^ ONES * '>';
    if constexpr ((escapes & ESCAPE_QUOTE) != 0)
        return control || hasZero(angles) || hasZero((word | ONES * 4) ^ ONES * '&');
    else
        return control || hasZero(angles) || hasZero(word ^ ONES * '&');
}

// Makes line feeds something that passes.
constexpr std::uint64_t hideLineFeeds(std::uint64_t word) {
    const std::uint64_t x = word ^ ONES * '\n';
    const std::uint64_t feeds = ~(((x & ~TOPS) + ~TOPS) | x) & TOPS;
    return word | feeds >> 2;
}

}  // namespace

void CharacterWriter::write(const RyCompactText& text, unsigned escapes) {
    const CompactUnits units(text);
    if (units.isWide())
        write(units.utf16(), units.length(), escapes);
    else if (escapes == VALUE_ESCAPES)
        writeLatin1<VALUE_ESCAPES>(units.latin1(), units.length());
    else
        writeLatin1<TEXT_ESCAPES>(units.latin1(), units.length());
}

// The text has been made by CompactUnits: where it is shorter than a word, a whole word can be read
// nevertheless.
template <unsigned escapes>
void CharacterWriter::writeLatin1(const std::uint8_t* text, std::size_t length) {
    const std::uint8_t* p = text;
    const std::uint8_t* const end = text + length;
    char* out = room(GROUP * LONGEST_FORM);
    if constexpr (std::endian::native == std::endian::little) {
        if (length >= GROUP) out = encodeGroups<escapes>(p, end, out);
        next_ = out;
        out = room(GROUP * LONGEST_FORM);
        if (end - p >= std::ptrdiff_t{WORD}) {
            out = encodeWord<escapes>(p, loadWord(p), WORD, out);
            p += WORD;
        }
        const auto rest = static_cast<std::size_t>(end - p);
        if (rest != 0) {
            // The last bytes come down from the word that they end, zeros follow.
            const std::uint64_t word = length < WORD
                                           ? loadWord(p) & ~(~std::uint64_t{0} << 8 * rest)
                                           : loadWord(end - WORD) >> 8 * (WORD - rest);
            out = encodeWord<escapes>(p, word, rest, out);
        }
    } else {
        for (; p != end; p += std::min<std::ptrdiff_t>(GROUP, end - p)) {
            const auto some = std::min<std::size_t>(GROUP, static_cast<std::size_t>(end - p));
            out = encodeLatin1(p, some, escapes, room(GROUP * LONGEST_FORM));
            next_ = out;
        }
    }
    next_ = out;
}

// Whole groups, as far as there are any; `p` moves with them.
template <unsigned escapes>
char* CharacterWriter::encodeGroups(const std::uint8_t*& p, const std::uint8_t* end, char* out) {
    const std::uint8_t* at = p;
    while (static_cast<std::size_t>(end - at) >= GROUP) {
        if (static_cast<std::size_t>(end_ - out) < GROUP * LONGEST_FORM) {
            next_ = out;
            out = room(GROUP * LONGEST_FORM);
        }
        // As much as there is surely room for, a unit that does not pass included.
        const auto free = static_cast<std::size_t>(end_ - out) - LONGEST_FORM;
        const auto piece = std::min(static_cast<std::size_t>(end - at), free);
        const std::size_t passed = copyPassing(at, piece, PASSING_SETS[escapes], out);
        at += passed;
        out += passed;
        if (passed == piece - piece % GROUP) continue;
        out = encodeLatin1(at++, 1, escapes, out);
    }
    p = at;
    return out;
}

// At most eight bytes at `p`, which stand in the low end of `word`, with zeros above.
template <unsigned escapes>
char* CharacterWriter::encodeWord(const std::uint8_t* p, std::uint64_t word, std::size_t length,
                                  char* out) {
    const std::uint64_t padding = length < WORD ? (ONES * ' ') << 8 * length : 0;
    const std::uint64_t padded = word | padding;
    if (needsLook<escapes>(padded) && needsLook<escapes>(hideLineFeeds(padded)))
        return encodeLatin1(p, length, escapes, out);
    std::memcpy(out, &word, WORD);
    return out + length;
}

// Byte by byte.
char* CharacterWriter::encodeLatin1(const std::uint8_t* p, std::size_t length, unsigned escapes,
                                    char* out) {
    const EscapeTable& actions = ESCAPE_TABLES[escapes];
    for (const std::uint8_t* const end = p + length; p != end; ++p) {
        if (*p < 128) {
            out = appendAction(out, actions[*p], *p);
        } else {
            const char16_t unit = *p;
            const char16_t* at = &unit;
            out = encodeBeyondAscii(at, at + 1, escapes, out);
        }
    }
    return out;
}

}  // namespace RynCommon
