// Byte-order marks and the forms of "<"; see the header.
#include "xml/input/EncodingSniffer.h"

namespace RynCommon {

namespace {

constexpr SniffedEncoding unmarked(EncodingKind kind) {
    return {kind, false, false};
}
constexpr SniffedEncoding marked(EncodingKind kind) {
    return {kind, true, false};
}
constexpr SniffedEncoding BROKEN{ENCODING_UNKNOWN, false, true};

bool startsWith(ByteInput& bytes, std::size_t at, std::uint8_t byte) {
    return bytes.need(at + 1) && bytes.begin()[at] == byte;
}

/// 00: UTF-32BE or UTF-16BE.
SniffedEncoding sniffZero(ByteInput& bytes) {
    if (!bytes.need(2)) return {};
    if (bytes.begin()[1] != 0) return unmarked(ENCODING_UTF16BE);
    if (!bytes.need(4)) return {};
    if (bytes.begin()[2] != 0xFE || bytes.begin()[3] != 0xFF) return unmarked(ENCODING_UTF32BE);
    bytes.consume(4);
    return marked(ENCODING_UTF32BE);
}

/// 3C: a "<" in one byte or in little-endian order.
SniffedEncoding sniffLessThan(ByteInput& bytes, EncodingKind given) {
    if (given != ENCODING_UNKNOWN && given != ENCODING_UTF16 && given != ENCODING_UTF32) return {};
    if (!bytes.need(2)) return {};
    if (bytes.begin()[1] != 0) return unmarked(ENCODING_UTF8);
    if (!bytes.need(3)) return {};
    if (bytes.begin()[2] != 0) return unmarked(ENCODING_UTF16LE);
    if (!bytes.need(4)) return {};
    return unmarked(bytes.begin()[3] != 0 ? ENCODING_UTF16LE : ENCODING_UTF32LE);
}

/// FF: UTF-32LE when the mark is followed by two zero bytes, else UTF-16LE.
SniffedEncoding sniffLittleEndianMark(ByteInput& bytes) {
    if (!startsWith(bytes, 1, 0xFE)) return BROKEN;
    if (startsWith(bytes, 2, 0) && startsWith(bytes, 3, 0)) {
        bytes.consume(4);
        return marked(ENCODING_UTF32LE);
    }
    bytes.consume(2);
    return marked(ENCODING_UTF16LE);
}

SniffedEncoding sniffBigEndianMark(ByteInput& bytes) {
    if (!startsWith(bytes, 1, 0xFF)) return BROKEN;
    bytes.consume(2);
    return marked(ENCODING_UTF16BE);
}

SniffedEncoding sniffUtf8Mark(ByteInput& bytes) {
    if (!startsWith(bytes, 1, 0xBB) || !startsWith(bytes, 2, 0xBF)) return BROKEN;
    bytes.consume(3);
    return marked(ENCODING_UTF8);
}

}  // namespace

const char16_t* SniffedEncoding::name() const {
    switch (kind) {
        case ENCODING_UTF8:
            return u"UTF-8";
        case ENCODING_UTF16LE:
            return fromMark ? u"UTF-16" : u"UTF-16LE";
        case ENCODING_UTF16BE:
            return fromMark ? u"UTF-16" : u"UTF-16BE";
        case ENCODING_UTF32LE:
            return fromMark ? u"UTF-32" : u"UTF-32LE";
        case ENCODING_UTF32BE:
            return fromMark ? u"UTF-32" : u"UTF-32BE";
        default:
            return u"";
    }
}

SniffedEncoding sniffEncoding(ByteInput& bytes, EncodingKind given) {
    if (!bytes.need(1)) return {};
    switch (*bytes.begin()) {
        case 0x00:
            return sniffZero(bytes);
        case 0x3C:
            return sniffLessThan(bytes, given);
        case 0xEF:
            return sniffUtf8Mark(bytes);
        case 0xFE:
            return sniffBigEndianMark(bytes);
        case 0xFF:
            return sniffLittleEndianMark(bytes);
        default:
            return {};
    }
}

}  // namespace RynCommon
