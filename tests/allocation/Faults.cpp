// Fails chosen allocations; see the header.
#include "tests/allocation/Faults.h"

#include <unicode/uclean.h>

#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <new>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define ALLOCATION_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer) || \
    __has_feature(memory_sanitizer)
#define ALLOCATION_SANITIZED 1
#endif
#endif
#ifndef ALLOCATION_SANITIZED
#define ALLOCATION_SANITIZED 0
#endif

namespace {

// Plain data: the allocator is called before anything is constructed.
constinit thread_local bool armed = false;
constinit thread_local bool failed = false;
constinit thread_local long left = 0;
constinit thread_local allocation::Mode mode = allocation::Mode::ONCE;
constinit std::atomic<long> live{0};

bool isToFail() {
    if (!armed) return false;
    if (left > 0) --left;
    const bool hit = left == 0 && (mode == allocation::Mode::FROM_ON || !failed);
    failed = failed || hit;
    return hit;
}

void* counted(void* room) {
    if (room != nullptr) live.fetch_add(1, std::memory_order_relaxed);
    return room;
}

void countFreed(const void* room) {
    if (room != nullptr) live.fetch_sub(1, std::memory_order_relaxed);
}

}  // namespace

#if ALLOCATION_SANITIZED

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return isToFail() ? nullptr : counted(std::malloc(size == 0 ? 1 : size));
}
void* operator new(std::size_t size) {
    void* const room = ::operator new(size, std::nothrow);
    if (room == nullptr) throw std::bad_alloc();
    return room;
}
[[gnu::noinline]] void operator delete(void* room) noexcept {
    countFreed(room);
    std::free(room);
}
[[gnu::noinline]] void operator delete(void* room, std::size_t) noexcept {
    countFreed(room);
    std::free(room);
}

#else

// The C library's own entrances, for programs that replace the usual ones.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* room, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* room);

void* malloc(std::size_t size) {
    if (!isToFail()) return counted(__libc_malloc(size));
    errno = ENOMEM;
    return nullptr;
}
void* calloc(std::size_t count, std::size_t size) {
    if (!isToFail()) return counted(__libc_calloc(count, size));
    errno = ENOMEM;
    return nullptr;
}
void* realloc(void* room, std::size_t size) {
    if (isToFail()) {
        errno = ENOMEM;
        return nullptr;
    }
    void* const moved = __libc_realloc(room, size);
    if (room == nullptr) counted(moved);
    if (room != nullptr && size == 0) countFreed(room);
    return moved;
}
void* memalign(std::size_t alignment, std::size_t size) {
    if (!isToFail()) return counted(__libc_memalign(alignment, size));
    errno = ENOMEM;
    return nullptr;
}
void* aligned_alloc(std::size_t alignment, std::size_t size) {
    return memalign(alignment, size);
}
int posix_memalign(void** room, std::size_t alignment, std::size_t size) {
    *room = memalign(alignment, size);
    return *room != nullptr ? 0 : ENOMEM;
}
void free(void* room) {
    countFreed(room);
    __libc_free(room);
}
}

#endif

namespace allocation {

namespace {

#if ALLOCATION_SANITIZED

void* allocateForIcu(const void*, std::size_t size) {
    return isToFail() ? nullptr : counted(std::malloc(size));
}

void* reallocateForIcu(const void*, void* room, std::size_t size) {
    if (isToFail()) return nullptr;
    return room == nullptr ? counted(std::malloc(size)) : std::realloc(room, size);
}

void freeForIcu(const void*, void* room) {
    countFreed(room);
    std::free(room);
}

#endif

}  // namespace

void arm(long n, Mode how) {
    left = n;
    mode = how;
    failed = false;
    armed = true;
}

bool disarm() {
    armed = false;
    return failed;
}

long countLive() {
    return live.load(std::memory_order_relaxed);
}

void prepare() {
#if ALLOCATION_SANITIZED
    UErrorCode status = U_ZERO_ERROR;
    u_setMemoryFunctions(nullptr, allocateForIcu, reallocateForIcu, freeForIcu, &status);
    if (U_FAILURE(status)) std::abort();
#endif
}

Pause::Pause() : previous_(armed) {
    armed = false;
}

Pause::~Pause() {
    armed = previous_;
}

}  // namespace allocation
