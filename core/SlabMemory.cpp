// Slabs of nodes; see the header.
#include "xml/tree/NodeMemory.h"

#include <atomic>
#include <cstdint>
#include <new>

namespace RynCommon {

namespace {

// The address sanitizer sees each node for itself.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool USE_SLABS = false;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
constexpr bool USE_SLABS = false;
#else
constexpr bool USE_SLABS = true;
#endif
#else
constexpr bool USE_SLABS = true;
#endif

constexpr std::size_t SLAB_SIZE = 8192 - 16;  // with the heap's own header, two pages
constexpr std::size_t LARGEST = 256;          // larger objects come from the heap
constexpr std::size_t PREFIX = 8;             // keeps objects aligned
constexpr std::size_t WIDE = 16;  // the strictest alignment that a plain new-expression relies on
constexpr std::uint32_t HELD = 1u << 30;

struct alignas(PREFIX) Slab {
    std::atomic<std::uint32_t>
        live;  // pieces in use; HELD minus those released while at a thread's hand
};

/// The slab at this thread's hand.
struct Hand {
    std::byte* next;
    std::byte* end;
    Slab* slab;
    std::uint32_t given;
};
constinit thread_local Hand hand{};

void retire() noexcept {
    Slab* const slab = hand.slab;
    if (slab == nullptr) return;
    const std::uint32_t surplus = HELD - hand.given;
    hand = Hand{};
    if (slab->live.fetch_sub(surplus, std::memory_order_acq_rel) == surplus)
        ::operator delete(slab);
}

/// Retires the slab when the thread ends.
struct Retirement {
    Retirement() noexcept {}
    ~Retirement() { retire(); }
};

void takeSlab() {
    static thread_local const Retirement atThreadEnd;
    // All pieces may have come back meanwhile.
    const bool reusable = hand.slab != nullptr &&
                          hand.slab->live.load(std::memory_order_acquire) == HELD - hand.given;
    if (!reusable) {
        retire();
        hand.slab = ::new (::operator new(SLAB_SIZE)) Slab;
    }
    hand.slab->live.store(HELD, std::memory_order_relaxed);
    hand.given = 0;
    hand.next = reinterpret_cast<std::byte*>(hand.slab + 1);
    hand.end = reinterpret_cast<std::byte*>(hand.slab) + SLAB_SIZE;
}

constexpr bool usesSlab(std::size_t size) {
    return USE_SLABS && size <= LARGEST;
}

/// What to leave free at `next`, so that a class derived elsewhere with a member of WIDE alignment
/// gets it: such an object has a multiple of WIDE as its size and cannot be as small as the
/// library's own text node.
std::size_t paddingAt(const std::byte* next, std::size_t size) {
    if (size % WIDE != 0 || size <= 64) return 0;
    return (WIDE - (reinterpret_cast<std::uintptr_t>(next) + PREFIX) % WIDE) % WIDE;
}

}  // namespace

void* NodeMemory::allocate(std::size_t size) {
    if (!usesSlab(size)) return ::operator new(size);
    const std::size_t piece = PREFIX + ((size + PREFIX - 1) & ~(PREFIX - 1));
    if (static_cast<std::size_t>(hand.end - hand.next) < piece + WIDE) takeSlab();
    std::byte* const start = hand.next + paddingAt(hand.next, size);
    hand.next = start + piece;
    ++hand.given;
    ::new (start)
        std::uint32_t(static_cast<std::uint32_t>(start - reinterpret_cast<std::byte*>(hand.slab)));
    return start + PREFIX;
}

void NodeMemory::release(void* object, std::size_t size) noexcept {
    if (!usesSlab(size)) {
        ::operator delete(object);
        return;
    }
    std::byte* const start = static_cast<std::byte*>(object) - PREFIX;
    const std::uint32_t distance = *std::launder(reinterpret_cast<std::uint32_t*>(start));
    Slab* const slab = std::launder(reinterpret_cast<Slab*>(start - distance));
    if (slab->live.fetch_sub(1, std::memory_order_acq_rel) == 1) ::operator delete(slab);
}

}  // namespace RynCommon
