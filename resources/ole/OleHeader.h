// The header of a compound file.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

namespace RynCommon::ole {

constexpr std::size_t HEADER_SIZE = 512;
/// Entries of the list of FAT sectors that stand in the header itself.
constexpr std::size_t HEADER_DIFAT_ENTRIES = 109;
/// The number that ends a chain of sectors.
constexpr std::int32_t END_OF_CHAIN = -2;

/// Whether the bytes (at least eight) begin with the signature of a compound file.
bool isSignature(const unsigned char* bytes);

/// The header's fields. Counts and sector numbers are signed, as the chains need them: what has its
/// highest bit set is no sector.
struct OleHeader {
    /// Reads the 512 bytes; false when they are no header that can be worked with. The counts are
    /// not negative then; whether the file is large enough for them is not known here.
    bool parse(const unsigned char* bytes);

    std::uint32_t bytesPerSector() const { return 1U << sectorShift; }
    std::uint32_t bytesPerMini() const { return 1U << miniShift; }
    std::uint32_t minisPerSector() const { return 1U << (sectorShift - miniShift); }
    std::uint32_t longsPerSector() const { return bytesPerSector() / 4; }

    std::string version;
    bool littleEndian = true;
    std::uint16_t sectorShift = 0;
    std::uint16_t miniShift = 0;
    std::int32_t fatSectors = 0;
    std::int32_t directoryStart = -1;
    std::int32_t miniCutoff = 0;
    std::int32_t miniFatStart = END_OF_CHAIN;
    std::int32_t miniFatSectors = 0;
    std::int32_t difatStart = END_OF_CHAIN;
    std::int32_t difatSectors = 0;  ///< as told; nothing relies on it
    std::array<std::int32_t, HEADER_DIFAT_ENTRIES> difat{};
};

}  // namespace RynCommon::ole
