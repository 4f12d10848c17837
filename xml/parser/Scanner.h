// The reading point of the parser: a stack of inputs, read as runs of UTF-16 units.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include <RynCommon/Forward.h>

#include "core/MemoryCheck.h"
#include "core/UnitScan.h"
#include "xml/input/TextInput.h"
#include "xml/parser/CharClass.h"
#include "xml/parser/TextBuffer.h"

namespace RynCommon {

struct EntityDeclaration;

/// What the scanner asks of its owner.
class ScannerOwner {
public:
    /// A U+FFFF stands at the reading point; it is left out when this returns.
    virtual void invalidCharacterRead() = 0;
    /// The units of the window are about to change: whatever points into it has to be copied.
    virtual void windowLeaves() = 0;
    /// A name is longer than it may be. Does not return.
    [[noreturn]] virtual void nameTooLong() = 0;

protected:
    ~ScannerOwner() = default;
};

/// Inputs lie on a stack: the document's stream, above it replacement texts and streams of
/// entities. Text of the top input is read through a window [cur, end); when it is used up, more()
/// gets the next window or goes on in the input below. A run that is being collected must be copied
/// out before more() is called.
///
/// Line and column are those of the topmost stream, as far as it has been looked at: `seen` is the
/// place behind the last unit that a decision needed, which may lie beyond `cur`.
class Scanner {
public:
    static constexpr int END = -1;

    /// A spelt name. The text is valid until the scanner is used again.
    struct Name {
        const char16_t* text = nullptr;
        std::size_t length = 0;
        std::ptrdiff_t colon = -1;  ///< index of the colon between prefix and local name, or -1
        bool complete = false;      ///< false: no name, or only a prefix with its colon

        UnicodeString toString() const {
            return takeWhole(UnicodeString(text, static_cast<std::int32_t>(length)));
        }
    };

    explicit Scanner(ScannerOwner& owner);

    /// The document's own input; prepare it, then call begin().
    TextInput& base() { return *sources_.front()->input; }
    const TextInput& base() const { return *sources_.front()->input; }
    /// Forgets all other inputs and stands at the start of the base, whose URI is kept for
    /// recognising recursion.
    void begin(const UnicodeString& uri);

    // Single units.
    /// The unit at the reading point, or END.
    int peek() {
        if (cur_ == end_ && !more()) return END;
        look(cur_ + 1);
        return *cur_;
    }
    /// The same, read.
    int get() {
        if (cur_ == end_ && !more()) return END;
        return *cur_++;
    }
    void skip() { ++cur_; }
    /// Reads the unit if it is `unit`.
    bool accept(char16_t unit) {
        if (peek() != unit) return false;
        ++cur_;
        return true;
    }
    /// The same without going on to another window.
    bool acceptInWindow(char16_t unit) {
        if (cur_ == end_ || *cur_ != unit) return false;
        ++cur_;
        return true;
    }
    /// The whole character at the reading point, read; END at the end.
    int getCodePoint();
    /// The whole character at the reading point, not read; empty at the end.
    UnicodeString peekCharacter();

    // Runs.
    /// In units.
    void setLongestName(std::size_t length) { longestName_ = length; }
    /// Reads white space; whether there was any.
    bool skipSpace() {
        if (cur_ != end_ && !isXmlSpace(*cur_)) {
            look(cur_ + 1);
            return false;
        }
        return skipSpaceSlowly();
    }
    /// Reads a name without a colon; incomplete when none starts here.
    Name scanName();
    /// Reads a name with at most one colon; incomplete when none starts here. A colon that no local
    /// name follows is read and makes the name incomplete, too.
    Name scanQName();
    /// Appends everything up to a unit for which `isStop` holds, which is not read.
    template <class IsStop>
    void appendUntil(UnicodeString& text, IsStop isStop) {
        for (int c = peek(); c != END && !isStop(static_cast<char16_t>(c)); c = peek()) {
            text.append(static_cast<char16_t>(c));
            skip();
        }
    }

    // The window, for scanning loops.
    const char16_t* cursor() const { return cur_; }
    const char16_t* limit() const { return end_; }
    void moveTo(const char16_t* place) { cur_ = place; }
    /// Notes that a decision needed the units before `place`.
    void look(const char16_t* place) {
        if (place > seen_) seen_ = place;
    }
    /// The next window, of this input or one below; false when the base has ended.
    bool more();

    // Inputs.
    /// Forgets all inputs and frees their memory. The position of the base stays.
    void releaseBuffers();
    /// Number of inputs on the stack: 1 for the document alone.
    std::size_t depth() const { return depth_; }
    /// Goes on reading in `text`, then here again. `entity` is held open meanwhile.
    void pushText(const UnicodeString& text, EntityDeclaration* entity);
    /// Goes on reading in a stream, which has been started; `uri` is kept for recognising
    /// recursion.
    void pushInput(std::unique_ptr<TextInput> input, const UnicodeString& uri,
                   EntityDeclaration* entity);
    /// The topmost stream.
    TextInput& topInput();
    bool isOpen(const UnicodeString& uri) const;
    bool isOpen(const EntityDeclaration* entity) const;
    /// Characters decoded by all streams so far.
    std::uint64_t unitsRead() const;

    // Positions.
    struct Position {
        int line;
        int column;
    };
    Position position() {
        if (depth_ != 1 || cur_ == nullptr) return positionOfStream();
        TextInput& input = base();
        input.countTo(seen_ > cur_ ? seen_ : cur_);
        return {input.line(), input.column()};
    }

    // Capturing the text of a declaration as it stands in the document.
    void startCapture(TextBuffer& text);
    void stopCapture();

private:
    struct Source {
        std::unique_ptr<TextInput> input;  // null for a replacement text
        UnicodeString text;
        UnicodeString uri;
        EntityDeclaration* entity = nullptr;
        const char16_t* cur = nullptr;  // the window while this is not the top
        const char16_t* end = nullptr;
        const char16_t* seen = nullptr;
    };

    bool skipSpaceSlowly();
    void collectName();
    Name collected(std::ptrdiff_t colon) const;
    Name nameUpTo(const char16_t* begin, const char16_t* end, std::ptrdiff_t colon);
    void save();
    void restore();
    void pop();
    bool refill(TextInput& input);
    void flushCapture();
    Source& top() { return *sources_[depth_ - 1]; }
    Source& pushSource(EntityDeclaration* entity);
    TextInput& countedInput();
    Position positionOfStream();

    ScannerOwner& owner_;
    const char16_t* cur_ = nullptr;
    const char16_t* end_ = nullptr;
    const char16_t* seen_ = nullptr;
    // Sources stay where they are, since windows may point into a short text itself, and are used
    // again.
    std::vector<std::unique_ptr<Source>> sources_;
    std::size_t depth_ = 1;
    UnicodeString collected_;  // a name that crosses windows
    std::size_t longestName_ = SIZE_MAX;
    std::uint64_t unitsOfClosedInputs_ = 0;
    TextBuffer* capture_ = nullptr;
    std::size_t captureDepth_ = 0;
    const char16_t* captureFrom_ = nullptr;
};

}  // namespace RynCommon
