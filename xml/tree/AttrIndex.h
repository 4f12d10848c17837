// Look-up in a large attribute map.
#pragma once

#include <RynCommon/RyElement.h>

#include <unordered_map>

#include "core/TextHash.h"

namespace RynCommon {

/// Attributes by the number of a name. Several attributes may share one; which of them comes first
/// is then left to a search.
class AttrTable {
public:
    struct Entry {
        RyAttr* attr = nullptr;  ///< null when there are or were several
        int count = 0;
    };

    void insert(std::uint64_t key, RyAttr* attr) {
        Entry& entry = entries_[key];
        entry.attr = entry.count++ == 0 ? attr : nullptr;
    }
    void erase(std::uint64_t key) {
        const auto at = entries_.find(key);
        if (at == entries_.end()) return;
        at->second.attr = nullptr;
        if (--at->second.count == 0) entries_.erase(at);
    }
    /// Lets `attr` stand for an attribute of the same key that leaves.
    void replace(std::uint64_t key, RyAttr* attr) {
        Entry& entry = entries_[key];
        if (entry.attr != nullptr) entry.attr = attr;
    }
    const Entry* find(std::uint64_t key) const {
        const auto at = entries_.find(key);
        return at != entries_.end() ? &at->second : nullptr;
    }
    void clear() { entries_.clear(); }

private:
    // Documents choose the names, so that the buckets depend on the process's seed.
    struct Hash {
        std::size_t operator()(std::uint64_t key) const {
            return detail::mixText(key ^ textHashSeed(), detail::TEXT_HASH_STEP);
        }
    };
    std::unordered_map<std::uint64_t, Entry, Hash> entries_;
};

/// The tables of a map, and the place last asked for by position.
class AttrIndex {
public:
    static std::uint64_t expandedKey(RyName uri, RyName local) {
        return std::uint64_t{static_cast<std::uint32_t>(RyNameEnum(uri))} << 32 |
               static_cast<std::uint32_t>(RyNameEnum(local));
    }
    static std::uint64_t nameKey(RyName name) {
        return static_cast<std::uint32_t>(RyNameEnum(name));
    }

    static std::uint64_t expandedKey(const RyAttr& attr) {
        return expandedKey(attr.getNamespaceUri(), attr.getLocalName());
    }

    /// When it throws, nothing has been entered.
    void insert(RyAttr& attr) {
        expanded.insert(expandedKey(attr), &attr);
        if (!hasNames) return;
        try {
            names.insert(nameKey(attr.getNodeName()), &attr);
        } catch (...) {
            dropNames();
        }
    }
    void erase(RyAttr& attr) {
        expanded.erase(expandedKey(attr));
        if (hasNames) names.erase(nameKey(attr.getNodeName()));
        cursor = nullptr;
    }
    void replace(RyAttr& attr, RyAttr& old) {
        if (expandedKey(attr) == expandedKey(old)) {
            expanded.replace(expandedKey(attr), &attr);
        } else {
            expanded.insert(expandedKey(attr), &attr);
            expanded.erase(expandedKey(old));
        }
        if (attr.getNodeName() != old.getNodeName())
            dropNames();
        else if (hasNames)
            names.replace(nameKey(attr.getNodeName()), &attr);
        cursor = nullptr;
    }
    void dropNames() {
        names.clear();
        hasNames = false;
    }

    AttrTable expanded;
    AttrTable names;  // made on first need, since it takes the qualified names
    bool hasNames = false;
    RyAttr* cursor = nullptr;
    int cursorPosition = 0;
};

}  // namespace RynCommon
