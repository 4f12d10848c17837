// The directory of a compound file: its entries, and finding them by name.
//
// The children of a storage form a binary tree. Writers differ in how they order it and damaged
// files in everything, so a name is searched for in the whole tree, without trust in the order:
// the entry itself, then all of the left, then all of the right. The walk keeps its own stack and
// marks what it has met: a chain of any length costs no recursion, and a cycle ends.
//
// Done for every name, that is quadratic in files of many streams. So the first search of a larger
// directory builds an index: every entry learns the head of its tree (the child of some storage)
// and its turn in that tree's walk, and hangs in a hash table under its name. A lookup takes, of
// the entries of that name in that tree, the one with the earliest turn, which is the one that the
// walk finds. This needs every entry to be in one tree at most; where trees share entries, as in
// no sound file, there is no index, and every search walks.
#include "resources/ole/OleDirectory.h"

#include <algorithm>
#include <bit>

namespace RynCommon::ole {

namespace {

constexpr std::size_t ENTRY_SIZE = 128;
/// Directories below this size are walked each time.
constexpr std::size_t LEAST_INDEXED = 32;
/// How much of the directory is read at a time, at least one sector.
constexpr std::size_t READ_SIZE = 64 * 1024;
constexpr char16_t PRESENTATION[] = u"\u0002OlePres000";

}  // namespace

bool OleDirectory::load(const OleHeader& header, const SectorReader& reader,
                        const SectorTables& tables, std::size_t mostEntries) {
    SectorChain chain;
    const std::int32_t end =
        tables.collectChain(header.directoryStart, false, tables.getLongest(false), chain);
    const std::size_t count = (chain.size() << header.sectorShift) / ENTRY_SIZE;
    if (end != END_OF_CHAIN || count > mostEntries ||
        !reader.hasRoomFor(static_cast<std::int64_t>(chain.size()))) {
        return false;
    }
    entries_.reserve(count);
    const std::size_t most = std::max<std::size_t>(1, READ_SIZE >> header.sectorShift);
    std::vector<unsigned char> block(most << header.sectorShift);
    for (std::size_t i = 0; i < chain.size();) {
        const SectorChain::Run& run = *chain.find(i);
        const std::size_t sectors = std::min(most, run.start + run.count - i);
        if (!reader.readSectors(chain.at(i), sectors, block.data()) ||
            !parseEntries(block.data(), sectors << header.sectorShift, header.littleEndian)) {
            return false;
        }
        i += sectors;
    }
    return true;
}

bool OleDirectory::parseEntries(const unsigned char* bytes, std::size_t size, bool littleEndian) {
    for (std::size_t at = 0; at < size; at += ENTRY_SIZE) {
        OleDirInfo& entry = entries_.emplace_back();
        if (!entry.parse(bytes + at, littleEndian)) return false;
        entry.setDirID(static_cast<std::int32_t>(entries_.size() - 1));
        if (entry.isRoot() && root_ < 0) root_ = entry.getDirID();
    }
    return true;
}

const OleDirInfo* OleDirectory::get(std::int32_t id) const {
    return isEntry(id) ? &entries_[static_cast<std::size_t>(id)] : nullptr;
}

const OleDirInfo* OleDirectory::getRoot() const {
    return get(root_);
}

template <class Visit>
bool OleDirectory::walk(std::int32_t start, Visit visit) const {
    std::vector<std::int32_t> open(1, start);
    while (!open.empty()) {
        const OleDirInfo* const entry = get(open.back());
        open.pop_back();
        if (entry == nullptr) continue;
        const Step step = visit(*entry);
        if (step == Step::STOP) return false;
        if (step == Step::PASS) continue;
        open.push_back(entry->getRightSiblingID());
        open.push_back(entry->getLeftSiblingID());
    }
    return true;
}

std::int32_t OleDirectory::search(const OleDirInfo& start, const UnicodeString& name) const {
    std::vector<bool> visited(entries_.size());
    std::int32_t found = -1;
    const auto visit = [&](const OleDirInfo& entry) {
        const auto id = static_cast<std::size_t>(entry.getDirID());
        if (visited[id]) return Step::PASS;
        visited[id] = true;
        if (entry.getName() != name) return Step::ENTER;
        found = entry.getDirID();
        return Step::STOP;
    };
    if (start.getName() == name) return start.getDirID();
    if (walk(start.getLeftSiblingID(), visit)) walk(start.getRightSiblingID(), visit);
    return found;
}

std::size_t OleDirectory::getBucket(const UnicodeString& name) const {
    return static_cast<std::uint32_t>(name.hashCode()) & (buckets_.size() - 1);
}

/// False when the tree shares an entry with another one, or meets one twice.
bool OleDirectory::indexTree(std::int32_t head) {
    std::int32_t order = 0;
    return walk(head, [&](const OleDirInfo& entry) {
        Place& place = places_[static_cast<std::size_t>(entry.getDirID())];
        if (place.head >= 0) return Step::STOP;
        std::int32_t& bucket = buckets_[getBucket(entry.getName())];
        place = {head, order++, bucket};
        bucket = entry.getDirID();
        return Step::ENTER;
    });
}

void OleDirectory::buildIndex() {
    places_.assign(entries_.size(), Place());
    buckets_.assign(std::bit_ceil(entries_.size()), -1);
    const bool usable =
        std::all_of(entries_.begin(), entries_.end(), [this](const OleDirInfo& entry) {
            return (!entry.isStorage() && !entry.isRoot()) || indexTree(entry.getChildID());
        });
    indexState_ = usable ? IndexState::USABLE : IndexState::REFUSED;
}

std::int32_t OleDirectory::findInIndex(std::int32_t head, const UnicodeString& name) const {
    std::int32_t found = -1;
    std::int32_t earliest = 0;
    std::int32_t id = buckets_[getBucket(name)];
    while (id >= 0) {
        const Place& place = places_[static_cast<std::size_t>(id)];
        if (place.head == head && (found < 0 || place.order < earliest) &&
            entries_[static_cast<std::size_t>(id)].getName() == name) {
            found = id;
            earliest = place.order;
        }
        id = place.next;
    }
    return found;
}

std::int32_t OleDirectory::find(const OleDirInfo& start, const UnicodeString& name) {
    const std::int32_t head = start.getDirID();
    // An entry from elsewhere is searched by what it says of itself.
    if (entries_.size() < LEAST_INDEXED || get(head) != &start) return search(start, name);
    if (indexState_ == IndexState::NONE) buildIndex();
    const bool isHead =
        indexState_ == IndexState::USABLE && places_[static_cast<std::size_t>(head)].head == head;
    return isHead ? findInIndex(head, name) : search(start, name);
}

std::int32_t OleDirectory::findObject(const OleDirInfo& storage) const {
    const OleDirInfo* previous = nullptr;
    const OleDirInfo* entry = get(storage.getChildID());
    for (std::size_t steps = 0; entry != nullptr && steps < entries_.size(); ++steps) {
        const bool isLast = entry->getRightSiblingID() < 0;
        if (isLast) return previous == nullptr ? -1 : previous->getDirID();
        if (entry->getName() == PRESENTATION) return entry->getDirID();
        previous = entry;
        entry = get(entry->getRightSiblingID());
    }
    return -1;
}

}  // namespace RynCommon::ole
