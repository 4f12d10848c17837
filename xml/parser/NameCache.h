// The names of documents, found without the process-wide table.
#pragma once

#include <bit>
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

    static constexpr std::int32_t WHOLE = -2;
};

/// Maps spelt names to interned ones, for one parser at a time. Each distinct spelling takes the
/// lock of the shared table once (twice with a prefix); afterwards it is found by the hash of its
/// units. Entries stay where they are for the life of the cache.
///
/// A name that is known was checked when it came first. So findBefore() does not look at classes of
/// characters: it takes what stands before a delimiter, hashing four units at a time while it looks
/// for it, and a text that no name spells is simply not there. With the short way for attributes
/// that is built on it, formatting objects parse in three quarters of the time.
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

    static std::uint64_t mixWord(std::uint64_t hash, std::uint64_t word) {
        return detail::mixText(hash ^ word, detail::TEXT_HASH_STEP);
    }
    /// The last word holds fewer than four units.
    static std::uint32_t finishHash(std::uint64_t hash, std::uint64_t word) {
        return static_cast<std::uint32_t>(detail::mixText(hash ^ word, detail::TEXT_HASH_LAST));
    }
    static bool isEntry(const Slot& slot, std::uint32_t hash, const char16_t* text,
                        std::size_t length) {
        return slot.hash == hash && slot.length == length &&
               equalUnits(slot.entry->text, text, length);
    }
    const CachedName* findName(std::uint32_t hash, const char16_t* text, std::size_t length) const;
    std::uint32_t hashOf(const char16_t* text, std::size_t length) const;
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
};

inline const CachedName* NameCache::findName(std::uint32_t hash, const char16_t* text,
                                             std::size_t length) const {
    const std::size_t mask = slots_.size() - 1;
    for (std::size_t i = hash & mask;; i = (i + 1) & mask) {
        const Slot& slot = slots_[i];
        if (slot.entry == nullptr) return nullptr;
        if (isEntry(slot, hash, text, length) && slot.entry->colon != CachedName::WHOLE)
            return slot.entry;
    }
}

template <class... Delimiters>
const CachedName* NameCache::findBefore(const char16_t* text, const char16_t* end,
                                        Delimiters... delimiters) const {
    if constexpr (std::endian::native != std::endian::little) return nullptr;
    const char16_t* const last = end - text < LONGEST_COMMON ? end : text + LONGEST_COMMON;
    std::uint64_t hash = seed_;
    for (const char16_t* p = text; last - p >= 4; p += 4) {
        const std::uint64_t word = detail::loadUnits(p);
        const std::uint64_t marks = (detail::markEqual(word, delimiters) | ...);
        if (marks == 0) {
            hash = mixWord(hash, word);
            continue;
        }
        const int units = std::countr_zero(marks) >> 4;
        const std::uint64_t rest = word & ~(~std::uint64_t{0} << (16 * units));
        const char16_t* const stop = p + units;
        return findName(finishHash(hash, rest), text, static_cast<std::size_t>(stop - text));
    }
    return nullptr;
}

}  // namespace RynCommon
