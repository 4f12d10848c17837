// The directory of a compound file: its entries, and finding them by name.
#pragma once

#include <RynCommon/OleCompFile.h>

#include <cstddef>
#include <cstdint>
#include <vector>

#include "resources/ole/OleHeader.h"
#include "resources/ole/SectorReader.h"
#include "resources/ole/SectorTables.h"

namespace RynCommon::ole {

class OleDirectory {
public:
    /// Reads the directory's sectors; false when their chain is broken, an entry is malformed or
    /// there are more than `mostEntries`.
    bool load(const OleHeader& header, const SectorReader& reader, const SectorTables& tables,
              std::size_t mostEntries);

    const std::vector<OleDirInfo>& getEntries() const { return entries_; }
    /// Null when `id` is out of range.
    const OleDirInfo* get(std::int32_t id) const;
    /// The first root entry; null when there is none.
    const OleDirInfo* getRoot() const;
    /// The id of the first entry of that name in the tree of siblings below `start`: the start
    /// itself, then its left sibling's tree, then its right sibling's; -1 when there is none.
    std::int32_t find(const OleDirInfo& start, const UnicodeString& name);
    /// The entry where a walk along right siblings ends, for OleCompFile::OLEopenObject(); -1 when
    /// there is none.
    std::int32_t findObject(const OleDirInfo& storage) const;

private:
    /// What to do after an entry: go on below it, go on elsewhere, or end the walk.
    enum class Step : unsigned char { ENTER, PASS, STOP };

    /// Walks a tree of siblings in the order of find() as `visit(entry)` tells; false when it
    /// stopped.
    template <class Visit>
    bool walk(std::int32_t start, Visit visit) const;
    bool parseEntries(const unsigned char* bytes, std::size_t size, bool littleEndian);
    std::int32_t search(const OleDirInfo& start, const UnicodeString& name) const;
    void buildIndex();
    bool indexTree(std::int32_t head);
    std::int32_t findInIndex(std::int32_t head, const UnicodeString& name) const;
    std::size_t getBucket(const UnicodeString& name) const;
    bool isEntry(std::int32_t id) const {
        return id >= 0 && static_cast<std::size_t>(id) < entries_.size();
    }

    /// Where an entry stands among all entries, in the order of the trees' walks.
    struct Place {
        std::int32_t head = -1;  ///< the entry at which its tree begins; -1: not in a tree
        std::int32_t order = 0;  ///< its turn in the walk
        std::int32_t next = -1;  ///< another entry of its bucket
    };
    enum class IndexState : unsigned char { NONE, USABLE, REFUSED };

    std::vector<OleDirInfo> entries_;
    std::int32_t root_ = -1;
    IndexState indexState_ = IndexState::NONE;
    std::vector<Place> places_;
    std::vector<std::int32_t> buckets_;  ///< heads of the lists of entries, by hash of the name
};

}  // namespace RynCommon::ole
