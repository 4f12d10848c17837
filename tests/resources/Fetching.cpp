// Helpers of the tests of opened URIs.
#include "tests/resources/Fetching.h"

#include <memory>
#include <sstream>

#include "tests/streams/DeflateData.h"

namespace RynCommon {

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
    return {in ? readInSteps(*in, 4096) : "(none)", s(error), s(contentType)};
}

Fetched fetch(const std::string& uri) {
    return fetch(RyUri(u(uri)));
}

}  // namespace RynCommon
