// The encoding loops of the serializer.
//
// A run is taken in pieces whose longest possible form fits into the free part of the buffer, so
// that nothing inside of a piece tests for room. Within a piece, eight units at a time are compared
// with all that may not pass as it is; a group in which nothing matches is narrowed to bytes at
// once. Any other unit goes through a table of 128 actions, one table for each combination of
// escapes, or, from U+0080 on, through the encoder.
#include "xml/serializer/CharacterWriter.h"

#include <unicode/utf16.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>

namespace RynCommon {

namespace {

/// The longest form of one unit: "&#65535;".
constexpr std::size_t LONGEST_FORM = 8;
/// A run is cut into pieces only where the buffer has less room than for this many units.
constexpr std::size_t SMALLEST_PIECE = 256;

enum Action : std::uint8_t { PASS, DROP, AMPERSAND, LESS, GREATER, QUOTE, REFERENCE };

using ActionTable = std::array<Action, 128>;
constexpr std::size_t TABLE_COUNT = 64;

/// Joins the flags where Shift_JIS is written to be read as it was.
constexpr unsigned ESCAPE_DELETE = 32;
constexpr char16_t DELETE_CHARACTER = 0x7F;

constexpr Action controlAction(char16_t unit, unsigned escapes) {
    if ((escapes & ESCAPE_CONTROLS) != 0) return REFERENCE;
    if (unit == u'\r') return (escapes & ESCAPE_LINE_ENDS) != 0 ? REFERENCE : PASS;
    return unit == u'\t' || unit == u'\n' ? PASS : DROP;
}

constexpr Action actionFor(char16_t unit, unsigned escapes) {
    if (unit < 0x20) return controlAction(unit, escapes);
    if (escapes == ESCAPE_NONE) return PASS;
    switch (unit) {
        case u'&':
            return AMPERSAND;
        case u'<':
            return LESS;
        case u'>':
            return GREATER;
        case u'"':
            return (escapes & ESCAPE_QUOTE) != 0 ? QUOTE : PASS;
        case u'\'':
            return (escapes & ESCAPE_APOSTROPHE) != 0 ? REFERENCE : PASS;
        case DELETE_CHARACTER:
            return (escapes & ESCAPE_DELETE) != 0 ? REFERENCE : PASS;
        default:
            return PASS;
    }
}

constexpr auto ACTIONS = [] {
    std::array<ActionTable, TABLE_COUNT> tables{};
    for (unsigned escapes = 0; escapes < TABLE_COUNT; ++escapes) {
        for (char16_t unit = 0; unit < 128; ++unit)
            tables[escapes][unit] = actionFor(unit, escapes);
    }
    return tables;
}();

char* append(char* out, std::string_view text) {
    std::memcpy(out, text.data(), text.size());
    return out + text.size();
}

char* appendReference(char* out, std::uint32_t number) {
    out = append(out, "&#");
    out = std::to_chars(out, out + 7, number).ptr;
    *out++ = ';';
    return out;
}

char* appendAction(char* out, Action action, char16_t unit) {
    switch (action) {
        case AMPERSAND:
            return append(out, "&amp;");
        case LESS:
            return append(out, "&lt;");
        case GREATER:
            return append(out, "&gt;");
        case QUOTE:
            return append(out, "&quot;");
        case REFERENCE:
            return appendReference(out, unit);
        case DROP:
            return out;
        case PASS:
            break;
    }
    *out++ = static_cast<char>(unit);
    return out;
}

// Bits of UTF-8, a lone surrogate in its own three bytes.
char* appendUtf8(char* out, std::uint32_t c) {
    const auto trail = [](std::uint32_t bits) { return static_cast<char>(0x80 | (bits & 0x3F)); };
    if (c < 0x800) {
        *out++ = static_cast<char>(0xC0 | c >> 6);
    } else {
        if (c < 0x10000) {
            *out++ = static_cast<char>(0xE0 | c >> 12);
        } else {
            *out++ = static_cast<char>(0xF0 | c >> 18);
            *out++ = trail(c >> 12);
        }
        *out++ = trail(c >> 6);
    }
    *out++ = trail(c);
    return out;
}

constexpr std::size_t GROUP = 8;
using UnitGroup [[gnu::vector_size(2 * GROUP)]] = std::uint16_t;
using ByteGroup [[gnu::vector_size(GROUP)]] = std::uint8_t;

/// The units of printable ASCII that may not pass under a combination of escapes. A place that the
/// combination does not need repeats another; U+0000 matches nothing, since it does not pass
/// anyway.
struct Stops {
    explicit Stops(unsigned escapes)
        : ampersand(escapes != ESCAPE_NONE ? u'&' : u'\0'),
          less(escapes != ESCAPE_NONE ? u'<' : u'\0'),
          greater(escapes != ESCAPE_NONE ? u'>' : u'\0'),
          quote((escapes & ESCAPE_QUOTE) != 0 ? u'"' : ampersand),
          apostrophe((escapes & ESCAPE_APOSTROPHE) != 0 ? u'\'' : ampersand),
          last((escapes & ESCAPE_DELETE) != 0 ? 0x5E : 0x5F) {}

