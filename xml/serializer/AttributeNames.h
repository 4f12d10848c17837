// The names of one start tag's attributes, to find one that comes twice.
#pragma once

#include <algorithm>
#include <cstdint>
#include <unordered_set>
#include <vector>

#include <RynCommon/RyName.h>

namespace RynCommon {

/// A set of names that costs next to nothing while it is small and stays fast when it is not.
class AttributeNames {
public:
    void clear() {
        few_.clear();
        if (!many_.empty()) many_.clear();
    }

    bool contains(RyName ns, RyName localName) const {
        const std::uint64_t key = keyOf(ns, localName);
        return std::find(few_.begin(), few_.end(), key) != few_.end() || many_.contains(key);
    }

    void insert(RyName ns, RyName localName) {
        const std::uint64_t key = keyOf(ns, localName);
        if (few_.size() < FEW)
            few_.push_back(key);
        else
            many_.insert(key);
    }

private:
    static constexpr std::size_t FEW = 16;

    static std::uint64_t keyOf(RyName ns, RyName localName) {
        return static_cast<std::uint64_t>(RyNameEnum(ns)) << 32 |
               static_cast<std::uint32_t>(RyNameEnum(localName));
    }

    std::vector<std::uint64_t> few_;
    std::unordered_set<std::uint64_t> many_;
};

}  // namespace RynCommon
