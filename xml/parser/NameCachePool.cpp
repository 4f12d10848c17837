// Name caches between documents; see the header.
#include "xml/parser/NameCachePool.h"

#include <array>
#include <atomic>

#include "core/NameTable.h"
#include "text/Cleanup.h"

namespace RynCommon {

namespace {

/// As many parsers as commonly run at a time.
constexpr std::size_t MOST_WAITING = 4;
/// What a waiting cache may hold: a hostile document's names are not kept.
constexpr std::size_t MOST_NAMES = 2048;
constexpr std::size_t MOST_TEXT_UNITS = 32 * 1024;

constinit std::array<std::atomic<NameCache*>, MOST_WAITING> waiting{};

void freeWaiting() {
    for (std::atomic<NameCache*>& place : waiting) delete place.exchange(nullptr);
}

constinit CleanupHook cleanupHook(freeWaiting);

/// Numbers of a table that is gone mean nothing any more.
bool isWorthKeeping(const NameCache& cache) {
    return cache.generation() == sharedNameGeneration() && cache.size() <= MOST_NAMES &&
           cache.textUnits() <= MOST_TEXT_UNITS;
}

}  // namespace

void ReturnNameCache::operator()(NameCache* cache) const noexcept {
    std::unique_ptr<NameCache> owned(cache);
    if (cache == nullptr || !isWorthKeeping(*cache)) return;
    cleanupHook.enrol();
    for (std::atomic<NameCache*>& place : waiting) {
        NameCache* none = nullptr;
        if (!place.compare_exchange_strong(none, cache)) continue;
        static_cast<void>(owned.release());
        return;
    }
}

NameCachePtr takeNameCache() {
    for (std::atomic<NameCache*>& place : waiting) {
        if (place.load(std::memory_order_relaxed) == nullptr) continue;
        NameCachePtr cache(place.exchange(nullptr));
        if (cache && cache->generation() == sharedNameGeneration()) return cache;
    }
    return NameCachePtr(new NameCache);
}

}  // namespace RynCommon
