// The one error value of the library, and a formatted message.
#pragma once

#include <exception>
#include <new>

#include <RynCommon/Forward.h>

namespace RynCommon {

/// Category of an error code: the code's bits 11 to 15, unshifted.
enum RyErrorCategory : std::uint16_t {
    RYERROR_NONE = 0,
    RYERROR_SYSTEM = 0x0800,  ///< a broken programming contract, or trouble in the run-time system
    RYERROR_IO = 0x1000,      ///< files and streams
    RYERROR_XML = 0x1800      ///< the XML parsers
};

/// Every failure that the library reports: a plain value, thrown and handed to parsers' callbacks.
/// Lack of memory is code 2049 where documents or their events are read, loaded or saved, and lets
/// std::bad_alloc pass elsewhere; no text is lost by it in silence, and objects stay usable.
/// A code has a category in bits 11 to 15, flags in bits 8 to 10 (0x0400 marks a warning, which is
/// never thrown) and a number in bits 0 to 7. Code 0 is no error.
class RYNCOMMON_API RyError {
public:
    /// No error: code 0, empty texts, unknown position.
    RyError();

    /// Sets every field. A line or column of -1 is unknown; lines count from 1.
    RyError(unsigned short code, const UnicodeString& rawMessage, const UnicodeString& source,
            int line, int column, const UnicodeString& uri);

    /// Code 2049, "Out of memory.".
    RyError(const std::bad_alloc& error, const UnicodeString& source);

    /// Code 2050, "C++ exception: " and the text of what(), read as UTF-8 (bytes that are not
    /// become U+FFFD).
    RyError(const std::exception& error, const UnicodeString& source);

    RyError(const RyError& other);
    RyError& operator=(const RyError& other);
    ~RyError();

    unsigned short getErrorCode() const { return code_; }
    void setErrorCode(unsigned short code) { code_ = code; }
    /// The code with all but bits 11 to 15 cleared.
    RyErrorCategory getErrorCategory() const {
        return static_cast<RyErrorCategory>(code_ & 0xF800);
    }

    /// The message without the position.
    const UnicodeString& getRawMessage() const { return rawMessage_; }
    void setRawMessage(const UnicodeString& message) { rawMessage_ = message; }

    /// The place that raised the error, such as "RynCommon::RyNode::appendChild".
    const UnicodeString& getSource() const { return source_; }
    void setSource(const UnicodeString& source) { source_ = source; }

    int getLineNumber() const { return line_; }
    void setLineNumber(int line) { line_ = line; }
    int getColumnNumber() const { return column_; }
    void setColumnNumber(int column) { column_ = column; }
    const UnicodeString& getUri() const { return uri_; }
    void setUri(const UnicodeString& uri) { uri_ = uri; }

    /// "Line 12, Col 5, file:///a.xml"; parts that are unknown are left out, their trailing ", " is
    /// kept. Empty when nothing is known.
    UnicodeString getPositionDescription() const;

    /// The raw message and, where a position is known, a line feed and its description.
    UnicodeString getMessage() const;

    /// Sets the raw message; a trailing position description of this error is taken off, so that a
    /// text from getMessage() can be stored back.
    void setMessage(const UnicodeString& message);

    /// Appends `text` on a line of its own. Does nothing when `text` is empty.
    void appendMessage(const UnicodeString& text);

    /// Throws a copy of this error, unless its code is 0 or marks a warning.
    void throwFatalError() const;

private:
    unsigned short code_ = 0;
    UnicodeString rawMessage_;
    UnicodeString source_;
    std::int32_t line_ = -1;
    std::int32_t column_ = -1;
    UnicodeString uri_;
};

/// One text, made from a pattern in the form of ICU's MessageFormat whose "{0}" to "{3}" take the
/// arguments.
class RYNCOMMON_API RyMessage {
public:
    /// Formats at once. A pattern that ICU rejects leaves whatever ICU left in the result; nothing
    /// is thrown.
    RyMessage(const UnicodeString& pattern, const UnicodeString& arg0 = UnicodeString(),
              const UnicodeString& arg1 = UnicodeString(),
              const UnicodeString& arg2 = UnicodeString(),
              const UnicodeString& arg3 = UnicodeString());
    RyMessage(const RyMessage& other);
    RyMessage& operator=(const RyMessage& other);
    ~RyMessage();

    const UnicodeString& toString() const { return text_; }
    operator const UnicodeString&() const { return text_; }

private:
    UnicodeString text_;
};

}  // namespace RynCommon
