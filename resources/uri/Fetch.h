// Opening a resource by the scheme of its URI.
//
// One table (in Fetch.cpp) names the schemes that open and the function that opens each; a relative
// URI opens as "file". The resolver hook is asked before, by RyUri::getStream, which is also what a
// reader of nested resources calls for the outer one.
#pragma once

#include <istream>
#include <memory>
#include <utility>

#include <RynCommon/RyUri.h>

namespace RynCommon::uri {

/// What opening came to: a stream, or the reason why there is none.
struct Opened {
    std::unique_ptr<std::istream> stream;
    /// Empty when there is a stream.
    UnicodeString error;
    /// The media type, where the scheme tells one.
    UnicodeString contentType;
};

inline Opened notOpened(UnicodeString error) {
    return {nullptr, std::move(error), {}};
}

Opened openByScheme(const RyUri& uri);

/// Opens the file that a file URI or a relative URI names for writing; null when it does not open.
std::unique_ptr<std::ostream> openForWriting(const RyUri& uri);

}  // namespace RynCommon::uri
