// Spelt names to interned names; see the header.
#include "xml/parser/NameCache.h"

#include <algorithm>
#include <cstring>

#include "core/NameTable.h"

namespace RynCommon {

namespace {

constexpr std::size_t FIRST_SLOTS = 64;
constexpr std::size_t ENTRY_BLOCK = 128;
constexpr std::size_t TEXT_BLOCK = 4096;

}  // namespace

NameCache::NameCache()
    : slots_(FIRST_SLOTS), seed_(textHashSeed()), generation_(sharedNameGeneration()) {}
NameCache::~NameCache() = default;

/// Null when it is not known, or known as a text only.
const CachedName* NameCache::findName(const char16_t* text, std::size_t length) const {
    const std::uint32_t hash = hashOf(text, length);
    const std::size_t mask = slots_.size() - 1;
    for (std::size_t i = hash & mask;; i = (i + 1) & mask) {
        const Slot& slot = slots_[i];
        if (slot.entry == nullptr) return nullptr;
        if (isEntry(slot, hash, text, length) && slot.entry->colon != CachedName::WHOLE)
            return slot.entry;
    }
}

const CachedName& NameCache::find(const char16_t* text, std::size_t length, std::ptrdiff_t colon) {
    const std::uint32_t hash = hashOf(text, length);
    const auto kind = static_cast<std::int32_t>(colon);
    const std::size_t mask = slots_.size() - 1;
    for (std::size_t i = hash & mask;; i = (i + 1) & mask) {
        Slot& slot = slots_[i];
        if (slot.entry == nullptr) {
            // Room comes first: nothing is entered that could not be searched for.
            if ((count_ + 1) * 2 <= slots_.size()) return insert(slot, hash, text, length, kind);
            grow();
            return find(text, length, colon);
        }
        if (isEntry(slot, hash, text, length) && slot.entry->colon == kind) return *slot.entry;
    }
}

CachedName& NameCache::insert(Slot& slot, std::uint32_t hash, const char16_t* text,
                              std::size_t length, std::int32_t colon) {
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
        entry.prefix = internSharedName(text, colon);
        entry.local = internSharedName(text + colon + 1, size - colon - 1);
    }
    entry.colon = colon;
    entry.text = keep(text, length);
    entry.length = static_cast<std::uint32_t>(length);
    --entryRoom_;
    slot = {hash, entry.length, &entry};
    ++count_;
    return entry;
}

const char16_t* NameCache::keep(const char16_t* text, std::size_t length) {
    if (length > textRoom_) {
        const std::size_t room = std::max(TEXT_BLOCK, length);
        textBlocks_.push_back(std::make_unique_for_overwrite<char16_t[]>(room));
        textNext_ = textBlocks_.back().get();
        textRoom_ = room;
    }
    char16_t* const kept = textNext_;
    if (length != 0) std::memcpy(kept, text, length * sizeof(char16_t));
    textNext_ += length;
    textRoom_ -= length;
    textUnits_ += length;
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
