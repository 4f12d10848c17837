// Sectors of a compound file, read through an I/O object.
#include "resources/ole/SectorReader.h"

#include <algorithm>
#include <cstdio>
#include <limits>

#include "resources/ole/OleHeader.h"

namespace RynCommon::ole {

std::uint64_t SectorReader::getOffset(std::int32_t sector) const {
    return (static_cast<std::uint64_t>(sector) << shift_) + HEADER_SIZE;
}

std::size_t SectorReader::readAt(std::uint64_t offset, void* target, std::size_t count) const {
    if (io_ == nullptr || !io_->seek(static_cast<std::int64_t>(offset), SEEK_SET)) return 0;
    // A reader from outside that claims more than it was asked for is not believed.
    return std::min(io_->read(target, count), count);
}

bool SectorReader::readSectors(std::int32_t first, std::size_t count, void* target) const {
    const std::size_t size = count << shift_;
    return first >= 0 && readAt(getOffset(first), target, size) == size;
}

bool SectorReader::readList(const std::vector<std::int32_t>& sectors, unsigned char* target) const {
    std::size_t count = 0;
    for (std::size_t i = 0; i < sectors.size(); i += count) {
        count = countNeighbours(sectors, i, sectors.size() - i);
        if (!readSectors(sectors[i], count, target + (i << shift_))) return false;
    }
    return true;
}

/// An I/O object does not tell its size, but it can step back from its end. One that cannot do that
/// shows it by the byte that is the last one needed.
bool SectorReader::hasRoomFor(std::int64_t count) const {
    if (count <= 0) return true;
    if (io_ == nullptr || count > std::numeric_limits<std::int32_t>::max()) return false;
    const std::uint64_t needed = getOffset(static_cast<std::int32_t>(count));
    if (io_->seek(-static_cast<std::int64_t>(needed), SEEK_END)) return true;
    unsigned char last = 0;
    return readAt(needed - 1, &last, 1) == 1;
}

std::size_t countRun(const std::int32_t* first, const std::int32_t* last) {
    constexpr std::ptrdiff_t BLOCK = 32;
    const auto step = [](const std::int32_t* at) {
        return static_cast<std::uint32_t>(at[1]) - static_cast<std::uint32_t>(at[0]);
    };
    const std::int32_t* at = first;
    while (last - at > BLOCK) {
        std::uint32_t others = 0;
        for (std::ptrdiff_t i = 0; i < BLOCK; ++i) others |= step(at + i) ^ 1;
        if (others != 0) break;
        at += BLOCK;
    }
    while (last - at > 1 && step(at) == 1) ++at;
    return static_cast<std::size_t>(at - first) + 1;
}

std::size_t countNeighbours(const std::vector<std::int32_t>& sectors, std::size_t index,
                            std::size_t most) {
    const std::int32_t* const first = sectors.data() + index;
    return countRun(first, first + std::min(most, sectors.size() - index));
}

}  // namespace RynCommon::ole
