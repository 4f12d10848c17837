// The records of a zip archive as bytes and as numbers.
#include "resources/zip/ZipRecords.h"

namespace RynCommon::zip {

namespace {

template <class Number>
Number getNumber(std::string_view bytes, std::size_t offset) {
    if (offset > bytes.size() || bytes.size() - offset < sizeof(Number)) return 0;
    Number number = 0;
    for (std::size_t i = sizeof(Number); i-- > 0;) {
        number = static_cast<Number>(number << 8 | static_cast<unsigned char>(bytes[offset + i]));
    }
    return number;
}

/// The fields from "version needed" to "extra field length", which both headers have in a row.
MemberHeader parseCommonFields(std::string_view bytes, std::size_t offset) {
    MemberHeader header;
    header.versionNeeded = get16(bytes, offset);
    header.flags = get16(bytes, offset + 2);
    header.method = get16(bytes, offset + 4);
    header.time = get16(bytes, offset + 6);
    header.date = get16(bytes, offset + 8);
    header.crc = get32(bytes, offset + 10);
    header.compressedSize = get32(bytes, offset + 14);
    header.uncompressedSize = get32(bytes, offset + 18);
    header.nameLength = get16(bytes, offset + 22);
    header.extraLength = get16(bytes, offset + 24);
    return header;
}

}  // namespace

std::uint16_t get16(std::string_view bytes, std::size_t offset) {
    return getNumber<std::uint16_t>(bytes, offset);
}

std::uint32_t get32(std::string_view bytes, std::size_t offset) {
    return getNumber<std::uint32_t>(bytes, offset);
}

std::uint64_t get64(std::string_view bytes, std::size_t offset) {
    return getNumber<std::uint64_t>(bytes, offset);
}

MemberHeader parseLocalHeader(std::string_view bytes) {
    return parseCommonFields(bytes, 4);
}

MemberHeader parseDirectoryHeader(std::string_view bytes) {
    return parseCommonFields(bytes, 6);
}

}  // namespace RynCommon::zip
