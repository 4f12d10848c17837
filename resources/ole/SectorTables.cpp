// The allocation tables of a compound file, and the chains of sectors that they hold.
//
// A compound file names its FAT sectors in a list (the DIFAT): 109 in the header, more in a chain
// of sectors of their own. The FAT says of every sector which one follows it; the mini FAT, stored
// in a chain of the FAT, does so for the small sectors inside of the mini stream.
//
// Nothing of this is trusted. Counts are compared with the size of the file first: a FAT of n
// sectors needs a file with n sectors, so the tables never take more memory than the file has
// bytes. A chain may hold each sector once; marks on the table's entries find the second visit at
// the place where it happens, and are taken off along the chain, so that many short chains cost no
// more than their lengths. The list of FAT sectors grows by at least 31 entries per sector of its
// chain, so its walk ends by itself; a chain of it that bites its tail is refused afterwards.
#include "resources/ole/SectorTables.h"

#include <algorithm>
#include <bit>
#include <numeric>

#include "resources/ole/ByteOrder.h"

namespace RynCommon::ole {

namespace {

bool hasDuplicates(std::vector<std::int32_t> numbers) {
    std::sort(numbers.begin(), numbers.end());
    return std::adjacent_find(numbers.begin(), numbers.end()) != numbers.end();
}

void toNativeOrder(NextTable& table, bool littleEndian) {
    if (littleEndian == (std::endian::native == std::endian::little)) return;
    for (std::int32_t& number : table) {
        number = static_cast<std::int32_t>(swapBytes(static_cast<std::uint32_t>(number)));
    }
}

/// The last of at most `most` sectors from `first` on that each are followed by their neighbour.
std::size_t findRunEnd(const NextTable& table, std::size_t first, std::size_t most) {
    if (table[first] != static_cast<std::int32_t>(first) + 1) return first;
    // The entries of such a run are a run themselves.
    const std::int32_t* const start = table.data() + first;
    const std::size_t limit = std::min(most, table.size() - first);
    return first + std::min(countRun(start, start + limit), limit - 1);
}

/// Reads a table from its sectors. `sectors` is no longer than the file.
bool loadTable(const std::vector<std::int32_t>& sectors, const OleHeader& header,
               const SectorReader& reader, NextTable& table) {
    table.assign(sectors.size() * header.longsPerSector(), -1);
    if (!reader.readList(sectors, reinterpret_cast<unsigned char*>(table.data()))) return false;
    toNativeOrder(table, header.littleEndian);
    return true;
}

}  // namespace

std::size_t Marks::setRange(std::size_t first, std::size_t last) {
    constexpr std::uint64_t ALL = ~std::uint64_t{0};
    std::size_t start = first;
    while (start <= last) {
        const std::size_t index = start / 64;
        const std::size_t end = std::min(last, index * 64 + 63);
        std::uint64_t& word = bits_[index];
        const std::uint64_t wanted = ALL << start % 64 & ALL >> (63 - end % 64);
        if (const std::uint64_t met = word & wanted) {
            word |= wanted & ((met & -met) - 1);
            return index * 64 + static_cast<std::size_t>(std::countr_zero(met));
        }
        word |= wanted;
        start = end + 1;
    }
    return start;
}

bool SectorTables::loadDifat(const OleHeader& header, const SectorReader& reader) {
    if (!reader.hasRoomFor(header.fatSectors)) return false;
    const auto wanted = static_cast<std::size_t>(header.fatSectors);
    const std::size_t own = std::min(wanted, header.difat.size());
    difat_.assign(header.difat.begin(), header.difat.begin() + static_cast<std::ptrdiff_t>(own));

    std::vector<unsigned char> block(header.bytesPerSector());
    const std::size_t linkAt = block.size() - 4;
    std::int32_t sector = header.difatStart;
    std::int32_t passed = -1;
    for (std::size_t steps = 1; difat_.size() < wanted; ++steps) {
        if (sector == passed || !reader.readSectors(sector, 1, block.data())) return false;
        if (std::has_single_bit(steps)) passed = sector;
        for (std::size_t at = 0; at < linkAt && difat_.size() < wanted; at += 4) {
            difat_.push_back(loadSigned32(block.data() + at, header.littleEndian));
        }
        sector = loadSigned32(block.data() + linkAt, header.littleEndian);
    }
    return !hasDuplicates(difat_);
}

bool SectorTables::loadFat(const OleHeader& header, const SectorReader& reader) {
    if (!loadTable(difat_, header, reader, fat_)) return false;
    marks_[0].resize(fat_.size());
    return true;
}

bool SectorTables::loadMiniFat(const OleHeader& header, const SectorReader& reader) {
    const auto count = static_cast<std::size_t>(header.miniFatSectors);
    std::vector<std::int32_t> sectors;
    if (!reader.hasRoomFor(header.miniFatSectors) ||
        !collectExactly(header.miniFatStart, false, count, sectors) ||
        !loadTable(sectors, header, reader, miniFat_)) {
        return false;
    }
    marks_[1].resize(miniFat_.size());
    return true;
}

std::int32_t SectorTables::getNext(std::int32_t sector, bool mini) const {
    if (!isInside(sector, mini)) return -1;
    return (mini ? miniFat_ : fat_)[static_cast<std::size_t>(sector)];
}

std::int32_t SectorTables::collectChain(std::int32_t start, bool mini, std::size_t most,
                                        std::vector<std::int32_t>& chain) const {
    const NextTable& table = mini ? miniFat_ : fat_;
    Marks& marks = marks_[mini ? 1 : 0];
    chain.clear();
    std::int32_t next = start;
    while (chain.size() < most && isInside(next, mini)) {
        // Neighbours are taken as a run, since most chains are made of few.
        const auto first = static_cast<std::size_t>(next);
        const std::size_t last = findRunEnd(table, first, most - chain.size());
        const std::size_t end = marks.setRange(first, last);
        const std::size_t count = chain.size();
        chain.resize(count + (end - first));
        std::iota(chain.begin() + static_cast<std::ptrdiff_t>(count), chain.end(), next);
        next = end <= last ? static_cast<std::int32_t>(end) : table[last];
        if (end <= last) break;
    }
    marks.clear(chain);
    return next;
}

bool SectorTables::collectExactly(std::int32_t start, bool mini, std::size_t count,
                                  std::vector<std::int32_t>& chain) const {
    if (count > getSize(mini)) return false;
    chain.reserve(count);
    collectChain(start, mini, count, chain);
    return chain.size() == count;
}

}  // namespace RynCommon::ole
