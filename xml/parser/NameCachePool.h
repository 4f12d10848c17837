// Name caches between documents.
//
// A small document spends more on learning its names than on anything else: of 29 microseconds for
// 4 KB of formatting objects 10 went into filling the cache of names. Names are the process's, and
// documents of one kind share them, so a parser hands its cache on to the next one.
#pragma once

#include <memory>

#include "xml/parser/NameCache.h"

namespace RynCommon {

/// Takes a cache back: kept for the next parser unless it has grown large or others are waiting
/// already, else freed.
struct ReturnNameCache {
    void operator()(NameCache* cache) const noexcept;
};

using NameCachePtr = std::unique_ptr<NameCache, ReturnNameCache>;

/// A cache that may know names already. May be called from any thread.
NameCachePtr takeNameCache();

}  // namespace RynCommon
