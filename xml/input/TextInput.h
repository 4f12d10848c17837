// One input of the parser as windows of UTF-16 text.
#pragma once

#include <algorithm>
#include <cstddef>
#include <istream>
#include <limits>
#include <memory>

#include <RynCommon/Forward.h>

#include "core/UnitScan.h"
#include "xml/input/ByteInput.h"
#include "xml/input/EncodingSniffer.h"
#include "xml/input/Encodings.h"

namespace RynCommon {

/// Turns a byte stream into windows of decoded text with line ends normalised (CR LF, CR NEL, CR,
/// U+0085 and U+2028 become LF), and knows line and column of any place in the current window.
///
/// A window is what one block of bytes decodes to. Before and inside an XML declaration, which may
/// change the decoder, windows are shorter: see setStepping(). U+FFFF never appears in a
/// window; where one stands, refill() says so once and goes on behind it.
class TextInput {
public:
    enum class Refill { WINDOW, INVALID_CHARACTER, END };

    /// What came of a declared or given encoding name.
    enum class Declared { ACCEPTED, CONFLICT, UNSUPPORTED };

    TextInput();
    ~TextInput();
    TextInput(const TextInput&) = delete;
    TextInput& operator=(const TextInput&) = delete;

    /// Starts on a stream that stays the caller's.
    void open(std::istream& in);
    /// Starts on a stream of our own.
    void open(std::unique_ptr<std::istream> in);
    /// Lets go of the stream. Encoding name and position stay readable.
    void close();
    bool isOpen() const { return source_ != nullptr; }
    /// Frees the window and the block of a closed input. Position and encoding name stay.
    void releaseBuffers();
    std::istream* stream() const { return source_; }

    /// Applies an encoding name told from outside, before anything is read. Empty tells nothing.
    /// @param builtinOnly   refuse names that need a converter
    /// @param rawFallback   read bytes as they are where no converter opens
    Declared setGivenEncoding(const UnicodeString& name, bool builtinOnly, bool rawFallback);
    /// Looks at the first bytes. Raises line 1, column 0. False when they began like a byte-order
    /// mark and are none.
    bool start();
    /// Applies the name of an XML declaration that has just been read in stepping mode.
    Declared setDeclaredEncoding(const UnicodeString& name, bool builtinOnly, bool rawFallback);
    const UnicodeString& encodingName() const { return encodingName_; }

    /// With stepping on, a window ends behind the first ">" and before the first "<" that does not
    /// begin it, or earlier, and no byte beyond it is taken.
    void setStepping(bool on) { stepping_ = on; }
    /// Whether the next character can be had; reads one byte at most.
    bool hasByte() { return bytes_.size() != 0 || bytes_.fill(true); }

    /// Counts the current window as read and makes the next.
    Refill refill();
    const char16_t* windowBegin() const { return window_; }
    const char16_t* windowEnd() const { return windowEnd_; }

    /// Counts the text of the window up to `place` as read.
    void countTo(const char16_t* place) {
        if (place <= counted_) return;
        if (columnStop_ == nullptr || place > columnStop_) return countBeyondStop(place);
        countColumns(place);
    }
    int line() const { return line_; }
    int column() const { return column_; }
    /// Units decoded so far, for what is allowed in proportion to the input.
    std::uint64_t unitsRead() const { return unitsRead_; }

private:
    void reset();
    Declared useConverter(const UnicodeString& name, bool builtinOnly, bool rawFallback);
    bool stepAscii();
    bool decodeMore();
    char16_t* decodeRest(char16_t* out);
    char16_t* decodeStep(char16_t* out);
    void normaliseLineEnds(char16_t* begin, char16_t* end);
    void countBeyondStop(const char16_t* place);
    void countFar(const char16_t* place);
    /// There is no stop before `place`.
    void countColumns(const char16_t* place) {
        addColumns(static_cast<std::size_t>(place - counted_));
        counted_ = place;
    }
    void addColumns(std::size_t characters) {
        constexpr auto most = static_cast<std::size_t>(std::numeric_limits<int>::max());
        const std::size_t room = most - static_cast<std::size_t>(column_);
        column_ = static_cast<int>(static_cast<std::size_t>(column_) + std::min(characters, room));
    }

    ByteInput bytes_;
    std::istream* source_ = nullptr;
    std::unique_ptr<std::istream> owned_;
    std::unique_ptr<std::istream> converter_;
    UnicodeString encodingName_;
    EncodingKind kind_ = ENCODING_UNKNOWN;
    bool fromMark_ = false;
    bool stepping_ = false;
    bool afterCarriageReturn_ = false;
    bool hasBreaks_ = true;  // what was decoded last may hold other line ends than LF

    std::unique_ptr<char16_t[]> units_;
    const char16_t* window_ = nullptr;
    const char16_t* windowEnd_ = nullptr;
    const char16_t* decodedEnd_ = nullptr;  // behind windowEnd_ where a U+FFFF cut the window
    const char16_t* counted_ = nullptr;     // line_ and column_ are those of this place
    // Up to here each unit from counted_ on is a column; null where nobody has looked.
    const char16_t* columnStop_ = nullptr;
    ColumnStops stops_;  // what is no column, up to stopsEnd_
    std::size_t nextStop_ = 0;
    const char16_t* stopsEnd_ = nullptr;
    int line_ = -1;
    int column_ = -1;
    std::uint64_t unitsRead_ = 0;
};

}  // namespace RynCommon
