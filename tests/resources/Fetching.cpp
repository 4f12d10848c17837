// Helpers of the tests of opened URIs.
#include "tests/resources/Fetching.h"

#include <memory>
#include <random>
#include <sstream>

#include "tests/streams/DeflateData.h"

namespace RynCommon {

std::string drain(std::istream& in, std::size_t step) {
    return readInSteps(in, step);
}

std::istream* FixedResources::getStream(const UnicodeString& uri, UnicodeString* contentType) {
    asked += s(uri) + "\n";
    const auto found = resources.find(s(uri));
    if (found == resources.end()) return nullptr;
    if (contentType != nullptr) *contentType = u"text/x-test";
    return new std::istringstream(found->second);
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
