// Local paths of URIs.
#include "resources/uri/LocalPath.h"

#include <algorithm>

#include "resources/uri/Escapes.h"
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

}  // namespace

UnicodeString toLocalPath(std::u16string_view uri) {
    const LocalPath path = splitUri(uri);
    if (path.kind == PathKind::NoFile) return toText(uri);
    const UnicodeString decoded = unescape(path.text);
    if (path.kind == PathKind::System) return decoded;
    std::u16string result(path.kind == PathKind::Unc ? u"\\\\" : u"");
    result += viewOf(decoded);
    std::replace(result.begin(), result.end(), u'/', u'\\');
    return toText(result);
}

std::optional<std::string> toSystemPath(std::u16string_view uri) {
    const LocalPath path = splitUri(uri);
    if (path.kind != PathKind::System) return std::nullopt;
    std::string result = unescapeToBytes(path.text);
    if (result.find('\0') != std::string::npos) return std::nullopt;
    return result;
}

}  // namespace RynCommon::uri
