// Turns runs of UTF-16 into the bytes of the output.
#pragma once

#include <cstddef>
#include <memory>
#include <ostream>
#include <string_view>

#include <RynCommon/Forward.h>

#include "xml/serializer/ShiftJisEncoder.h"

namespace RynCommon {

/// What is escaped in a run, apart from what its place in the document asks for anyway.
enum EscapeFlags : unsigned {
    ESCAPE_NONE = 0,
    ESCAPE_MARKUP = 1,      ///< "&", "<" and ">"; every flag below does this, too
    ESCAPE_QUOTE = 2,       ///< the double quote
    ESCAPE_APOSTROPHE = 4,  ///< the apostrophe, as a reference
    ESCAPE_CONTROLS = 8,    ///< what is below U+0020, as references
    /// As references: CR, U+0085 and U+2028, which readers turn into LF, and in Shift_JIS U+007F,
    /// whose byte readers by IBM's tables, ICU's among them, take for U+001A.
    ESCAPE_LINE_ENDS = 16,
};

/// A buffer of encoded bytes in front of an output stream. The stream sees a write when the buffer
/// is full or drain() is called, and keeps its own failure state: bytes that it does not take are
/// lost, and the owner looks at the state before its next call.
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
    /// Markup of our own: short and ASCII.
    void writeAscii(std::string_view text);
    /// Hands the buffer to the stream. An exception of the stream is left to its state.
    void drain();

    /// Whether every character of the text can be written as itself, in the encoding set.
    bool canEncode(const UnicodeString& text) const;

private:
    static constexpr std::size_t CAPACITY = 32 * 1024;

    char* room(std::size_t bytes);
    char* encode(const char16_t* p, const char16_t* end, unsigned escapes, char* out);
    char* encodeBeyondAscii(const char16_t*& p, const char16_t* end, unsigned escapes, char* out);
    char* encodeShiftJis(char16_t unit, char* out);

    std::ostream* out_ = nullptr;
    std::unique_ptr<char[]> buffer_;
    std::size_t used_ = 0;
    std::unique_ptr<ShiftJisEncoder> shiftJis_;  // made on first need
    bool isShiftJis_ = false;
};

}  // namespace RynCommon
