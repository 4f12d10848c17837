// The parts of a `data:` URI (RFC 2397).
#include <RynCommon/RyUri.h>

#include <algorithm>
#include <charconv>
#include <string>

#include "resources/uri/UriText.h"

namespace RynCommon {

namespace {

/// Trimmed and lower-cased.
std::u16string toKeyword(std::u16string_view text) {
    std::u16string keyword(uri::trim(text));
    std::transform(keyword.begin(), keyword.end(), keyword.begin(), uri::toLower);
    return keyword;
}

/// A positive decimal integer; 0 for anything else and for what is too large.
int parsePageNumber(std::u16string_view text) {
    text = uri::trim(text);
    const std::string digits(text.begin(), std::find_if(text.begin(), text.end(), [](char16_t c) {
                                 return c < u'0' || c > u'9';
                             }));
    if (digits.size() != text.size()) return 0;
    int value = 0;
    const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    return result.ec == std::errc() ? value : 0;
}

/// Cuts the text before the next ";" off `rest` and returns it.
std::u16string_view takeField(std::u16string_view& rest) {
    const std::size_t end = std::min(rest.find(u';'), rest.size());
    const std::u16string_view field = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    return field;
}

}  // namespace

RyDataUri::RyDataUri(const UnicodeString& text, URISTRTYPE type) : RyUri(text, type) {
    analyse();
}

RyDataUri::RyDataUri(const RyUri& base, const UnicodeString& reference, URISTRTYPE type)
    : RyUri(base, reference, type) {
    analyse();
}

RyDataUri::RyDataUri(const RyDataUri& other) = default;
RyDataUri& RyDataUri::operator=(const RyDataUri& other) = default;
RyDataUri::~RyDataUri() = default;

void RyDataUri::analyse() {
    if (!isDataScheme()) return;
    const std::u16string_view text = uri::viewOf(text_);
    const std::size_t comma = text.find(u',');
    if (comma != uri::NONE) dataPos_ = static_cast<int>(comma) + 1;
    std::u16string_view head = text.substr(0, comma).substr(5);
    mediaType_ = uri::toText(takeField(head));
    while (!head.empty()) {
        const std::u16string_view field = takeField(head);
        const std::size_t equals = field.find(u'=');
        const std::u16string name = toKeyword(field.substr(0, equals));
        if (equals == uri::NONE) {
            base64_ = base64_ || name == u"base64";
        } else if (name == u"page") {
            pageNumber_ = parsePageNumber(field.substr(equals + 1));
        }
    }
}

}  // namespace RynCommon
