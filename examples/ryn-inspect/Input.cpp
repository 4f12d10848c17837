// Opening what is inspected, and telling by its first bytes what it is.
#include "Input.h"

#include <RynCommon/OleCompFile.h>
#include <RynCommon/RyMemStream.h>
#include <RynCommon/RyZipFile.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <filesystem>
#include <string_view>

#include "Downloads.h"
#include "Progress.h"

using namespace RynCommon;

namespace {

std::string escapeForUri(const std::string& path) {
    std::string uri;
    for (const char c : path) {
        const auto byte = static_cast<unsigned char>(c);
        if (std::isalnum(byte) ||
            (c != '\0' && std::string_view("/-._~").find(c) != std::string_view::npos)) {
            uri += c;
        } else {
            char escape[4];
            std::snprintf(escape, sizeof escape, "%%%02X", byte);
            uri += escape;
        }
    }
    return uri;
}

// A file that exists is meant as a path, whatever characters it has; all else is taken as it is.
UnicodeString makeUri(const std::string& name) {
    std::error_code ignored;
    if (!std::filesystem::exists(name, ignored)) return UnicodeString::fromUTF8(name);
    const std::filesystem::path path = std::filesystem::absolute(name, ignored);
    return UnicodeString::fromUTF8("file://" + escapeForUri(path.lexically_normal().string()));
}

bool canSeek(std::istream& stream) {
    const bool can = stream.tellg() != std::istream::pos_type(-1) &&
                     stream.seekg(0, std::ios::end) && stream.seekg(0);
    stream.clear();
    return can;
}

// The first bytes; the stream is put back.
std::string peek(std::istream& stream, std::size_t count) {
    std::string bytes(count, '\0');
    stream.read(bytes.data(), static_cast<std::streamsize>(count));
    bytes.resize(static_cast<std::size_t>(stream.gcount()));
    stream.clear();
    stream.seekg(0);
    return bytes;
}

bool isControl(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte < 0x20 && std::string_view("\t\n\r").find(c) == std::string_view::npos;
}

}  // namespace

Input::Input(const std::string& name) : uri_(makeUri(name)) {
    const Downloads downloads(uri_);
    take(std::unique_ptr<std::istream>(RyUri(uri_).getStream(&reason_, &contentType_)));
}

Input Input::inflated(Input& outer) {
    Input input(outer.start_);
    input.uri_ = outer.uri_;
    input.take(std::unique_ptr<std::istream>(RyUri::getGzipStream(outer.stream())));
    return input;
}

void Input::take(std::unique_ptr<std::istream> stream) {
    if (stream == nullptr) return;
    isWhole_ = canSeek(*stream);
    if (!isWhole_) stream = std::make_unique<RyMemStream>(stream.release(), 8192, true);
    stream_ = std::move(stream);
}

std::istream& Input::wholeStream() {
    if (isWhole_) return *stream_;
    auto memory = std::make_unique<RyMemStream>(nullptr, 1 << 16);
    Progress progress("reading", "bytes");
    while (const std::size_t count = memory->copyStream(*stream_, 1 << 16)) progress.add(count);
    memory->begin();
    stream_ = std::move(memory);
    isWhole_ = true;
    return *stream_;
}

Input::Kind Input::kind() {
    if (RyUri::isGzip(*stream_)) return Kind::GZIP;
    if (RyZipFile::isZipFile(stream_.get())) return Kind::ZIP;
    if (OleCompFile::isOLEUri(*stream_)) return Kind::COMPOUND;
    return looksLikeXml() ? Kind::XML : Kind::OTHER;
}

// Text of any kind is worth the parser's message; data of 16- and 32-bit encodings begins with a
// byte-order mark or has "<" in its first unit.
bool Input::looksLikeXml() {
    const std::string head = peek(*stream_, 256);
    if (head.starts_with("\xFE\xFF") || head.starts_with("\xFF\xFE")) return true;
    if (head.substr(0, 4).find('<') != std::string::npos) return true;
    return std::none_of(head.begin(), head.end(), isControl);
}
