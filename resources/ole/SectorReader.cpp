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

bool SectorReader::readChain(const SectorChain& chain, unsigned char* target) const {
    return std::all_of(chain.getRuns().begin(), chain.getRuns().end(),
                       [&](const SectorChain::Run& run) {
                           return readSectors(run.first, run.count, target + (run.start << shift_));
                       });
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

}  // namespace RynCommon::ole
