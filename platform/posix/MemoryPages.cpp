// Memory in large pages on POSIX systems.
#include "platform/MemoryPages.h"

#include <sys/mman.h>

#include <cstdint>

namespace RynCommon::platform {

namespace {

char* map(std::size_t size) {
    void* const start =
        mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return start != MAP_FAILED ? static_cast<char*>(start) : nullptr;
}

std::size_t getDistanceToBoundary(const char* start) {
    return (LARGE_PAGE - reinterpret_cast<std::uintptr_t>(start) % LARGE_PAGE) % LARGE_PAGE;
}

/// Maps twice the size and gives back what lies before and behind the page.
char* mapAligned() {
    char* const start = map(2 * LARGE_PAGE);
    if (start == nullptr) return nullptr;
    const std::size_t before = getDistanceToBoundary(start);
    if (before > 0) munmap(start, before);
    munmap(start + before + LARGE_PAGE, LARGE_PAGE - before);
    return start + before;
}

}  // namespace

void* mapLargePage() noexcept {
    // Most systems align a request of this size by themselves.
    char* page = map(LARGE_PAGE);
    if (page == nullptr) return nullptr;
    if (getDistanceToBoundary(page) != 0) {
        munmap(page, LARGE_PAGE);
        page = mapAligned();
    }
#ifdef MADV_HUGEPAGE
    if (page != nullptr) madvise(page, LARGE_PAGE, MADV_HUGEPAGE);
#endif
    return page;
}

void unmapLargePage(void* page) noexcept {
    munmap(page, LARGE_PAGE);
}

}  // namespace RynCommon::platform
