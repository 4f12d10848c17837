// The records of a zip archive (APPNOTE 6.3) as bytes and as numbers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace RynCommon::zip {

constexpr std::uint32_t LOCAL_HEADER = 0x04034B50;
constexpr std::uint32_t DATA_DESCRIPTOR = 0x08074B50;
constexpr std::uint32_t DIRECTORY_HEADER = 0x02014B50;
constexpr std::uint32_t DIRECTORY_END = 0x06054B50;
constexpr std::uint32_t DIRECTORY_END_64 = 0x06064B50;
constexpr std::uint32_t DIRECTORY_END_64_LOCATOR = 0x07064B50;

/// Sizes of the records without what varies in length.
constexpr std::size_t LOCAL_HEADER_SIZE = 30;
constexpr std::size_t DATA_DESCRIPTOR_SIZE = 16;
constexpr std::size_t DIRECTORY_HEADER_SIZE = 46;
constexpr std::size_t DIRECTORY_END_SIZE = 22;
constexpr std::size_t DIRECTORY_END_64_SIZE = 56;
constexpr std::size_t DIRECTORY_END_64_LOCATOR_SIZE = 20;

/// In a 32-bit or 16-bit field: the number stands in the zip64 extra field.
constexpr std::uint32_t IN_ZIP64_32 = 0xFFFFFFFF;
constexpr std::uint16_t IN_ZIP64_16 = 0xFFFF;
constexpr std::uint16_t ZIP64_EXTRA_ID = 0x0001;

/// Bit 11 of the general purpose flags: name and comment are UTF-8.
constexpr std::uint16_t UTF8_FLAG = 0x0800;

/// What a local header or a directory header tells of its member.
struct MemberHeader {
    std::uint16_t versionNeeded = 0;
    std::uint16_t flags = 0;
    std::uint16_t method = 0;
    /// In DOS format.
    std::uint16_t time = 0;
    std::uint16_t date = 0;
    std::uint32_t crc = 0;
    std::uint64_t compressedSize = 0;
    std::uint64_t uncompressedSize = 0;
    std::uint16_t nameLength = 0;
    std::uint16_t extraLength = 0;
    /// Where the data begins in the stream; -1 until the member's local header is read, for members
    /// from the central directory.
    std::int64_t dataStart = -1;
    /// Where the local header begins in the stream; -1 when it cannot be there.
    std::int64_t localStart = -1;
};

/// The little-endian number at `offset`; 0 when the bytes do not hold it whole.
std::uint16_t get16(std::string_view bytes, std::size_t offset);
std::uint32_t get32(std::string_view bytes, std::size_t offset);
std::uint64_t get64(std::string_view bytes, std::size_t offset);

/// Reads the fixed part of a local header, which may be cut short. Positions are left at -1.
MemberHeader parseLocalHeader(std::string_view bytes);
/// Reads the fixed part of a directory header, which must be whole; numbers that stand in the zip64
/// extra field are taken over as they are.
MemberHeader parseDirectoryHeader(std::string_view bytes);

}  // namespace RynCommon::zip
