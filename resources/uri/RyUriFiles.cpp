// URIs and the system: local paths, files, modules, streams.
#include <RynCommon/RyUri.h>

#include <optional>
#include <string>

#include "core/MemoryCheck.h"
#include "platform/Files.h"
#include "platform/Modules.h"
#include "resources/uri/Escapes.h"
#include "resources/uri/Fetch.h"
#include "resources/uri/LocalPath.h"
#include "resources/uri/UriText.h"

namespace RynCommon {

namespace {

/// An object of this module, for finding where the module was loaded from.
const char MODULE_ANCHOR = 0;

std::string toUtf8(const UnicodeString& text) {
    std::string bytes;
    text.toUTF8String(bytes);
    return bytes;
}

/// A path as a URI text that opens under that very name.
UnicodeString escapePath(const std::string& path) {
    std::string escaped;
    for (const char c : path) {
        if (c == '%') {
            escaped += "%25";
        } else if (c == '\\') {
            escaped += "%5C";
        } else {
            escaped += c;
        }
    }
    return takeWhole(UnicodeString::fromUTF8(escaped));
}

void store(UnicodeString* target, const UnicodeString& text) {
    if (target != nullptr) *target = text;
}

}  // namespace

UnicodeString RyUri::getLocalPath() const {
    return uri::toLocalPath(uri::viewOf(text_));
}

UnicodeString RyUri::unescape(const UnicodeString& text) {
    return uri::unescape(uri::viewOf(text));
}

bool RyUri::isRemote() const {
    return false;
}

bool RyUri::isFileExists() const {
    const std::optional<std::string> path = uri::toSystemPath(uri::viewOf(text_));
    return path && platform::isExistingFile(*path);
}

bool RyUri::isFileExists(const char* path) {
    return path != nullptr && platform::isExistingFile(path);
}

bool RyUri::isFileExists(const wchar_t* path) {
    static_assert(sizeof(wchar_t) == sizeof(UChar32), "wide characters are code points here");
    if (path == nullptr) return false;
    UnicodeString text;
    for (; *path != 0; ++path) text.append(static_cast<UChar32>(*path));
    return platform::isExistingFile(toUtf8(text));
}

bool RyUri::isSameFile(const RyUri& other) const {
    if (isFile() != other.isFile()) return false;
    if (getLocalPath() == other.getLocalPath()) return true;
    const std::optional<std::string> path = uri::toSystemPath(uri::viewOf(text_));
    const std::optional<std::string> otherPath = uri::toSystemPath(uri::viewOf(other.text_));
    return path && otherPath && platform::isSameFile(*path, *otherPath);
}

RyUri RyUri::getModuleUri(const UnicodeString& fileName) {
    const std::string module = platform::getModulePath(&MODULE_ANCHOR);
    const std::string directory = module.substr(0, module.rfind('/') + 1);
    RyUri result(escapePath(directory + toUtf8(fileName)), PATH);
    if (result.getExtension().isEmpty()) {
        result.setExtension(UnicodeString::fromUTF8(platform::MODULE_EXTENSION));
    }
    return result;
}

void* RyUri::loadLibrary(const UnicodeString& path) {
    return platform::loadModule(toUtf8(path));
}

void* RyUri::getProcAddress(void* library, const char* name) {
    return platform::findSymbol(library, name);
}

bool RyUri::freeLibrary(void* library) {
    return platform::unloadModule(library);
}

std::istream* RyUri::getStream(UnicodeString* errorText, UnicodeString* contentType) const {
    store(errorText, {});
    store(contentType, {});
    if (std::istream* const supplied = getStreamFromResolver(contentType)) return supplied;
    uri::Opened opened = uri::openByScheme(*this);
    store(errorText, opened.error);
    store(contentType, opened.contentType);
    return opened.stream.release();
}

std::istream* RyUri::getStreamFromResolver(UnicodeString* contentType) const {
    RyUriReferenceResolver* const resolver = getUriReferenceResolver();
    return resolver == nullptr ? nullptr : resolver->getStream(text_, contentType);
}

std::ostream* RyUri::createOStream(const UnicodeString& uri) {
    return uri::openForWriting(RyUri(*this, uri)).release();
}

void RyUri::releaseOStream(std::ostream* out) {
    delete out;
}

}  // namespace RynCommon
