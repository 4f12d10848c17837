// Reading `data:` URIs. Every step walks the text once; it may be as long as a text can be.
#include "resources/uri/DataUri.h"

#include <sstream>
#include <string>

#include <RynCommon/RyUtil.h>

#include "resources/uri/Escapes.h"
#include "resources/uri/UriText.h"

namespace RynCommon::uri {

namespace {

std::string decodeBase64(std::u16string_view data) {
    // An alias of the caller's text where nothing is escaped: it may be long.
    const UnicodeString letters =
        data.find(u'%') == NONE
            ? UnicodeString(false, data.data(), static_cast<std::int32_t>(data.size()))
            : unescape(data);
    std::ostringstream bytes(std::ios_base::binary);
    bytes.exceptions(std::ios_base::badbit);  // lack of memory
    RyUtil::decodeBase64(letters, letters.length(), bytes);
    return std::move(bytes).str();
}

}  // namespace

Opened openData(const RyUri& uri) {
    const RyDataUri parts(uri.toString());
    if (parts.getDataPos() < 0) return notOpened(u"Malformed data URI: no comma");
    const std::u16string_view data =
        viewOf(parts.toString()).substr(static_cast<std::size_t>(parts.getDataPos()));
    std::string bytes = parts.isBase64() ? decodeBase64(data) : unescapeToBytes(data);
    return {std::make_unique<std::istringstream>(std::move(bytes), std::ios_base::binary),
            {},
            parts.getMediaType()};
}

}  // namespace RynCommon::uri
