// Writes zip archives for the tests, right ones and every kind of odd one.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace RynCommon {

/// One member, with what its headers say where that shall differ from the truth.
struct ZipMember {
    std::string name;
    std::string data;
    /// 8 deflates the data; any other method stores it as it is.
    std::uint16_t method = 8;
    /// Puts sizes and CRC behind the data and zeros into the local header.
    bool descriptor = false;
    /// Sets the flag for UTF-8 names.
    bool utf8 = false;
    /// Writes sizes and offset as zip64 fields.
    bool zip64 = false;
    std::string localExtra = {};
    std::string directoryExtra = {};
    std::string comment = {};

    // Wrong fields, in the local header and in the directory.
    std::optional<std::uint32_t> crc = {};
    std::optional<std::uint32_t> compressedSize = {};
    std::optional<std::uint32_t> uncompressedSize = {};
    /// Counted from the archive's start; in the directory only.
    std::optional<std::uint64_t> offset = {};
    /// The bytes to write instead of the compressed data.
    std::optional<std::string> raw = {};
};

struct ZipShape {
    /// Stands in front of the archive; offsets do not count it.
    std::string prefix = {};
    std::string comment = {};
    /// Follows the comment without being part of it.
    std::string trailer = {};
    /// Writes zip64 end records.
    bool zip64 = false;
    /// Without a directory the archive ends behind its members.
    bool directory = true;
    /// Between directory and end record.
    std::string gap = {};

    // Wrong fields of the end record (of the zip64 one, when there is one).
    std::optional<std::uint64_t> count = {};
    std::optional<std::uint64_t> size = {};
    std::optional<std::uint64_t> offset = {};
};

std::string makeZip(const std::vector<ZipMember>& members, const ZipShape& shape = {});

}  // namespace RynCommon
