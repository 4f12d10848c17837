// The memory of large memory streams.
#include "streams/MemStreamPages.h"

#include "platform/MemoryPages.h"

namespace RynCommon {

namespace {

using platform::LARGE_PAGE;

// The address sanitizer sees each block for itself.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool USE_PAGES = false;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
constexpr bool USE_PAGES = false;
#else
constexpr bool USE_PAGES = true;
#endif
#else
constexpr bool USE_PAGES = true;
#endif

}  // namespace

MemStreamPages::~MemStreamPages() {
    for (const auto& page : live_) platform::unmapLargePage(page.first);
}

/// Of larger blocks too much of a page would be left over.
bool MemStreamPages::takesBlocksOf(std::uint64_t size) {
    return USE_PAGES && size <= LARGE_PAGE / 16;
}

char* MemStreamPages::allocate(std::size_t size) {
    if (static_cast<std::size_t>(end_ - next_) < size) {
        auto* const page = static_cast<char*>(platform::mapLargePage());
        if (page == nullptr) return nullptr;
        try {
            live_.emplace(page, 0);
        } catch (...) {
            platform::unmapLargePage(page);
            throw;
        }
        next_ = page;
        end_ = page + LARGE_PAGE;
    }
    last_ = next_;
    next_ += size;
    ++findPage(last_)->second;
    return last_;
}

MemStreamPages::Live::iterator MemStreamPages::findPage(const char* block) {
    auto page = live_.upper_bound(const_cast<char*>(block));
    if (page == live_.begin()) return live_.end();
    --page;
    return static_cast<std::size_t>(block - page->first) < LARGE_PAGE ? page : live_.end();
}

bool MemStreamPages::release(const char* block) noexcept {
    const auto page = findPage(block);
    if (page == live_.end()) return false;
    if (block == last_) {
        next_ = last_;
        last_ = nullptr;
    }
    if (--page->second > 0) return true;
    if (page->first + LARGE_PAGE == end_) {
        next_ = page->first;
        return true;
    }
    platform::unmapLargePage(page->first);
    live_.erase(page);
    return true;
}

void MemStreamPages::releaseSpare() noexcept {
    if (end_ == nullptr) return;
    const auto page = live_.find(end_ - LARGE_PAGE);
    if (page->second > 0) return;
    platform::unmapLargePage(page->first);
    live_.erase(page);
    next_ = end_ = nullptr;
}

}  // namespace RynCommon
