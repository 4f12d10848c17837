// Helpers of the tests of opened URIs.
#include "tests/resources/Fetching.h"

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <random>

#include <gtest/gtest.h>

#include "tests/streams/DeflateData.h"

namespace RynCommon {

UnicodeString u(const std::string& text) {
    return UnicodeString::fromUTF8(text);
}

std::string s(const UnicodeString& text) {
    std::string bytes;
    return text.toUTF8String(bytes);
}

std::string drain(std::istream& in, std::size_t step) {
    return readInSteps(in, step);
}

Fetched fetch(const RyUri& uri) {
    UnicodeString error = u"old";
    UnicodeString contentType = u"old";
    const std::unique_ptr<std::istream> in(uri.getStream(&error, &contentType));
    return {in ? drain(*in) : "(none)", s(error), s(contentType)};
}

Fetched fetch(const std::string& uri) {
    return fetch(RyUri(u(uri)));
}

ScratchFolder::ScratchFolder() {
    std::string pattern = testing::TempDir() + "ryn-fetch-XXXXXX";
    folder_ = mkdtemp(pattern.data());
}

ScratchFolder::~ScratchFolder() {
    std::filesystem::remove_all(folder_);
}

std::string ScratchFolder::write(const std::string& name, const std::string& content) const {
    std::ofstream(path(name), std::ios::binary) << content;
    return "file://" + path(name);
}

ScopedVariable::ScopedVariable(const char* name, std::optional<std::string> value) : name_(name) {
    if (const char* const previous = std::getenv(name)) previous_ = previous;
    set(value);
}

ScopedVariable::~ScopedVariable() {
    set(previous_);
}

void ScopedVariable::set(const std::optional<std::string>& value) const {
    if (value) {
        setenv(name_, value->c_str(), 1);
    } else {
        unsetenv(name_);
    }
}

std::string makeNoise(std::size_t size, unsigned seed) {
    std::minstd_rand random(seed);
    std::string noise(size, '\0');
    for (char& c : noise) c = static_cast<char>(random() >> 7);
    return noise;
}

std::string makeGzip(const std::string& data) {
    return deflateData(data, Wrapper::Gzip);
}

}  // namespace RynCommon
