// The memory stream.
#include <RynCommon/RyMemStream.h>

#include <cstring>

namespace RynCommon {

// The bases are constructed before the buffer, so they learn of it afterwards. rdbuf() also clears
// the state that the missing buffer had set.
RyMemStream::RyMemStream(std::istream* source, std::uint64_t growBytes, bool ownSource)
    : std::iostream(nullptr), buffer_(source, growBytes, ownSource) {
    rdbuf(&buffer_);
}

RyMemStream::RyMemStream(const RyMemStream& other)
    : std::basic_ios<char>(), std::iostream(nullptr), buffer_(other.buffer_) {
    rdbuf(&buffer_);
}

RyMemStream::~RyMemStream() = default;

void RyMemStream::remove() {
    buffer_.remove();
    if (fail()) clear();
}

RyMemStream& RyMemStream::erase() {
    remove();
    return *this;
}

RyMemStream& RyMemStream::begin() {
    if (fail()) clear();
    seekg(0);
    return *this;
}

RyMemStream& RyMemStream::append(const std::string& text) {
    write(text.data(), static_cast<std::streamsize>(text.size()));
    return *this;
}

RyMemStream& RyMemStream::writeStr(const char* text) {
    if (text != nullptr) write(text, static_cast<std::streamsize>(std::strlen(text)));
    return *this;
}

}  // namespace RynCommon
