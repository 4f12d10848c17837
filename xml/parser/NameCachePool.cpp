// Name caches between documents; see the header.
#include "xml/parser/NameCachePool.h"

#include "core/NameTable.h"
#include "text/HandOver.h"

namespace RynCommon {

namespace {

/// What a waiting cache may hold: a hostile document's names are not kept.
constexpr std::size_t MOST_NAMES = 2048;
constexpr std::size_t MOST_TEXT_UNITS = 32 * 1024;

/// Numbers of a table that is gone mean nothing any more.
bool isCurrent(const NameCache& cache) {
    return cache.generation() == sharedNameGeneration();
}

}  // namespace

void ReturnNameCache::operator()(NameCache* cache) const noexcept {
    std::unique_ptr<NameCache> owned(cache);
    const bool isWorthKeeping = cache != nullptr && isCurrent(*cache) &&
                                cache->size() <= MOST_NAMES &&
                                cache->textUnits() <= MOST_TEXT_UNITS;
    if (isWorthKeeping) HandOver<NameCache>::give(std::move(owned));
}

NameCachePtr takeNameCache() {
    while (std::unique_ptr<NameCache> cache = HandOver<NameCache>::take())
        if (isCurrent(*cache)) return NameCachePtr(cache.release());
    return NameCachePtr(new NameCache);
}

}  // namespace RynCommon
