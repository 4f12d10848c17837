// Spelt names to interned names; see the header.
#include "xml/parser/NameCache.h"

#include <algorithm>
#include <cstring>

#include "core/NameTable.h"
#include "core/ShortScan.h"
#include "core/TextHash.h"

namespace RynCommon {

namespace {

constexpr std::size_t FIRST_SLOTS = 64;
constexpr std::size_t ENTRY_BLOCK = 128;
constexpr std::size_t TEXT_BLOCK = 4096;

}  // namespace

NameCache::NameCache() : slots_(FIRST_SLOTS), seed_(textHashSeed()) {}
NameCache::~NameCache() = default;

void NameCache::clear() {
    slots_ = std::vector<Slot>(FIRST_SLOTS);
    count_ = 0;
    textBlocks_.clear();
    textRoom_ = 0;
    textNext_ = nullptr;
    entryBlocks_.clear();
    entryRoom_ = 0;
}

const CachedName& NameCache::find(const char16_t* text, std::size_t length, std::ptrdiff_t colon) {
    const auto hash = static_cast<std::uint32_t>(hashText(text, length, seed_));
    const std::size_t mask = slots_.size() - 1;
    for (std::size_t i = hash & mask;; i = (i + 1) & mask) {
        Slot& slot = slots_[i];
        if (slot.entry == nullptr) return insert(slot, hash, text, length, colon);
        if (slot.hash == hash && slot.length == length &&
            equalUnits(slot.entry->text, text, length))
            return *slot.entry;
    }
}

CachedName& NameCache::insert(Slot& slot, std::uint32_t hash, const char16_t* text,
                              std::size_t length, std::ptrdiff_t colon) {
    if (entryRoom_ == 0) {
        entryBlocks_.push_back(std::make_unique<CachedName[]>(ENTRY_BLOCK));
        entryRoom_ = ENTRY_BLOCK;
    }
    CachedName& entry = entryBlocks_.back()[ENTRY_BLOCK - entryRoom_];
    const auto size = static_cast<std::int32_t>(length);
    if (colon < 0) {
        entry.prefix = RyName();
        entry.local = internSharedName(text, size);
    } else {
        const auto split = static_cast<std::int32_t>(colon);
        entry.prefix = internSharedName(text, split);
        entry.local = internSharedName(text + split + 1, size - split - 1);
    }
    entry.text = keep(text, length);
    entry.length = static_cast<std::uint32_t>(length);
    --entryRoom_;
    slot = {hash, entry.length, &entry};
    if (++count_ * 2 > slots_.size()) grow();
    return entry;
}

const char16_t* NameCache::keep(const char16_t* text, std::size_t length) {
    if (length > textRoom_) {
        textRoom_ = std::max(TEXT_BLOCK, length);
        textBlocks_.push_back(std::make_unique_for_overwrite<char16_t[]>(textRoom_));
        textNext_ = textBlocks_.back().get();
    }
    char16_t* const kept = textNext_;
    if (length != 0) std::memcpy(kept, text, length * sizeof(char16_t));
    textNext_ += length;
    textRoom_ -= length;
    return kept;
}

void NameCache::grow() {
    std::vector<Slot> larger(slots_.size() * 2);
    const std::size_t mask = larger.size() - 1;
    for (const Slot& slot : slots_) {
        if (slot.entry == nullptr) continue;
        std::size_t i = slot.hash & mask;
        while (larger[i].entry != nullptr) i = (i + 1) & mask;
        larger[i] = slot;
    }
    slots_ = std::move(larger);
}

}  // namespace RynCommon
