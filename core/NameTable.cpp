// The run-time names of a table.
#include "core/NameTable.h"
#include "core/MemoryCheck.h"

#include <algorithm>
#include <bit>
#include <limits>
#include <memory>
#include <new>
#include <stdexcept>

namespace RynCommon {

namespace {

bool isText(const UnicodeString& name, const char16_t* text, std::int32_t length) {
    return name.length() == length &&
           std::memcmp(name.getBuffer(), text, 2 * static_cast<std::size_t>(length)) == 0;
}

UnicodeString* allocateBlock(std::size_t size) {
    return std::allocator<UnicodeString>().allocate(size);
}

}  // namespace

RuntimeNames::RuntimeNames() : slots_(2 * FIRST_BLOCK) {
    blocks_[0].store(allocateBlock(FIRST_BLOCK), std::memory_order_relaxed);
}

RuntimeNames::~RuntimeNames() {
    std::size_t left = count();
    for (std::size_t k = 0; k < MOST_BLOCKS; ++k) {
        UnicodeString* const block = blocks_[k].load(std::memory_order_relaxed);
        if (block == nullptr) break;
        const std::size_t size = FIRST_BLOCK << k;
        const std::size_t used = std::min(left, size);
        std::destroy_n(block, used);
        std::allocator<UnicodeString>().deallocate(block, size);
        left -= used;
    }
}

std::size_t RuntimeNames::count() const {
    return static_cast<std::size_t>(last_.load(std::memory_order_relaxed) - RYNAME_BUILTIN_LAST);
}

std::size_t RuntimeNames::slotOf(const char16_t* text, std::int32_t length,
                                 std::uint32_t hash) const {
    const std::size_t mask = slots_.size() - 1;
    for (std::size_t i = hash & mask;; i = (i + 1) & mask) {
        const Slot& slot = slots_[i];
        if (slot.number == 0) return i;
        if (slot.hash == hash &&
            isText(this->text(static_cast<RyNameEnum>(slot.number)), text, length))
            return i;
    }
}

RyNameEnum RuntimeNames::find(const char16_t* text, std::int32_t length, std::uint32_t hash) const {
    return static_cast<RyNameEnum>(slots_[slotOf(text, length, hash)].number);
}

RyNameEnum RuntimeNames::intern(const char16_t* text, std::int32_t length, std::uint32_t hash) {
    std::size_t at = slotOf(text, length, hash);
    if (slots_[at].number != 0) return static_cast<RyNameEnum>(slots_[at].number);

    const std::int32_t last = last_.load(std::memory_order_relaxed);
    if (last == std::numeric_limits<std::int32_t>::max()) throw std::length_error("names");
    if (2 * static_cast<std::size_t>(last - RYNAME_BUILTIN_LAST) >= slots_.size()) {
        growSlots();
        at = slotOf(text, length, hash);
    }
    appendText(text, length);
    slots_[at] = {hash, last + 1};
    last_.store(last + 1, std::memory_order_release);
    return static_cast<RyNameEnum>(last + 1);
}

void RuntimeNames::growSlots() {
    std::vector<Slot> grown(2 * slots_.size());
    const std::size_t mask = grown.size() - 1;
    for (const Slot& slot : slots_) {
        if (slot.number == 0) continue;
        std::size_t i = slot.hash & mask;
        while (grown[i].number != 0) i = (i + 1) & mask;
        grown[i] = slot;
    }
    slots_.swap(grown);
}

void RuntimeNames::appendText(const char16_t* text, std::int32_t length) {
    UnicodeString name(text, length);
    requireWhole(name);
    const Place place = placeOf(count());
    UnicodeString* block = blocks_[place.block].load(std::memory_order_relaxed);
    if (block == nullptr) {
        block = allocateBlock(FIRST_BLOCK << place.block);
        blocks_[place.block].store(block, std::memory_order_relaxed);
    }
    std::construct_at(block + place.offset, std::move(name));
}

}  // namespace RynCommon
