// The table of schemes, local files and servers.
#include "resources/uri/Fetch.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <system_error>

#include <RynCommon/RyUriStream.h>

#include "platform/Files.h"
#include "resources/uri/DataUri.h"
#include "resources/uri/JarUri.h"
#include "resources/uri/LocalPath.h"
#include "resources/uri/UriText.h"

namespace RynCommon::uri {

namespace {

Opened openFile(const RyUri& uri) {
    const UnicodeString failure = u"Cannot open file: " + uri.getLocalPath();
    const std::optional<std::string> path = toSystemPath(viewOf(uri.toString()));
    if (!path) return notOpened(failure + u": not a path of this system");
    std::error_code error;
    Opened opened{platform::openInputFile(*path, error), {}, {}};
    if (!opened.stream) {
        opened.error = failure + u": " + UnicodeString::fromUTF8(error.message());
    }
    return opened;
}

Opened openHttp(const RyUri& uri) {
    auto stream = std::make_unique<RyUriStream>(uri);
    if (!stream->is_open()) return notOpened(stream->getErrorText());
    const UnicodeString contentType = stream->getContentType();
    return {std::move(stream), {}, contentType};
}

struct SchemeReader {
    /// Lower case.
    std::u16string_view scheme;
    Opened (*open)(const RyUri& uri);
};

constexpr SchemeReader SCHEME_READERS[] = {
    {u"file", openFile}, {u"http", openHttp}, {u"https", openHttp},
    {u"data", openData}, {u"jar", openJar},
};

}  // namespace

Opened openByScheme(const RyUri& uri) {
    const UnicodeString scheme = uri.isFile() ? UnicodeString(u"file") : uri.getScheme();
    const auto* const reader =
        std::find_if(std::begin(SCHEME_READERS), std::end(SCHEME_READERS),
                     [&](const SchemeReader& entry) { return entry.scheme == viewOf(scheme); });
    if (reader == std::end(SCHEME_READERS))
        return notOpened(u"Cannot open URI of scheme: " + scheme);
    return reader->open(uri);
}

std::unique_ptr<std::ostream> openForWriting(const RyUri& uri) {
    if (!uri.isFile()) return nullptr;
    const std::optional<std::string> path = toSystemPath(viewOf(uri.toString()));
    std::error_code error;
    return path ? platform::openOutputFile(*path, error) : nullptr;
}

}  // namespace RynCommon::uri
