// The allocation tables of a compound file, and the chains of sectors that they hold.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "resources/ole/OleHeader.h"
#include "resources/ole/SectorChain.h"
#include "resources/ole/SectorReader.h"

namespace RynCommon::ole {

/// What follows each sector: the FAT, or the mini FAT for mini sectors.
using NextTable = std::vector<std::int32_t>;

/// A mark on each entry of a table, for walks that must not meet an entry twice. All marks are off
/// between walks.
class Marks {
public:
    void resize(std::size_t count) { bits_.assign((count + 63) / 64, 0); }
    /// Sets the marks from `first` up to `last`, or up to the first one that is set; answers that
    /// one, else `last + 1`.
    std::size_t setRange(std::size_t first, std::size_t last);
    /// Takes all marks off.
    void clear() { std::fill(bits_.begin(), bits_.end(), 0); }
    /// Takes off the marks on the sectors of a chain, and those that share a word with them.
    void clear(const SectorChain& chain);

private:
    std::vector<std::uint64_t> bits_;
};

class SectorTables {
public:
    /// @param mostSectors  of a chain, and of the FAT
    explicit SectorTables(std::size_t mostSectors = SIZE_MAX) : mostSectors_(mostSectors) {}

    /// The three steps of loading, in this order. Each checks its counts against the size of the
    /// file before it allocates, and is false when the file is too short or a chain is broken.
    bool loadDifat(const OleHeader& header, const SectorReader& reader);
    bool loadFat(const OleHeader& header, const SectorReader& reader);
    bool loadMiniFat(const OleHeader& header, const SectorReader& reader);

    /// What follows a sector; -1 outside of the table.
    std::int32_t getNext(std::int32_t sector, bool mini) const;
    std::size_t getSize(bool mini) const { return mini ? miniFat_.size() : fat_.size(); }
    /// How long a chain may be.
    std::size_t getLongest(bool mini) const { return std::min(getSize(mini), mostSectors_); }

    /// Collects the chain that begins at `start` until `most` sectors are found, or the chain ends,
    /// leaves the table or returns to one of its sectors. Answers the sector that would be next.
    std::int32_t collectChain(std::int32_t start, bool mini, std::size_t most,
                              SectorChain& chain) const;
    /// Whether the chain from `start` has `count` sectors, which are collected, and may have them.
    bool collectExactly(std::int32_t start, bool mini, std::size_t count, SectorChain& chain) const;

private:
    bool isInside(std::int32_t sector, bool mini) const {
        return sector >= 0 && static_cast<std::size_t>(sector) < getSize(mini);
    }

    std::size_t mostSectors_;
    SectorChain difat_;
    NextTable fat_;
    NextTable miniFat_;
    /// Of the FAT and the mini FAT. Scratch of collectChain().
    mutable Marks marks_[2];
};

}  // namespace RynCommon::ole
