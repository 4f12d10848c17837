// The lexical questions about URI texts.
#include "resources/uri/UriText.h"
#include "core/MemoryCheck.h"

#include <unicode/uchar.h>

#include <algorithm>
#include <limits>

namespace RynCommon::uri {

namespace {

bool isDigit(char16_t c) {
    return c >= u'0' && c <= u'9';
}

bool isSlash(char16_t c) {
    return c == u'/' || c == u'\\';
}

std::size_t findOrEnd(std::u16string_view text, std::u16string_view stops, std::size_t from) {
    return std::min(text.find_first_of(stops, from), text.size());
}

std::size_t findPathStart(std::u16string_view text, bool& hasAuthority) {
    const std::size_t schemeEnd = findSchemeEnd(text);
    if (schemeEnd == NONE) return 0;
    if (hasPrefix(text, u"data:")) return text.size();
    if (hasPrefix(text, u"jar:")) {
        const std::size_t member = text.rfind(u"!/");
        return member == NONE ? schemeEnd + 1 : member + 1;
    }
    hasAuthority = text.substr(schemeEnd + 1, 2) == u"//";
    return hasAuthority ? findOrEnd(text, u"/\\?#", schemeEnd + 3) : schemeEnd + 1;
}

}  // namespace

std::u16string_view viewOf(const UnicodeString& text) {
    const char16_t* const units = text.getBuffer();
    return units == nullptr ? std::u16string_view()
                            : std::u16string_view(units, static_cast<std::size_t>(text.length()));
}

UnicodeString toText(std::u16string_view text) {
    if (text.size() > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max())) return {};
    return takeWhole({text.data(), static_cast<std::int32_t>(text.size())});
}

bool isLetter(char16_t c) {
    return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z');
}

char16_t toLower(char16_t c) {
    return c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c + (u'a' - u'A')) : c;
}

int hexValue(char32_t c) {
    if (c >= U'0' && c <= U'9') return static_cast<int>(c - U'0');
    if (c >= U'a' && c <= U'f') return static_cast<int>(c - U'a') + 10;
    if (c >= U'A' && c <= U'F') return static_cast<int>(c - U'A') + 10;
    return -1;
}

bool hasPrefix(std::u16string_view text, std::u16string_view prefix) {
    return text.size() >= prefix.size() &&
           std::equal(prefix.begin(), prefix.end(), text.begin(),
                      [](char16_t expected, char16_t c) { return expected == toLower(c); });
}

/// Every white space character is one unit long.
std::u16string_view trim(std::u16string_view text) {
    while (!text.empty() && u_isWhitespace(text.front())) text.remove_prefix(1);
    while (!text.empty() && u_isWhitespace(text.back())) text.remove_suffix(1);
    return text;
}

std::size_t findSchemeEnd(std::u16string_view text) {
    if (text.empty() || !isLetter(text.front())) return NONE;
    const auto isSchemeUnit = [](char16_t c) {
        return isLetter(c) || isDigit(c) || c == u'+' || c == u'-';
    };
    const auto end = std::find_if_not(text.begin(), text.end(), isSchemeUnit);
    return end != text.end() && *end == u':' ? static_cast<std::size_t>(end - text.begin()) : NONE;
}

bool hasDriveAt(std::u16string_view text, std::size_t index) {
    return index + 1 < text.size() && isLetter(text[index]) && text[index + 1] == u':';
}

std::u16string normalise(std::u16string_view text) {
    text = trim(text);
    if (hasPrefix(text, u"data:")) return std::u16string(text);
    std::u16string result;
    result.reserve(text.size());
    for (const char16_t c : text) {
        if (c == u' ') {
            result += u"%20";
        } else {
            result += c == u'\\' ? u'/' : c;
        }
    }
    return result;
}

std::u16string_view unwrapCss(std::u16string_view text) {
    if (text.starts_with(u"url(") && text.ends_with(u')')) {
        text = trim(text.substr(4, text.size() - 5));
    }
    const bool quoted = text.size() >= 2 && (text.front() == u'"' || text.front() == u'\'') &&
                        text.front() == text.back();
    return quoted ? text.substr(1, text.size() - 2) : text;
}

std::u16string toCanonical(std::u16string_view text) {
    std::u16string result = normalise(text);
    if (hasDriveAt(result, 0)) {
        result.insert(0, u"file:///");
    } else if (result.starts_with(u"//")) {
        result.insert(0, u"file:");
    } else if (result.starts_with(u'/')) {
        result.insert(0, u"file://");
    }
    return result;
}

Parts split(std::u16string_view text) {
    Parts parts;
    parts.pathStart = findPathStart(text, parts.hasAuthority);
    parts.pathEnd = findOrEnd(text, u"?#", parts.pathStart);
    parts.nameStart = parts.pathEnd;
    while (parts.nameStart > parts.pathStart && !isSlash(text[parts.nameStart - 1])) {
        --parts.nameStart;
    }
    return parts;
}

}  // namespace RynCommon::uri