    bool matchAnyOf(const UnitGroup& units) const {
        const auto found = (units - 0x20 > last) | (units == ampersand) | (units == less) |
                           (units == greater) | (units == quote) | (units == apostrophe);
        std::uint64_t halves[2];
        static_assert(sizeof halves == sizeof found);
        std::memcpy(halves, &found, sizeof halves);
        return (halves[0] | halves[1]) != 0;
    }

    std::uint16_t ampersand, less, greater, quote, apostrophe;
    std::uint16_t last;  ///< the last unit that may pass, counted from U+0020
};

// Copies groups of units as far as all of them pass; `p` moves with them.
char* appendPassingGroups(char* out, const char16_t*& p, const char16_t* end, const Stops& stops) {
    for (; static_cast<std::size_t>(end - p) >= GROUP; p += GROUP, out += GROUP) {
        UnitGroup units;
        std::memcpy(&units, p, sizeof units);
        if (stops.matchAnyOf(units)) break;
        const ByteGroup bytes = __builtin_convertvector(units, ByteGroup);
        std::memcpy(out, &bytes, sizeof bytes);
    }
    return out;
}

}  // namespace

void CharacterWriter::open(std::ostream* out) {
    out_ = out;
    used_ = 0;
    if (out != nullptr && buffer_ == nullptr) buffer_ = std::make_unique<char[]>(CAPACITY);
}

void CharacterWriter::setShiftJis(bool on) {
    if (on && shiftJis_ == nullptr) shiftJis_ = std::make_unique<ShiftJisEncoder>();
    isShiftJis_ = on;
}

void CharacterWriter::drain() {
    if (used_ == 0 || out_ == nullptr) return;
    try {
        out_->write(buffer_.get(), static_cast<std::streamsize>(used_));
    } catch (const std::exception&) {
        // A stream that throws has marked itself as bad before.
    }
    used_ = 0;
}

char* CharacterWriter::room(std::size_t bytes) {
    if (CAPACITY - used_ < bytes) drain();
    return buffer_.get() + used_;
}

void CharacterWriter::writeAscii(std::string_view text) {
    used_ = static_cast<std::size_t>(append(room(text.size()), text) - buffer_.get());
}

void CharacterWriter::write(const char16_t* text, std::size_t length, unsigned escapes) {
    while (length > 0) {
        char* const out = room(std::min(length, SMALLEST_PIECE) * LONGEST_FORM);
        std::size_t piece = std::min(length, (CAPACITY - used_) / LONGEST_FORM);
        // A pair stays in one piece.
        if (piece < length && U16_IS_LEAD(text[piece - 1])) --piece;
        used_ = static_cast<std::size_t>(encode(text, text + piece, escapes, out) - buffer_.get());
        text += piece;
        length -= piece;
    }
}

char* CharacterWriter::encode(const char16_t* p, const char16_t* end, unsigned escapes, char* out) {
    if (isShiftJis_ && (escapes & ESCAPE_LINE_ENDS) != 0) escapes |= ESCAPE_DELETE;
    const ActionTable& actions = ACTIONS[escapes];
    const Stops stops(escapes);
    while (p != end) {
        out = appendPassingGroups(out, p, end, stops);
        const char16_t* const groupEnd = p + std::min<std::ptrdiff_t>(GROUP, end - p);
        while (p < groupEnd) {
            if (*p < 128) {
                const Action action = actions[*p];
                out = appendAction(out, action, *p);
                ++p;
            } else {
                out = encodeBeyondAscii(p, end, escapes, out);
            }
        }
    }
    return out;
}

// Takes one character, and those after it as far as they are like it.
char* CharacterWriter::encodeBeyondAscii(const char16_t*& p, const char16_t* end, unsigned escapes,
                                         char* out) {
    do {
        const char16_t unit = *p++;
        if (U16_IS_LEAD(unit) && p != end && U16_IS_TRAIL(*p)) {
            const auto c = static_cast<std::uint32_t>(U16_GET_SUPPLEMENTARY(unit, *p++));
            out = isShiftJis_ ? appendReference(out, c) : appendUtf8(out, c);
        } else if ((unit == 0x85 || unit == 0x2028) && (escapes & ESCAPE_LINE_ENDS) != 0) {
            out = appendReference(out, unit);
        } else {
            out = isShiftJis_ ? encodeShiftJis(unit, out) : appendUtf8(out, unit);
        }
    } while (p != end && *p >= 128);
    return out;
}

char* CharacterWriter::encodeShiftJis(char16_t unit, char* out) {
    const ShiftJisEncoder::Code code = shiftJis_->encode(unit);
    if (code.isMissing()) return appendReference(out, unit);
    if (code.isDouble()) *out++ = static_cast<char>(code.bytes >> 8);
    *out++ = static_cast<char>(code.bytes);
    return out;
}

bool CharacterWriter::canEncode(const UnicodeString& text) const {
    if (!isShiftJis_) return true;
    const char16_t* const p = text.getBuffer();
    return std::all_of(p, p + text.length(), [this](char16_t unit) {
        if (unit < 128) return unit != DELETE_CHARACTER;
        return !shiftJis_->encode(unit).isMissing();
    });
}

}  // namespace RynCommon
