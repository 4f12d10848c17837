// Sectors of a compound file, read through an I/O object.
#pragma once

#include <RynCommon/JZIOobj.h>

#include <cstddef>
#include <cstdint>

#include "resources/ole/SectorChain.h"

namespace RynCommon::ole {

/// Reads sectors by number. The I/O object is not owned. Sector n begins 512 bytes behind n times
/// the size of a sector: the header counts as 512 bytes, whatever the size.
class SectorReader {
public:
    SectorReader() = default;
    SectorReader(JZIOobj* io, unsigned shift) : io_(io), shift_(shift) {}

    std::uint64_t getOffset(std::int32_t sector) const;
    /// Reads at most `count` bytes at an offset of the file; returns how many came.
    std::size_t readAt(std::uint64_t offset, void* target, std::size_t count) const;
    /// Reads whole sectors that follow one another in the file, with one call; false unless all of
    /// them came.
    bool readSectors(std::int32_t first, std::size_t count, void* target) const;
    /// Reads all sectors of a chain; false unless all of them came.
    bool readChain(const SectorChain& chain, unsigned char* target) const;
    /// Whether the file is large enough for `count` sectors.
    bool hasRoomFor(std::int64_t count) const;

private:
    JZIOobj* io_ = nullptr;
    unsigned shift_ = 0;
};

}  // namespace RynCommon::ole
