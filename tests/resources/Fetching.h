// What the tests of opened URIs share: texts, whole contents, files for a while, the environment.
#pragma once

#include <RynCommon/RyUri.h>

#include <map>
#include <ostream>
#include <string>

#include "tests/Scratch.h"
#include "tests/Text.h"

namespace RynCommon {

/// What opening a URI and reading it to its end came to.
struct Fetched {
    bool operator==(const Fetched&) const = default;
    /// Shows the start of the content only.
    friend std::ostream& operator<<(std::ostream& out, const Fetched& fetched) {
        return out << fetched.content.substr(0, 200) << " (" << fetched.content.size()
                   << " bytes), '" << fetched.error << "', '" << fetched.contentType << "'";
    }

    /// "(none)" when it did not open.
    std::string content = "(none)";
    std::string error = {};
    std::string contentType = {};
};
Fetched fetch(const RyUri& uri);
Fetched fetch(const std::string& uri);

/// Gives fixed resources by name and writes down what it was asked for, as long as it lives.
class FixedResources : public RyUriReferenceResolver {
public:
    FixedResources() { RyUri::setUriReferenceResolver(this); }
    FixedResources(const FixedResources&) = delete;
    FixedResources& operator=(const FixedResources&) = delete;
    ~FixedResources() override { RyUri::setUriReferenceResolver(nullptr); }

    std::istream* getStream(const UnicodeString& uri, UnicodeString* contentType) override;

    std::map<std::string, std::string> resources;
    std::string asked;  ///< one URI per line
};

}  // namespace RynCommon
