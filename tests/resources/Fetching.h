// What the tests of opened URIs share: texts, whole contents, files for a while, the environment.
#pragma once

#include <RynCommon/RyUri.h>

#include <optional>
#include <string>

namespace RynCommon {

UnicodeString u(const std::string& text);
std::string s(const UnicodeString& text);

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

/// A folder of its own, removed with all that is in it.
class ScratchFolder {
public:
    ScratchFolder();
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;
    ~ScratchFolder();

    std::string path(const std::string& name) const { return folder_ + "/" + name; }
    /// Writes the file and returns its URI.
    std::string write(const std::string& name, const std::string& content) const;

private:
    std::string folder_;
};

/// Sets (or, without a value, removes) a variable of the environment for a while.
class ScopedVariable {
public:
    explicit ScopedVariable(const char* name, std::optional<std::string> value = {});
    ScopedVariable(const ScopedVariable&) = delete;
    ScopedVariable& operator=(const ScopedVariable&) = delete;
    ~ScopedVariable();

private:
    void set(const std::optional<std::string>& value) const;

    const char* name_;
    std::optional<std::string> previous_;
};

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
