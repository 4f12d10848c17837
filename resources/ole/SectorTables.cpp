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

#include "resources/ole/ByteOrder.h"

namespace RynCommon::ole {

namespace {

/// Whether a sector stands in the list twice.
bool hasDuplicates(const SectorChain& list) {
    std::vector<SectorChain::Run> runs = list.getRuns();
    std::sort(runs.begin(), runs.end(),
              [](const auto& a, const auto& b) { return a.first < b.first; });
    return std::adjacent_find(runs.begin(), runs.end(), [](const auto& a, const auto& b) {
               return static_cast<std::int64_t>(a.count) + a.first > b.first;
           }) != runs.end();
}

void toNativeOrder(NextTable& table, bool littleEndian) {
    if (littleEndian == (std::endian::native == std::endian::little)) return;
    for (std::int32_t& number : table) {
        number = static_cast<std::int32_t>(swapBytes(static_cast<std::uint32_t>(number)));
    }
}

/// How many sectors from `first` on, at most `most`, are followed by their neighbour each, the last
/// one counted that is not. Runs are long, so blocks are looked at as a whole first.
std::size_t countRun(const NextTable& table, std::size_t first, std::size_t most) {
    constexpr std::size_t BLOCK = 32;
    const std::size_t limit = std::min(table.size(), first + std::min(most, table.size())) - 1;
    const std::int32_t* const entries = table.data();
    std::size_t at = first;
    while (limit - at >= BLOCK) {
        std::int32_t others = 0;
        for (std::size_t i = 0; i < BLOCK; ++i) {
            others |= entries[at + i] ^ static_cast<std::int32_t>(at + i + 1);
        }
        if (others != 0) break;
        at += BLOCK;
    }
    while (at < limit && entries[at] == static_cast<std::int32_t>(at) + 1) ++at;
    return at - first + 1;
}

/// Reads a table from its sectors. `sectors` is no longer than the file.
bool loadTable(const SectorChain& sectors, const OleHeader& header, const SectorReader& reader,
               NextTable& table) {
    table.assign(sectors.size() * header.longsPerSector(), -1);
    if (!reader.readChain(sectors, reinterpret_cast<unsigned char*>(table.data()))) return false;
    toNativeOrder(table, header.littleEndian);
    return true;
}

}  // namespace

void Marks::clear(const SectorChain& chain) {
    for (const SectorChain::Run& run : chain.getRuns()) {
        const std::size_t first = static_cast<std::size_t>(run.first) / 64;
        const std::size_t last = (static_cast<std::size_t>(run.first) + run.count - 1) / 64;
        std::fill(bits_.begin() + static_cast<std::ptrdiff_t>(first),
                  bits_.begin() + static_cast<std::ptrdiff_t>(last + 1), 0);
    }
}

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
    if (wanted > mostSectors_) return false;
    for (std::size_t i = 0; i < std::min(wanted, header.difat.size()); ++i) {
        difat_.append(header.difat[i], 1);
    }

    std::vector<unsigned char> block(header.bytesPerSector());
    const std::size_t linkAt = block.size() - 4;
    std::int32_t sector = header.difatStart;
    std::int32_t passed = -1;
    for (std::size_t steps = 1; difat_.size() < wanted; ++steps) {
        if (sector == passed || !reader.readSectors(sector, 1, block.data())) return false;
        if (std::has_single_bit(steps)) passed = sector;
        for (std::size_t at = 0; at < linkAt && difat_.size() < wanted; at += 4) {
            difat_.append(loadSigned32(block.data() + at, header.littleEndian), 1);
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
    SectorChain sectors;
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
                                        SectorChain& chain) const {
    const NextTable& table = mini ? miniFat_ : fat_;
    Marks& marks = marks_[mini ? 1 : 0];
    chain.clear();
    std::int32_t next = start;
    try {
        while (chain.size() < most && isInside(next, mini)) {
            const auto first = static_cast<std::size_t>(next);
            const std::size_t last = first + countRun(table, first, most - chain.size()) - 1;
            const std::size_t end = marks.setRange(first, last);
            chain.append(next, end - first);
            next = end <= last ? static_cast<std::int32_t>(end) : table[last];
            if (end <= last) break;
        }
    } catch (...) {
        marks.clear();
        throw;
    }
    marks.clear(chain);
    return next;
}

bool SectorTables::collectExactly(std::int32_t start, bool mini, std::size_t count,
                                  SectorChain& chain) const {
    if (count > getLongest(mini)) return false;
    collectChain(start, mini, count, chain);
    return chain.size() == count;
}

}  // namespace RynCommon::ole
