// Slabs of nodes; see the header.
#include "core/SlabMemory.h"

#include <atomic>

namespace RynCommon {

namespace {

constexpr std::size_t SLAB_SIZE = 16384 - 16;  // with the heap's own header, four pages
constexpr std::uint32_t HELD = 1u << 30;

}  // namespace

struct SlabMemory::Slab {
    // Pieces in use; HELD minus those released while at a thread's hand.
    alignas(PREFIX) std::atomic<std::uint32_t> live;

    static Slab& at(std::byte* slab) { return *std::launder(reinterpret_cast<Slab*>(slab)); }
};

constinit thread_local SlabMemory::Hand SlabMemory::hand_{};

/// Leaves nothing at this thread's hand when it ends.
struct SlabMemory::Retirement {
    Retirement() noexcept {}
    ~Retirement() {
        flushReturned();
        retire();
    }
};

void SlabMemory::subtract(std::byte* slab, std::uint32_t pieces) noexcept {
    if (Slab::at(slab).live.fetch_sub(pieces, std::memory_order_acq_rel) == pieces)
        ::operator delete(slab);
}

void SlabMemory::flushReturned() noexcept {
    if (hand_.returned != 0) subtract(hand_.returning, hand_.returned);
    hand_.returned = 0;
    hand_.returning = nullptr;
}

void SlabMemory::retire() noexcept {
    if (hand_.slab == nullptr) return;
    std::byte* const slab = hand_.slab;
    const std::uint32_t surplus = HELD - hand_.given;
    hand_.slab = nullptr;
    hand_.next = hand_.end = nullptr;
    hand_.given = 0;
    subtract(slab, surplus);
}

void SlabMemory::atThreadEnd() {
    static thread_local const Retirement retirement;
}

void SlabMemory::takeSlab() {
    atThreadEnd();
    if (hand_.returning == hand_.slab) flushReturned();
    // All pieces may have come back meanwhile.
    const bool isReusable =
        hand_.slab != nullptr &&
        Slab::at(hand_.slab).live.load(std::memory_order_acquire) == HELD - hand_.given;
    if (!isReusable) {
        retire();
        hand_.slab = static_cast<std::byte*>(::operator new(SLAB_SIZE));
        ::new (hand_.slab) Slab;
    }
    Slab::at(hand_.slab).live.store(HELD, std::memory_order_relaxed);
    hand_.given = 0;
    hand_.next = hand_.slab + sizeof(Slab);
    hand_.end = hand_.slab + SLAB_SIZE;
}

void* SlabMemory::allocateSlowly(std::size_t size) {
    if (!usesSlab(size)) return ::operator new(size);
    takeSlab();
    return cut(size, PREFIX + ((size + PREFIX - 1) & ~(PREFIX - 1)));
}

/// One more piece of another slab than before.
void SlabMemory::returnTo(std::byte* slab) noexcept {
    flushReturned();
    atThreadEnd();
    hand_.returning = slab;
    hand_.returned = 1;
}

}  // namespace RynCommon
