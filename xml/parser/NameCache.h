// The names of one document, found without the process-wide table.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include <RynCommon/RyName.h>

namespace RynCommon {

/// A qualified name as a document spells it.
struct CachedName {
    const char16_t* text;  ///< of the cache's own, stable
    std::uint32_t length;
    RyName prefix;  ///< empty without a colon
    RyName local;
};

/// Maps spelt names to interned ones. Each distinct spelling takes the lock of the shared table
/// once (twice with a prefix); afterwards it is found by the hash of its units. Entries stay where
/// they are for the life of the cache.
class NameCache {
public:
    NameCache();
    ~NameCache();
    NameCache(const NameCache&) = delete;
    NameCache& operator=(const NameCache&) = delete;

    /// Forgets all names and frees their memory.
    void clear();

    /// `colon` is the index of the colon between prefix and local name, or -1.
    const CachedName& find(const char16_t* text, std::size_t length, std::ptrdiff_t colon);
    /// A name without a colon inside, or any text that is interned as a whole.
    RyName findWhole(const char16_t* text, std::size_t length) {
        return find(text, length, -1).local;
    }

private:
    struct Slot {
        std::uint32_t hash = 0;
        std::uint32_t length = 0;
        CachedName* entry = nullptr;
    };

    CachedName& insert(Slot& slot, std::uint32_t hash, const char16_t* text, std::size_t length,
                       std::ptrdiff_t colon);
    const char16_t* keep(const char16_t* text, std::size_t length);
    void grow();

    std::vector<Slot> slots_;  // open addressing, a power of two, at most half full
    std::size_t count_ = 0;
    std::vector<std::unique_ptr<char16_t[]>> textBlocks_;
    std::size_t textRoom_ = 0;
    char16_t* textNext_ = nullptr;
    std::vector<std::unique_ptr<CachedName[]>> entryBlocks_;
    std::size_t entryRoom_ = 0;
    std::uint64_t seed_;
};

}  // namespace RynCommon
