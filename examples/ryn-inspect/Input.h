// What is inspected: a stream that can be looked at before it is read.
#pragma once

#include <RynCommon/RyUri.h>

#include <chrono>
#include <istream>
#include <memory>
#include <string>

/// A resource that is open, at its start.
class Input {
public:
    using Clock = std::chrono::steady_clock;

    enum class Kind { XML, GZIP, ZIP, COMPOUND, OTHER };

    /// Opens a path or URI in UTF-8; empty(), with a reason, when nothing opens.
    explicit Input(const std::string& name);
    /// Inflates the gzip data of `outer`, which must outlive this object.
    static Input inflated(Input& outer);

    bool empty() const { return stream_ == nullptr; }
    /// Why nothing opened.
    const icu::UnicodeString& reason() const { return reason_; }
    const icu::UnicodeString& uri() const { return uri_; }
    /// The media type that the source tells; empty when it does not.
    const icu::UnicodeString& contentType() const { return contentType_; }
    /// When opening began.
    Clock::time_point start() const { return start_; }

    /// By content alone.
    Kind kind();
    /// The data from its start, for one reader from front to back.
    std::istream& stream() { return *stream_; }
    /// The data from its start, all of it in reach: read into memory, with a progress line, unless
    /// it is a file.
    std::istream& wholeStream();

private:
    explicit Input(Clock::time_point start) : start_(start) {}

    void take(std::unique_ptr<std::istream> stream);
    bool looksLikeXml();

    Clock::time_point start_ = Clock::now();
    icu::UnicodeString uri_;
    icu::UnicodeString reason_;
    icu::UnicodeString contentType_;
    /// A file, or memory in front of a source that cannot go back.
    std::unique_ptr<std::istream> stream_;
    bool isWhole_ = false;
};
