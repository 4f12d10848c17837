// Runs of text that a tree keeps as Latin-1.
//
// Nearly all of a document's texts and values are ASCII kept a byte a unit, which is what UTF-8 and
// Shift_JIS write for it: a vector kernel copies whole groups into the buffer as far as they pass,
// and the rest, which is all of most values, goes in words of eight bytes, instead of being widened
// first and narrowed again.
//
// Most texts and values have up to 32 bytes, hold nothing to escape and are done at first sight:
// one look at sixteen bytes, of which a short text has the first and a longer one its first and
// last eight, or two such looks, and as many stores.
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

/// Two words that are looked at and stored at once. What is kept as Latin-1 has its first unit in
/// the first byte on any processor.
class TwoWords {
public:
    TwoWords(const std::uint8_t* first, const std::uint8_t* second)
        : TwoWords(loadWord(first), loadWord(second)) {}
    TwoWords(std::uint64_t first, std::uint64_t second) : words_{first, second} {}

    /// Whether a byte does not pass as it is.
    template <unsigned escapes>
    bool needLook() const {
#if defined(__GNUC__)
        Bytes bytes;
        std::memcpy(&bytes, words_, sizeof bytes);
        // Signed, so that what is beyond ASCII is below the space as well.
        auto stops = (bytes < ' ') & (bytes != '\n');
        stops |= (bytes == '&') | (bytes == '<') | (bytes == '>');
        if constexpr ((escapes & ESCAPE_QUOTE) != 0) stops |= bytes == '"';
        std::uint64_t found[2];
        std::memcpy(found, &stops, sizeof found);
        return (found[0] | found[1]) != 0;
#else
        const auto look = [](std::uint64_t word) {
            return needsLook<escapes>(word) && needsLook<escapes>(hideLineFeeds(word));
        };
        return look(words_[0]) || look(words_[1]);
#endif
    }
    void store(char* first, char* second) const {
        std::memcpy(first, &words_[0], WORD);
        std::memcpy(second, &words_[1], WORD);
    }

private:
#if defined(__GNUC__)
    using Bytes = signed char __attribute__((vector_size(16)));
#endif
    std::uint64_t words_[2];
};

/// A word whose lowest byte comes first in memory.
std::uint64_t toMemoryOrder(std::uint64_t word) {
    if constexpr (std::endian::native == std::endian::little) return word;
    std::uint64_t swapped = 0;
    for (unsigned i = 0; i < WORD; ++i) swapped = swapped << 8 | (word >> 8 * i & 0xFF);
    return swapped;
}

}  // namespace

void CharacterWriter::write(const RyCompactText& text, unsigned escapes) {
    if (escapes == VALUE_ESCAPES)
        writeCompact<VALUE_ESCAPES>(text);
    else
        writeCompact<TEXT_ESCAPES>(text);
}

// What most texts are stands here, and what they are not is left to the functions below.
template <unsigned escapes>
void CharacterWriter::writeCompact(const RyCompactText& text) {
    char* const out = room(4 * WORD);
    if (CompactUnits::isShort(text)) {
        const std::size_t length = CompactUnits::shortLength(text);
        const std::uint64_t word = toMemoryOrder(CompactUnits::shortUnits(text));
        const std::uint64_t spaces = toMemoryOrder((ONES * ' ') << 8 * length);
        if (!TwoWords(word | spaces, ONES * ' ').needLook<escapes>()) {
            std::memcpy(out, &word, WORD);
            next_ = out + length;
            return;
        }
    }
    const CompactUnits units(text);
    const std::size_t length = units.length();
    if (units.isWide()) {
        write(units.utf16(), length, escapes);
        return;
    }
    const std::uint8_t* const p = units.latin1();
    if (length >= WORD && length <= 4 * WORD) {
        const std::size_t half = length <= 2 * WORD ? 0 : WORD;
        const std::size_t last = length - WORD;
        const TwoWords outer(p, p + last), inner(p + half, p + last - half);
        if (!outer.needLook<escapes>() && (half == 0 || !inner.needLook<escapes>())) {
            outer.store(out, out + last);
            inner.store(out + half, out + last - half);
            next_ = out + length;
            return;
        }
    }
    writeLatin1<escapes>(p, length);
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
