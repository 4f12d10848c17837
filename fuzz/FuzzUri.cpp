// Fuzz target of URIs: what was made a URI stays as it is, resolution and its reverse agree, data
// comes out as it went in, and nothing takes long, however often a piece is repeated.
//
// The input is UTF-8: a URI, and behind the first line end a reference. "\x01" is replaced by two
// hundred copies of what stands before it in its line. Files and servers are never touched: a
// resolver gives an empty stream for all that is not opened from the text alone.
#include <RynCommon/RyUri.h>
#include <RynCommon/RyUtil.h>

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <memory>
#include <sstream>
#include <string>

#include "resources/uri/Escapes.h"
#include "resources/uri/UriText.h"

using namespace RynCommon;

namespace {

constexpr int REPEATS = 200;
constexpr std::size_t MOST_REPEATED = 10'000;

[[noreturn]] void fail(const char* what, const UnicodeString& a, const UnicodeString& b) {
    std::string first;
    std::string second;
    std::fprintf(stderr, "%s\n--- one\n%s\n--- other\n%s\n", what, a.toUTF8String(first).c_str(),
                 b.toUTF8String(second).c_str());
    std::abort();
}

void requireSame(const char* what, const UnicodeString& a, const UnicodeString& b) {
    if (a != b) fail(what, a, b);
}

class NothingElse : public RyUriReferenceResolver {
public:
    std::istream* getStream(const UnicodeString& text, UnicodeString*) override {
        const RyUri uri(text);
        const bool isOpened = uri.isDataScheme() || uri.isJarScheme();
        return isOpened ? nullptr : new std::istringstream;
    }
};

std::string readAll(std::istream& in) {
    return {std::istreambuf_iterator<char>(in), {}};
}

void checkConstruction(const UnicodeString& text) {
    for (int type = 0; type < 4; ++type) {
        const RyUri uri(text, static_cast<RyUri::URISTRTYPE>(type));
        requireSame("constructed again", uri, RyUri(uri.toString()));
        if (uri.isAbsolute() == uri.getScheme().isEmpty()) fail("scheme", uri, uri.getScheme());
    }
}

void checkDerivations(const RyUri& uri) {
    RyUri changed = uri;
    const UnicodeString name = uri.getFileName();
    changed.setExtension(u"ext");
    if (name.isEmpty()) requireSame("extension without a name", changed, uri);
    if (!name.isEmpty()) requireSame("extension", changed.getExtension(), u"ext");
    if (uri.toString().indexOf(uri.getBaseString()) > 0) fail("base", uri, uri.getBaseString());
    changed = uri;
    const UnicodeString fragment = changed.removeFragment();
    requireSame("fragment", changed.toString() + fragment, uri);
    changed.toDirectory();
    if (!changed.toString().endsWith(u"/")) fail("directory", changed, uri);
    if (uri.getLocalPath().length() > uri.toString().length() + 2) {
        fail("local path", uri, uri.getLocalPath());
    }
}

void checkRequest(const RyUri& uri) {
    const std::string url = uri::toRequestUrl(uri::viewOf(uri.toString()));
    const bool isPlain = std::all_of(url.begin(), url.end(),
                                     [](char c) { return c > ' ' && c < '\x7F' && c != '#'; });
    const UnicodeString text = UnicodeString::fromUTF8(url);
    if (!isPlain) fail("request", uri, text);
    const std::string again = uri::toRequestUrl(uri::viewOf(text));
    requireSame("request of a request", text, UnicodeString::fromUTF8(again));
}

/// Whether resolution leaves the URI alone: a file URI with fewer slashes is relative or is mended,
/// a drive letter, which "file:C:/" leaves behind, becomes a file URI, and the archive of a `jar:`
/// URI may be relative.
bool isFixed(const RyUri& uri) {
    if (uri.isJarScheme() || uri::hasDriveAt(uri::viewOf(uri.toString()), 0)) return false;
    return uri.isAbsolute() && (!uri.isFile() || uri.toString().startsWith(u"file:///"));
}

void checkResolution(const RyUri& base, const UnicodeString& reference) {
    const RyUri resolved(base, reference);
    if (isFixed(resolved)) requireSame("resolved again", RyUri(base, resolved), resolved);
    const RyUri target(reference);
    const RyUri fromBase(base, target.toString());
    if (!isFixed(target)) return;
    const UnicodeString relative = base.getRelativeUri(target);
    requireSame("relative reference", RyUri(base, relative), fromBase);
}

/// The data of a URI without base64, byte by byte.
std::string decodeData(const UnicodeString& data) {
    std::string bytes;
    data.toUTF8String(bytes);
    std::string result;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        unsigned value = 0;
        const bool isEscape = bytes[i] == '%' && i + 2 < bytes.size() &&
                              std::isxdigit(static_cast<unsigned char>(bytes[i + 1])) &&
                              std::isxdigit(static_cast<unsigned char>(bytes[i + 2]));
        if (isEscape) std::sscanf(bytes.c_str() + i + 1, "%2x", &value);
        result += isEscape ? static_cast<char>(value) : bytes[i];
        if (isEscape) i += 2;
    }
    return result;
}

void checkData(const UnicodeString& text) {
    const RyDataUri uri(u"data:" + text);
    const std::unique_ptr<std::istream> in(uri.getStream());
    if ((in != nullptr) != (uri.getDataPos() >= 0)) fail("data", uri, u"");
    if (!in || uri.isBase64()) return;
    if (readAll(*in) != decodeData(UnicodeString(uri.toString(), uri.getDataPos()))) {
        fail("data differ", uri, u"");
    }
}

void checkBase64(const std::string& bytes) {
    std::istringstream source(bytes);
    const UnicodeString letters = RyUtil::encodeBase64(source, static_cast<int>(bytes.size()));
    const std::unique_ptr<std::istream> in(RyUri(u"data:;base64," + letters).getStream());
    if (!in || readAll(*in) != bytes) fail("base64 differs", letters, u"");
}

void checkOpening(const RyUri& uri) {
    UnicodeString error;
    const std::unique_ptr<std::istream> in(uri.getStream(&error));
    if ((in == nullptr) == error.isEmpty()) fail("opening", uri, error);
    if (in) readAll(*in);
    uri.isGzip();
}

std::string repeatPieces(const std::string& line) {
    std::string result;
    for (const char c : line) {
        if (c != '\x01') {
            result += c;
        } else if (result.size() * REPEATS <= MOST_REPEATED) {
            const std::string piece = result;
            for (int i = 1; i < REPEATS; ++i) result += piece;
        }
    }
    return result;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static NothingElse resolver;
    RyUri::setUriReferenceResolver(&resolver);
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    const std::size_t end = std::min(bytes.find('\n'), bytes.size());
    const UnicodeString text = UnicodeString::fromUTF8(repeatPieces(bytes.substr(0, end)));
    const UnicodeString reference =
        UnicodeString::fromUTF8(repeatPieces(bytes.substr(std::min(end + 1, bytes.size()))));
    const RyUri uri(text);
    checkConstruction(text);
    checkDerivations(uri);
    checkRequest(uri);
    checkResolution(uri, reference);
    checkData(text);
    checkBase64(bytes);
    checkOpening(uri);
    checkOpening(RyUri(uri, reference));
    RyUri::setUriReferenceResolver(nullptr);
    return 0;
}
