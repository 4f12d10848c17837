// Percent-escapes in URI texts.
#include "resources/uri/Escapes.h"

#include <unicode/idna.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>

#include "resources/uri/UriText.h"

namespace RynCommon::uri {

namespace {

/// The value of the two hexadecimal digits behind the "%" at `index`; -1 when there is no escape.
template <class Char>
int escapeAt(std::basic_string_view<Char> text, std::size_t index) {
    if (text[index] != Char('%') || index + 2 >= text.size()) return -1;
    const int high = hexValue(static_cast<char32_t>(text[index + 1]));
    const int low = hexValue(static_cast<char32_t>(text[index + 2]));
    return high < 0 || low < 0 ? -1 : high * 16 + low;
}

/// Puts each escape as one unit in its place. The text only gets shorter.
template <class Char>
void decodeEscapes(std::basic_string<Char>& text) {
    std::size_t end = std::min(text.find(Char('%')), text.size());
    for (std::size_t i = end; i < text.size(); ++i) {
        const int value = escapeAt(std::basic_string_view<Char>(text), i);
        text[end++] = value < 0 ? text[i] : static_cast<Char>(value);
        if (value >= 0) i += 2;
    }
    text.resize(end);
}

std::string toUtf8(const UnicodeString& text) {
    std::string bytes;
    return text.toUTF8String(bytes);
}

/// Printable ASCII without the characters that RFC 3986 knows in no place of a URI.
constexpr auto URI_BYTES = [] {
    std::array<bool, 256> allowed{};
    for (std::size_t c = 0x21; c < 0x7F; ++c) allowed[c] = true;
    for (const char c : {'"', '<', '>', '\\', '^', '`', '{', '|', '}'}) {
        allowed[static_cast<unsigned char>(c)] = false;
    }
    return allowed;
}();

void appendEscape(std::string& out, char c) {
    constexpr char DIGITS[] = "0123456789ABCDEF";
    const auto byte = static_cast<unsigned char>(c);
    out += '%';
    out += DIGITS[byte >> 4];
    out += DIGITS[byte & 15];
}

std::string escape(std::string_view bytes) {
    std::string result;
    result.reserve(bytes.size());
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const bool isStrayPercent = bytes[i] == '%' && escapeAt(bytes, i) < 0;
        if (URI_BYTES[static_cast<unsigned char>(bytes[i])] && !isStrayPercent) {
            result += bytes[i];
        } else {
            appendEscape(result, bytes[i]);
        }
    }
    return result;
}

struct Range {
    std::size_t start;
    std::size_t end;
};

/// Where the host lies in a URI with "//"; empty when there is none.
Range findHost(std::u16string_view uri) {
    const Parts parts = split(uri);
    if (!parts.hasAuthority) return {0, 0};
    const std::size_t start = findSchemeEnd(uri) + 3;
    const std::u16string_view authority = uri.substr(start, parts.pathStart - start);
    const std::size_t at = authority.rfind(u'@');
    const std::size_t host = at == NONE ? 0 : at + 1;
    const std::size_t end = std::min(authority.find(u':', host), authority.size());
    return {start + host, start + end};
}

/// No host name is longer than 253 octets; what is much longer is no name to convert.
constexpr std::size_t MAX_HOST = 1024;
constexpr std::uint32_t IDNA_OPTIONS = UIDNA_NONTRANSITIONAL_TO_ASCII | UIDNA_USE_STD3_RULES;

/// The ASCII form of a host name; empty when it is ASCII already or has no such form. The rules of
/// STD 3 keep out what would end the name early, such as a wide "/" or a NUL.
std::string toAsciiHost(std::u16string_view host) {
    const bool isAscii = std::all_of(host.begin(), host.end(), [](char16_t c) { return c < 0x80; });
    if (isAscii || host.size() > MAX_HOST) return {};
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::IDNA> idna(icu::IDNA::createUTS46Instance(IDNA_OPTIONS, status));
    if (U_FAILURE(status)) return {};
    icu::IDNAInfo info;
    UnicodeString ascii;
    idna->nameToASCII(toText(host), ascii, info, status);
    return U_FAILURE(status) || info.hasErrors() ? std::string() : toUtf8(ascii);
}

}  // namespace

UnicodeString unescape(std::u16string_view text) {
    std::u16string result(text);
    decodeEscapes(result);
    return toText(result);
}

std::string unescapeToBytes(std::u16string_view text) {
    std::string result = toUtf8(toText(text));
    decodeEscapes(result);
    return result;
}

std::string toRequestUrl(std::u16string_view uri) {
    uri = uri.substr(0, uri.find(u'#'));
    const Range host = findHost(uri);
    const std::string asciiHost = toAsciiHost(uri.substr(host.start, host.end - host.start));
    if (asciiHost.empty()) return escape(toUtf8(toText(uri)));
    return escape(toUtf8(toText(uri.substr(0, host.start)))) + asciiHost +
           escape(toUtf8(toText(uri.substr(host.end))));
}

}  // namespace RynCommon::uri
