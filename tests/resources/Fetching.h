// What the tests of opened URIs share: texts, whole contents, files for a while, the environment.
#pragma once

#include <RynCommon/RyUri.h>

#include <string>

#include "tests/Scratch.h"
#include "tests/Text.h"

namespace RynCommon {

/// What opening a URI and reading it to its end came to.
struct Fetched {
    /// "(none)" when it did not open.
    std::string content;
    std::string error;
    std::string contentType;
};
Fetched fetch(const RyUri& uri);
Fetched fetch(const std::string& uri);

/// Everything that the stream still has, in pieces of `step` bytes.
std::string drain(std::istream& in, std::size_t step = 4096);

/// Installs a resolver for a while.
class ScopedResolver {
public:
    explicit ScopedResolver(RyUriReferenceResolver& resolver) {
        RyUri::setUriReferenceResolver(&resolver);
    }
    ScopedResolver(const ScopedResolver&) = delete;
    ScopedResolver& operator=(const ScopedResolver&) = delete;
    ~ScopedResolver() { RyUri::setUriReferenceResolver(nullptr); }
};

/// Bytes without a pattern, the same for the same seed.
std::string makeNoise(std::size_t size, unsigned seed = 1);

/// One gzip member.
std::string makeGzip(const std::string& data);

}  // namespace RynCommon
