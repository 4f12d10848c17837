// The encoding loops of the serializer.
//
// A run is taken in pieces whose longest possible form fits into the free part of the buffer, so
// that nothing inside of a piece tests for room. Within a piece, a vector kernel narrows what
// passes as it is. A unit that does not, and the few behind it, go through a table of 128 actions,
// one table for each combination of escapes, or, from U+0080 on, through the encoder.
#include "xml/serializer/CharacterWriter.h"

#include <unicode/utf16.h>

#include <algorithm>
#include <bit>
#include <cstring>
#include <exception>
#include <new>

#include "core/Utf8Units.h"

namespace RynCommon {

namespace {

/// A run is cut into pieces only where the buffer has less room than for this many units.
constexpr std::size_t SMALLEST_PIECE = 256;
/// Units that are looked at one by one where one did not pass.
constexpr std::ptrdiff_t FEW = 8;

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

// Takes the characters that stand in three bytes of UTF-8, as most ideographs and kana do, as far
// as they go, all but single ones by the kernel. The line separator may have to be escaped and ends
// the run. Four bytes are stored at a time.
char* appendThreeByteRun(char* out, const char16_t*& p, const char16_t* end) {
    // A place of its own: the bytes stored might be those of `p`, for all that a compiler knows.
    const char16_t* at = p;
    // The kernel pays from two units on.
    constexpr std::ptrdiff_t GROUP = THREE_BYTE_GROUP;
    if (end - at >= GROUP && at[1] >= 0x800) {
        const std::size_t units = encodeThreeByteRun(at, static_cast<std::size_t>(end - at),
                                                     reinterpret_cast<std::uint8_t*>(out));
        at += units;
        out += 3 * units;
    }
    for (; at != end && isPlainThreeByteUnit(*at); ++at, out += 3) {
        const std::uint32_t c = *at;
        std::uint32_t bytes =
            0xE0 | c >> 12 | (0x80 | (c >> 6 & 0x3F)) << 8 | (0x80 | (c & 0x3F)) << 16;
        if constexpr (std::endian::native == std::endian::big) bytes = __builtin_bswap32(bytes);
        std::memcpy(out, &bytes, sizeof bytes);
    }
    p = at;
    return out;
}

template <class Call>
void callStream(Call call) {
    try {
        call();
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception&) {
        // A stream that throws has marked itself as bad before.
    }
}

}  // namespace

// The memory goes with the output: a serializer stays with its document, and an application may
// keep thousands of them.
void CharacterWriter::open(std::ostream* out) {
    out_ = out;
    if (out == nullptr) {
        memory_.reset();
        next_ = end_ = nullptr;
        return;
    }
    if (memory_ == nullptr) memory_ = takeWriterMemory();
    memory_->fit(isShiftJis_);
    next_ = memory_->buffer;
    end_ = next_ + WriterMemory::CAPACITY;
}

void CharacterWriter::setShiftJis(bool on) {
    if (on && shiftJis_ == nullptr) shiftJis_ = std::make_unique<ShiftJisEncoder>();
    isShiftJis_ = on;
    if (memory_ != nullptr) memory_->fit(on);
}

void CharacterWriter::drain() {
    if (out_ == nullptr || next_ == memory_->buffer) return;
    const std::streamsize size = next_ - memory_->buffer;
    next_ = memory_->buffer;
    callStream([&] { out_->write(memory_->buffer, size); });
}

void CharacterWriter::flush() {
    if (out_ == nullptr) return;
    drain();
    callStream([this] { out_->flush(); });
}

// Names.

// Fills the entry, unless the name is too long to be kept.
bool CharacterWriter::keepName(NameBytes::Entry& entry, RyName prefix, RyName localName) {
    const UnicodeString& first = prefix.toString();
    const UnicodeString& second = localName.toString();
    const auto units =
        static_cast<std::size_t>(first.length()) + static_cast<std::size_t>(second.length()) + 1;
    if (units > NameBytes::MOST || localName.isEmpty()) return false;
    char bytes[NameBytes::MOST * LONGEST_FORM];
    const auto append = [this](const UnicodeString& text, char* out) {
        const char16_t* const p = text.getBuffer();
        return encode(p, p + text.length(), ESCAPE_NONE, out);
    };
    char* end = append(first, bytes);
    if (!prefix.isEmpty()) *end++ = ':';
    end = append(second, end);
    const auto length = static_cast<std::size_t>(end - bytes);
    if (length > NameBytes::MOST) return false;
    entry.key = NameBytes::keyOf(prefix, localName);
    entry.length = static_cast<std::uint8_t>(length);
    std::memcpy(entry.bytes, bytes, length);
    return true;
}

void CharacterWriter::writeLongName(RyName prefix, RyName localName) {
    if (!prefix.isEmpty()) {
        write(prefix.toString(), ESCAPE_NONE);
        writeAscii(":");
    }
    write(localName.toString(), ESCAPE_NONE);
}

// Runs of UTF-16.

void CharacterWriter::write(const char16_t* text, std::size_t length, unsigned escapes) {
    while (length > 0) {
        char* const out = room(std::min(length, SMALLEST_PIECE) * LONGEST_FORM);
        std::size_t piece = std::min(length, static_cast<std::size_t>(end_ - next_) / LONGEST_FORM);
        // A pair stays in one piece.
        if (piece < length && U16_IS_LEAD(text[piece - 1])) --piece;
        next_ = encode(text, text + piece, escapes, out);
        text += piece;
        length -= piece;
    }
}

char* CharacterWriter::encode(const char16_t* p, const char16_t* end, unsigned escapes, char* out) {
    if (isShiftJis_ && (escapes & ESCAPE_LINE_ENDS) != 0) escapes |= ESCAPE_DELETE;
    const EscapeTable& actions = ESCAPE_TABLES[escapes];
    while (p != end) {
        const auto left = static_cast<std::size_t>(end - p);
        if (left >= PASSING_GROUP && *p < 128) {
            const std::size_t passed = narrowPassing(p, left, PASSING_SETS[escapes], out);
            p += passed;
            out += passed;
        }
        const char16_t* const fewEnd = p + std::min<std::ptrdiff_t>(FEW, end - p);
        while (p < fewEnd) {
            if (*p < 128) {
                const EscapeAction action = actions[*p];
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
        if (!isShiftJis_) {
            out = appendThreeByteRun(out, p, end);
            if (p == end || *p < 128) break;
        }
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
