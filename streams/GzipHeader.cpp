// Member headers of gzip data (RFC 1952).
#include "streams/GzipHeader.h"

#include <algorithm>

namespace RynCommon::streams {

namespace {

constexpr unsigned METHOD_DEFLATED = 8;
constexpr unsigned FLAG_HEADER_CRC = 0x02;
constexpr unsigned FLAG_EXTRA = 0x04;
constexpr unsigned FLAG_NAME = 0x08;
constexpr unsigned FLAG_COMMENT = 0x10;
constexpr unsigned FLAGS_RESERVED = 0xE0;
/// Modification time, extra flags and operating system.
constexpr unsigned FIXED_REST = 6;

unsigned byteAt(const GzipHeader& header, std::size_t index) {
    return static_cast<unsigned char>(header.taken[index]);
}

/// The next byte; past the end a NUL, which ends texts and skips nothing.
unsigned nextByte(std::streambuf& source) {
    const int byte = source.sbumpc();
    return byte == std::streambuf::traits_type::eof() ? 0 : static_cast<unsigned>(byte);
}

void skip(std::streambuf& source, unsigned count) {
    while (count > 0 && source.sbumpc() != std::streambuf::traits_type::eof()) --count;
}

void skipText(std::streambuf& source) {
    while (nextByte(source) != 0) {
    }
}

void skipRest(std::streambuf& source, unsigned flags) {
    skip(source, FIXED_REST);
    if (flags & FLAG_EXTRA) {
        const unsigned low = nextByte(source);
        skip(source, low | nextByte(source) << 8);
    }
    if (flags & FLAG_NAME) skipText(source);
    if (flags & FLAG_COMMENT) skipText(source);
    if (flags & FLAG_HEADER_CRC) skip(source, 2);
}

/// Takes two more bytes; false at the end.
bool take(std::streambuf& source, GzipHeader& header) {
    const std::streamsize got = source.sgetn(header.taken + header.takenCount, 2);
    header.takenCount += static_cast<std::size_t>(std::max<std::streamsize>(got, 0));
    return got == 2;
}

bool takeStart(std::streambuf& source, GzipHeader& header) {
    if (!take(source, header)) return false;
    if (byteAt(header, 0) != GZIP_MAGIC[0] || byteAt(header, 1) != GZIP_MAGIC[1]) return false;
    if (!take(source, header)) return false;
    return byteAt(header, 2) == METHOD_DEFLATED && (byteAt(header, 3) & FLAGS_RESERVED) == 0;
}

}  // namespace

GzipHeader readGzipHeader(std::streambuf& source) {
    GzipHeader header;
    try {
        header.accepted = takeStart(source, header);
        if (header.accepted) skipRest(source, byteAt(header, 3));
    } catch (...) {
        // What was read so far stands.
    }
    return header;
}

}  // namespace RynCommon::streams
