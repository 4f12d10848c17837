// The names of documents, found without the process-wide table.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include <RynCommon/RyName.h>

#include "core/ShortScan.h"
#include "core/TextHash.h"

namespace RynCommon {

/// A qualified name as a document spells it.
struct CachedName {
    const char16_t* text;  ///< of the cache's own, stable
    std::uint32_t length;
    RyName prefix;  ///< empty without a colon
    RyName local;
    /// Index of the colon between prefix and local name, -1 without one, WHOLE for a text.
    std::int32_t colon;
    /// The name of the start tag that came behind this one's last time, or null. Mostly it comes
    /// again, and a comparison with it spares the look-up.
    mutable const CachedName* successor = nullptr;
    /// The same of the attribute that came behind this name in its tag.
    mutable const CachedName* attribute = nullptr;

    static constexpr std::int32_t WHOLE = -2;
};

/// Maps spelt names to interned ones, for one parser at a time. Each distinct spelling asks
/// the shared table once, and takes its lock where the process does not know the name yet;
/// afterwards it is found by the hash of its units. Entries stay where they are for the life of the
/// cache.
///
/// A name that is known was checked when it came first. So findBefore() does not look at classes of
/// characters: it takes what stands before a delimiter, which eight units at a time tell, and a
/// text that no name spells is simply not there. In front of the table stand the names that were
/// found last, each at the one place that its length and twelve of its units give. A comparison
/// with what stands there decides; whoever makes names meet there gets the table, which is searched
/// by a hash that nobody can foresee. Formatting objects parse in two thirds of the time that a
/// scan over classes and a table take.
class NameCache {
public:
    NameCache();
    ~NameCache();
    NameCache(const NameCache&) = delete;
    NameCache& operator=(const NameCache&) = delete;

    std::size_t size() const { return count_; }
    /// Units of all spelt names.
    std::size_t textUnits() const { return textUnits_; }
    /// The generation of the shared table that the names are of.
    unsigned generation() const { return generation_; }

    /// `colon` is the index of the colon between prefix and local name, or -1.
    const CachedName& find(const char16_t* text, std::size_t length, std::ptrdiff_t colon);
    /// Any text that is interned as a whole.
    RyName findWhole(const char16_t* text, std::size_t length) {
        return find(text, length, CachedName::WHOLE).local;
    }
    /// The known name that stands at `text` before the first of the `delimiters`, which no name
    /// holds. Null where that takes a closer look: the name is not known yet or uncommonly long, or
    /// the text ends soon after it.
    template <class... Delimiters>
    const CachedName* findBefore(const char16_t* text, const char16_t* end,
                                 Delimiters... delimiters) const;

private:
    struct Slot {
        std::uint32_t hash = 0;
        std::uint32_t length = 0;
        CachedName* entry = nullptr;
    };

    /// Names of more units are looked up by find() only.
    static constexpr std::ptrdiff_t LONGEST_COMMON = 64;

    static constexpr std::size_t RECENT = 512;

    /// The place in front of the table. Sixteen bytes can be read from `text` on.
    static std::size_t recentIndex(const char16_t* text, std::size_t length);
    static bool isEntry(const Slot& slot, std::uint32_t hash, const char16_t* text,
                        std::size_t length) {
        return slot.hash == hash && slot.length == length &&
               equalUnits(slot.entry->text, text, length);
    }
    std::uint32_t hashOf(const char16_t* text, std::size_t length) const {
        return static_cast<std::uint32_t>(hashText(text, length, seed_));
    }
    const CachedName* findRecent(const char16_t* text, std::size_t length) const;
    const CachedName* findName(const char16_t* text, std::size_t length) const;
    CachedName& insert(Slot& slot, std::uint32_t hash, const char16_t* text, std::size_t length,
                       std::int32_t colon);
    const char16_t* keep(const char16_t* text, std::size_t length);
    void grow();

    std::vector<Slot> slots_;  // open addressing, a power of two, at most half full
    std::size_t count_ = 0;
    std::vector<std::unique_ptr<char16_t[]>> textBlocks_;
    std::size_t textRoom_ = 0;
    std::size_t textUnits_ = 0;
    char16_t* textNext_ = nullptr;
    std::vector<std::unique_ptr<CachedName[]>> entryBlocks_;
    std::size_t entryRoom_ = 0;
    std::uint64_t seed_;
    unsigned generation_;
    mutable std::array<const CachedName*, RECENT> recent_{};
};

inline std::size_t NameCache::recentIndex(const char16_t* text, std::size_t length) {
    static_assert(RECENT == 512);
    const auto word = [text](std::size_t at) { return detail::loadFourUnits(text + at); };
    std::uint64_t mixed = length;
    if (length < 4) {
        mixed = (mixed ^ word(0) << (64 - 16 * length)) * 0x9E3779B97F4A7C15u;
    } else {
        mixed = (mixed ^ word(0)) + std::rotl(word(length / 2 - 2), 21);
        mixed = (mixed ^ std::rotl(word(length - 4), 42)) * 0x9E3779B97F4A7C15u;
    }
    return static_cast<std::size_t>(mixed >> (64 - 9));
}

inline const CachedName* NameCache::findRecent(const char16_t* text, std::size_t length) const {
    if (length == 0) return nullptr;
    const CachedName*& recent = recent_[recentIndex(text, length)];
    const bool isIt =
        recent != nullptr && recent->length == length && equalUnits(recent->text, text, length);
    if (isIt) return recent;
    const CachedName* const found = findName(text, length);
    if (found != nullptr) recent = found;
    return found;
}

template <class... Delimiters>
const CachedName* NameCache::findBefore(const char16_t* text, const char16_t* end,
                                        Delimiters... delimiters) const {
    const char16_t* const last = end - text < LONGEST_COMMON ? end : text + LONGEST_COMMON;
    for (const char16_t* p = text; last - p >= EightUnits::COUNT; p += EightUnits::COUNT) {
        const std::uint64_t marks = EightUnits(p).marks(delimiters...);
        if (marks == 0) continue;
        return findRecent(text, static_cast<std::size_t>(p - text + EightUnits::first(marks)));
    }
    return nullptr;
}

}  // namespace RynCommon
