// Slabs of nodes; see the header.
#include "core/SlabMemory.h"

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

/// The slab that this thread cuts from, and the one whose pieces it gives back.
struct Hand {
    std::byte* next;
    std::byte* end;
    Slab* slab;
    std::uint32_t given;
    std::uint32_t returned;  // pieces of `returning` that its count does not know yet
    Slab* returning;
};
// Found at a fixed distance from the thread's own block, also in a shared library, which saves a
// call each time: the few bytes fit into what the system keeps free for libraries loaded late.
#if defined(__ELF__)
[[gnu::tls_model("initial-exec")]]
#endif
constinit thread_local Hand hand{};

void subtract(Slab* slab, std::uint32_t pieces) noexcept {
    if (slab->live.fetch_sub(pieces, std::memory_order_acq_rel) == pieces) ::operator delete(slab);
}

void flushReturned() noexcept {
    if (hand.returned != 0) subtract(hand.returning, hand.returned);
    hand.returned = 0;
    hand.returning = nullptr;
}

void retire() noexcept {
    if (hand.slab == nullptr) return;
    Slab* const slab = hand.slab;
    const std::uint32_t surplus = HELD - hand.given;
    hand.slab = nullptr;
    hand.next = hand.end = nullptr;
    hand.given = 0;
    subtract(slab, surplus);
}

/// Leaves nothing at this thread's hand when it ends.
struct Retirement {
    Retirement() noexcept {}
    ~Retirement() {
        flushReturned();
        retire();
    }
};

void atThreadEnd() {
    static thread_local const Retirement retirement;
}

void takeSlab() {
    atThreadEnd();
    if (hand.returning == hand.slab) flushReturned();
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

void* SlabMemory::allocate(std::size_t size) {
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

void SlabMemory::release(void* object, std::size_t size) noexcept {
    if (!usesSlab(size)) {
        ::operator delete(object);
        return;
    }
    std::byte* const start = static_cast<std::byte*>(object) - PREFIX;
    const std::uint32_t distance = *std::launder(reinterpret_cast<std::uint32_t*>(start));
    Slab* const slab = std::launder(reinterpret_cast<Slab*>(start - distance));
    if (slab != hand.returning) {
        flushReturned();
        atThreadEnd();
        hand.returning = slab;
    }
    ++hand.returned;
}

}  // namespace RynCommon
