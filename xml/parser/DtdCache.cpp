// External subsets read before; see the header.
#include "xml/parser/DtdCache.h"

#include <algorithm>
#include <utility>

namespace RynCommon {

namespace {

constexpr std::size_t MOST_ENTRIES = 64;
constexpr std::size_t MOST_BYTES = 16u << 20;

}  // namespace

DtdCache& DtdCache::instance() {
    static DtdCache cache;
    return cache;
}

DtdCache::Entries::iterator DtdCache::find(const UnicodeString& uri) {
    return std::find_if(entries_.begin(), entries_.end(),
                        [&](const Entry& entry) { return entry.uri == uri; });
}

DtdCache::Entities DtdCache::get(const UnicodeString& uri, const Read& read) {
    std::unique_lock<std::mutex> lock(mutex_);
    for (;;) {
        const auto found = find(uri);
        if (found == entries_.end()) break;
        if (found->entities != nullptr) {
            entries_.splice(entries_.begin(), entries_, found);
            return found->entities;
        }
        if (found->reader == std::this_thread::get_id()) {
            lock.unlock();
            return std::make_shared<const EntityTable>(read());
        }
        changed_.wait(lock);
    }
    entries_.push_front({uri, nullptr, std::this_thread::get_id(), 0});
    const auto mine = entries_.begin();
    lock.unlock();
    Entities entities;
    try {
        entities = std::make_shared<const EntityTable>(read());
    } catch (...) {
        lock.lock();
        entries_.erase(mine);
        changed_.notify_all();
        throw;
    }
    lock.lock();
    mine->entities = entities;
    mine->size = entities->textSize();
    trim();
    changed_.notify_all();
    return entities;
}

void DtdCache::clear() {
    const std::lock_guard<std::mutex> lock(mutex_);
    entries_.remove_if([](const Entry& entry) { return entry.entities != nullptr; });
}

/// Drops entries from the back until the bounds hold. Entries that are being read stay.
void DtdCache::trim() {
    std::size_t count = 0;
    std::size_t bytes = 0;
    entries_.remove_if([&](const Entry& entry) {
        if (entry.entities == nullptr) return false;
        ++count;
        bytes += entry.size;
        return count > MOST_ENTRIES || bytes > MOST_BYTES;
    });
}

}  // namespace RynCommon
