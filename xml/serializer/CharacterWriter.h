// Turns runs of text and names into the bytes of the output.
#pragma once

#include <cstddef>
#include <memory>
#include <ostream>
#include <string_view>

#include <RynCommon/RyName.h>
#include <RynCommon/RyString.h>

#include "xml/serializer/Escapes.h"
#include "xml/serializer/ShiftJisEncoder.h"
#include "xml/serializer/WriterMemory.h"

namespace RynCommon {

/// A buffer of encoded bytes in front of an output stream. The stream sees a write when the buffer
/// is full or drain() is called, and keeps its own failure state: bytes that it does not take are
/// lost, and the owner looks at the state before its next call. Exceptions of a stream that is set
/// to throw them are left to its state as well, except for lack of memory, which passes from any
/// call that writes; a stream that is not says no more than that it is bad.
///
/// Control characters that XML 1.0 forbids are dropped unless they are escaped. A character that
/// Shift_JIS lacks becomes a decimal reference, wherever it stands.
class CharacterWriter {
public:
    /// Writes to `out` from now on; null for no output. What is still in the buffer is forgotten.
    void open(std::ostream* out);
    void setShiftJis(bool on);

    void write(const char16_t* text, std::size_t length, unsigned escapes);
    void write(const UnicodeString& text, unsigned escapes) {
        write(text.getBuffer(), static_cast<std::size_t>(text.length()), escapes);
    }
    /// As it is kept, which need not be UTF-16. `escapes` is one of the two below.
    void write(const RyCompactText& text, unsigned escapes);
    static constexpr unsigned TEXT_ESCAPES = ESCAPE_MARKUP;
    static constexpr unsigned VALUE_ESCAPES = ESCAPE_MARKUP | ESCAPE_QUOTE;

    /// Markup of our own: short and ASCII.
    void writeAscii(std::string_view text) {
        char* const out = room(text.size());
        next_ = appendText(out, text);
    }
    /// A qualified name between pieces of such markup.
    void writeName(std::string_view before, RyName prefix, RyName localName,
                   std::string_view after) {
        const std::uint64_t key = NameBytes::keyOf(prefix, localName);
        NameBytes::Entry& entry = memory_->names.find(prefix, localName);
        if ((entry.key != key || key == 0) && !keepName(entry, prefix, localName)) {
            writeAscii(before);
            writeLongName(prefix, localName);
            writeAscii(after);
            return;
        }
        char* const out = room(NameBytes::MOST + before.size() + after.size());
        next_ = appendText(entry.append(appendText(out, before)), after);
    }
    /// Hands the buffer to the stream.
    void drain();
    /// And has the stream pass it on.
    void flush();

    /// Whether every character of the text can be written as itself, in the encoding set.
    bool canEncode(const UnicodeString& text) const;

private:
    char* room(std::size_t bytes) {
        if (static_cast<std::size_t>(end_ - next_) < bytes) [[unlikely]]
            drain();
        return next_;
    }
    bool keepName(NameBytes::Entry& entry, RyName prefix, RyName localName);
    void writeLongName(RyName prefix, RyName localName);
    char* encode(const char16_t* p, const char16_t* end, unsigned escapes, char* out);
    char* encodeBeyondAscii(const char16_t*& p, const char16_t* end, unsigned escapes, char* out);
    char* encodeShiftJis(char16_t unit, char* out);

    // Compact texts, in Latin1Runs.cpp.
    template <unsigned escapes>
    void writeCompact(const RyCompactText& text);
    template <unsigned escapes>
    void writeLatin1(const std::uint8_t* text, std::size_t length);
    template <unsigned escapes>
    char* encodeGroups(const std::uint8_t*& p, const std::uint8_t* end, char* out);
    template <unsigned escapes>
    char* encodeWord(const std::uint8_t* p, std::uint64_t word, std::size_t length, char* out);
    char* encodeLatin1(const std::uint8_t* p, std::size_t length, unsigned escapes, char* out);

    std::ostream* out_ = nullptr;
    WriterMemoryPtr memory_;  // while there is an output
    char* next_ = nullptr;
    char* end_ = nullptr;
    std::unique_ptr<ShiftJisEncoder> shiftJis_;  // made on first need
    bool isShiftJis_ = false;
};

}  // namespace RynCommon
