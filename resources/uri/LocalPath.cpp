// Local paths of URIs.
#include "resources/uri/LocalPath.h"

#include <algorithm>

#include "resources/uri/UriText.h"

namespace RynCommon::uri {

namespace {

enum class PathKind { NoFile, System, Drive, Unc };

/// The path of a URI, its escapes still in place.
struct LocalPath {
    PathKind kind;
    std::u16string_view text;
};

bool isLocalhost(std::u16string_view afterSlashes) {
    return hasPrefix(afterSlashes, u"localhost/");
}

/// `rest` is what follows "file:". Three slashes, or a host named "localhost", lead to a path of
/// this system; two, or more than three, to a UNC name.
LocalPath splitFile(std::u16string_view rest) {
    const std::size_t slashes = std::min(rest.find_first_not_of(u'/'), rest.size());
    const std::u16string_view tail = rest.substr(slashes);
    if (hasDriveAt(tail, 0)) return {PathKind::Drive, tail};
    if (slashes < 2) return {PathKind::System, rest};
    if (slashes == 3) return {PathKind::System, rest.substr(2)};
    if (slashes > 3 || !isLocalhost(tail)) return {PathKind::Unc, tail};
    const std::u16string_view path = tail.substr(9);
    return hasDriveAt(path, 1) ? LocalPath{PathKind::Drive, path.substr(1)}
                               : LocalPath{PathKind::System, path};
}

LocalPath splitUri(std::u16string_view uri) {
    if (hasPrefix(uri, u"file:")) return splitFile(uri.substr(5));
    return {findSchemeEnd(uri) == NONE ? PathKind::System : PathKind::NoFile, uri};
}

/// Copies `text` to `result`, each escape as one unit.
template <class Char>
void decodeEscapes(std::basic_string_view<Char> text, std::basic_string<Char>& result) {
    result.reserve(result.size() + text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool escape = text[i] == Char('%') && i + 2 < text.size();
        const int high = escape ? hexValue(static_cast<char32_t>(text[i + 1])) : -1;
        const int low = escape ? hexValue(static_cast<char32_t>(text[i + 2])) : -1;
        if (high < 0 || low < 0) {
            result += text[i];
        } else {
            result += static_cast<Char>(high * 16 + low);
            i += 2;
        }
    }
}

}  // namespace

UnicodeString unescape(std::u16string_view text) {
    std::u16string result;
    decodeEscapes(text, result);
    return toText(result);
}

UnicodeString toLocalPath(std::u16string_view uri) {
    const LocalPath path = splitUri(uri);
    if (path.kind == PathKind::NoFile) return toText(uri);
    std::u16string result(path.kind == PathKind::Unc ? u"\\\\" : u"");
    decodeEscapes(path.text, result);
    if (path.kind != PathKind::System) std::replace(result.begin(), result.end(), u'/', u'\\');
    return toText(result);
}

std::optional<std::string> toSystemPath(std::u16string_view uri) {
    const LocalPath path = splitUri(uri);
    if (path.kind != PathKind::System) return std::nullopt;
    std::string escaped;
    toText(path.text).toUTF8String(escaped);
    std::string result;
    decodeEscapes(std::string_view(escaped), result);
    if (result.find('\0') != std::string::npos) return std::nullopt;
    return result;
}

}  // namespace RynCommon::uri
