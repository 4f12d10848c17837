// The run-time names of a table.
//
// A name that is known is found without a lock, since look-ups outnumber insertions by far and two
// threads that take turns at a lock are slower than one alone. Of a thousand names one thread finds
// one in 50 ns, where it took 58 with the lock, and two threads together find one every 26 ns,
// where it took 68. A new name pays for the look-up that fails, some 15 ns of 200.
//
// An open-addressing index of 64-bit slots, hash and number in one, finds a text; blocks of strings
// that are never moved find a number, so that references to the strings stay valid.
//
// What a reader meets is always whole: the one inserting thread constructs the text, then stores
// last_, then the slot, by which readers get at the text. A slot that is taken never changes. A
// full index is copied into one of twice the size, and readers that are still in the old one miss
// at worst what came later, for which they take the lock. Nobody knows when they leave, so it is
// kept with the table; all former indexes are together smaller than the present one.
//
// The hash takes the process's seed, so that no document can fill one neighbourhood of the index.
#include "core/NameTable.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <new>
#include <stdexcept>

#include "core/MemoryCheck.h"

namespace RynCommon {

namespace {

UnicodeString* allocateBlock(std::size_t size) {
    return std::allocator<UnicodeString>().allocate(size);
}

}  // namespace

/// Hash to number: a power of two of slots, at most half of them taken.
class RuntimeNames::Index {
public:
    explicit Index(std::size_t size)
        : size_(size), slots_(std::make_unique<std::atomic<std::uint64_t>[]>(size)) {}

    std::size_t size() const { return size_; }

    /// The first number of that hash for which `isWanted` holds, or 0.
    template <class Wanted>
    std::int32_t find(std::uint32_t hash, Wanted isWanted) const {
        for (std::size_t i = hash & mask();; i = (i + 1) & mask()) {
            const std::uint64_t slot = slots_[i].load(std::memory_order_acquire);
            if (slot == 0) return 0;
            if (hashOf(slot) == hash && isWanted(numberOf(slot))) return numberOf(slot);
        }
    }

    void insert(std::uint32_t hash, std::int32_t number) {
        std::size_t i = hash & mask();
        while (slots_[i].load(std::memory_order_relaxed) != 0) i = (i + 1) & mask();
        slots_[i].store(std::uint64_t{hash} << 32 | static_cast<std::uint32_t>(number),
                        std::memory_order_release);
    }

    /// The same in an index of twice the size, which keeps this one.
    static std::unique_ptr<Index> makeLarger(std::unique_ptr<Index>& former) {
        auto larger = std::make_unique<Index>(2 * former->size_);
        for (std::size_t i = 0; i < former->size_; ++i) {
            const std::uint64_t slot = former->slots_[i].load(std::memory_order_relaxed);
            if (slot != 0) larger->insert(hashOf(slot), numberOf(slot));
        }
        larger->former_ = std::move(former);
        return larger;
    }

private:
    static std::uint32_t hashOf(std::uint64_t slot) {
        return static_cast<std::uint32_t>(slot >> 32);
    }
    static std::int32_t numberOf(std::uint64_t slot) { return static_cast<std::int32_t>(slot); }
    std::size_t mask() const { return size_ - 1; }

    std::size_t size_;
    std::unique_ptr<std::atomic<std::uint64_t>[]> slots_;  // 0: free
    std::unique_ptr<Index> former_;
};

RuntimeNames::RuntimeNames()
    : ownedIndex_(std::make_unique<Index>(2 * FIRST_BLOCK)), index_(ownedIndex_.get()) {
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

bool RuntimeNames::isText(std::int32_t number, const char16_t* text, std::int32_t length) const {
    const UnicodeString& name = this->text(static_cast<RyNameEnum>(number));
    return name.length() == length &&
           std::memcmp(name.getBuffer(), text, 2 * static_cast<std::size_t>(length)) == 0;
}

RyNameEnum RuntimeNames::find(const char16_t* text, std::int32_t length, std::uint32_t hash) const {
    return static_cast<RyNameEnum>(
        index().find(hash, [&](std::int32_t number) { return isText(number, text, length); }));
}

RyNameEnum RuntimeNames::intern(const char16_t* text, std::int32_t length, std::uint32_t hash) {
    if (const RyNameEnum known = find(text, length, hash)) return known;
    const std::int32_t last = last_.load(std::memory_order_relaxed);
    if (last == std::numeric_limits<std::int32_t>::max()) throw std::length_error("names");
    if (2 * count() >= ownedIndex_->size()) growIndex();
    appendText(text, length);
    last_.store(last + 1, std::memory_order_release);
    ownedIndex_->insert(hash, last + 1);
    return static_cast<RyNameEnum>(last + 1);
}

void RuntimeNames::growIndex() {
    ownedIndex_ = Index::makeLarger(ownedIndex_);
    index_.store(ownedIndex_.get(), std::memory_order_release);
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
