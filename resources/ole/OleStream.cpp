// Streams inside of a compound file.
//
// A position in a stream lies in a sector of its chain; the sectors of a chain lie anywhere in the
// file. Small streams have chains of mini sectors, which lie in the mini stream, whose own sectors
// lie anywhere again. Writers mostly place what belongs together side by side, so reading maps a
// position to the longest extent of the file that continues the stream, across as many sectors as
// are neighbours on both levels, and takes it with one call.
#include <RynCommon/OleCompFile.h>

#include <algorithm>
#include <new>

#include "resources/ole/CompFileState.h"

namespace RynCommon {

namespace {

/// Bytes that CopyToFile() moves at a time.
constexpr std::uint32_t COPY_SIZE = 10240;

/// Neighbouring bytes of the file.
struct Extent {
    std::uint64_t offset = 0;
    std::uint64_t size = 0;
};

std::size_t countUnits(std::uint64_t size, unsigned shift) {
    return (size + (std::uint64_t{1} << shift) - 1) >> shift;
}

/// At most `most` bytes from `position` on of what a chain of units of 1 << `shift` bytes holds, as
/// far as the units are neighbours: an extent of what the units are numbered in. Empty when there
/// is no unit.
Extent mapToUnits(const ole::SectorChain& chain, unsigned shift, std::uint64_t position,
                  std::uint64_t most) {
    const ole::SectorChain::Run* const run = chain.find(position >> shift);
    if (run == nullptr) return {};
    const std::uint64_t inside = position - (static_cast<std::uint64_t>(run->start) << shift);
    const std::uint64_t size = (static_cast<std::uint64_t>(run->count) << shift) - inside;
    return {(static_cast<std::uint64_t>(run->first) << shift) + inside, std::min(size, most)};
}

}  // namespace

struct OleStream::Impl {
    void clear() {
        chain.clear();
        size = 0;
        position = 0;
        mini = false;
    }

    OleCompFile* file = nullptr;
    ole::SectorChain chain;
    std::uint32_t size = 0;
    std::uint32_t position = 0;
    bool mini = false;
};

OleStream::OleStream(OleCompFile* file) : impl_(std::make_unique<Impl>()) {
    impl_->file = file;
}

OleStream::~OleStream() = default;

std::uint32_t OleStream::GetStreamSize() const {
    return impl_->size;
}

std::uint32_t OleStream::OLEtell() const {
    return impl_->position;
}

std::int32_t OleStream::GetStreamChainIndex(std::uint32_t index) const {
    return impl_->chain.at(index);
}

bool OleStream::GetStreamChain(std::int32_t id) {
    impl_->clear();
    OleCompFile* const file = impl_->file;
    const OleDirInfo* const entry = file == nullptr ? nullptr : file->getDirInfo(id);
    if (entry == nullptr || !entry->isStream()) return false;
    const std::uint32_t size = entry->getStreamSize();
    const bool mini = std::int64_t{size} < file->getMiniFatCutoff();
    const std::size_t count = countUnits(size, file->getBlockShift(mini));
    try {
        // A stream without bytes needs no sector, whatever its entry says of one.
        if (count > 0 && mini && file->impl_->getMiniStream().empty()) return false;
        const ole::SectorTables& tables = file->impl_->tables;
        if (!tables.collectExactly(entry->getStartSect(), mini, count, impl_->chain)) {
            impl_->clear();
            return false;
        }
    } catch (const std::bad_alloc&) {
        impl_->clear();
        return false;
    }
    impl_->size = size;
    impl_->mini = mini;
    return true;
}

bool OleStream::map(std::uint32_t most, std::uint64_t& offset, std::uint64_t& size) const {
    if (impl_->file == nullptr) return false;
    const OleCompFile::Impl& state = *impl_->file->impl_;
    const unsigned shift = state.header.sectorShift;
    Extent extent{impl_->position, most};
    if (impl_->mini) {
        extent = mapToUnits(impl_->chain, state.header.miniShift, extent.offset, extent.size);
        extent = mapToUnits(state.miniStream, shift, extent.offset, extent.size);
    } else {
        extent = mapToUnits(impl_->chain, shift, extent.offset, extent.size);
    }
    offset = extent.offset + state.reader.getOffset(0);
    size = extent.size;
    return size > 0;
}

std::int64_t OleStream::OLEseek(std::int32_t offset, int whence) {
    const std::int64_t size = impl_->size;
    std::int64_t target = offset;
    if (whence == 1) {
        target += impl_->position;
    } else if (whence == 2) {
        // Backwards from the end; kept so.
        target = size - offset;
    } else if (whence != 0) {
        return -1;
    }
    impl_->position = static_cast<std::uint32_t>(std::clamp<std::int64_t>(target, 0, size));
    // There is no sector at the end, and none is needed.
    if (impl_->position == size) return size;
    const unsigned shift = impl_->file == nullptr ? 0 : impl_->file->getBlockShift(impl_->mini);
    std::uint64_t start = 0;
    std::uint64_t extent = 0;
    const bool placed = GetStreamChainIndex(impl_->position >> shift) >= 0 &&
                        map(1, start, extent) &&
                        impl_->file->SeekIO(static_cast<std::int64_t>(start), 0);
    return placed ? std::int64_t{impl_->position} : -1;
}

std::uint32_t OleStream::OLEread(unsigned char* buffer, std::uint32_t count) {
    if (buffer == nullptr) return 0;
    const std::uint32_t wanted = std::min(count, impl_->size - impl_->position);
    std::uint32_t done = 0;
    std::uint64_t offset = 0;
    std::uint64_t size = 0;
    while (done < wanted && map(wanted - done, offset, size)) {
        const std::size_t got = impl_->file->impl_->reader.readAt(offset, buffer + done, size);
        done += static_cast<std::uint32_t>(got);
        impl_->position += static_cast<std::uint32_t>(got);
        if (got < size) break;
    }
    return done;
}

bool OleStream::CopyToFile(const char* path) {
    JZFileIOobj target(path, "wb");
    if (!target.isOpen()) return false;
    const std::uint32_t position = impl_->position;
    const auto buffer = std::make_unique_for_overwrite<unsigned char[]>(COPY_SIZE);
    impl_->position = 0;
    std::uint32_t got = 0;
    bool written = true;
    while (written && (got = OLEread(buffer.get(), COPY_SIZE)) > 0) {
        written = target.write(buffer.get(), got) == got;
    }
    const bool complete = impl_->position == impl_->size;
    impl_->position = position;
    return target.close() && written && complete;
}

}  // namespace RynCommon
