// The external DTD subsets that this process has read.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <thread>

#include "xml/parser/Entities.h"

namespace RynCommon {

/// General entities by the resolved URI of the subset that declares them. A subset is read once:
/// the first thread that asks reads it, without holding the lock; others that ask for the same URI
/// wait for that one. A failure passes on to the reader and is not kept; a waiting thread then
/// reads for itself. Parameter entities are never kept. The cache holds a bounded number of subsets
/// and units, dropping the one unused for longest.
class DtdCache {
public:
    using Entities = std::shared_ptr<const EntityTable>;
    using Read = std::function<EntityTable()>;

    static DtdCache& instance();

    /// The entities of `uri`, read by `read` when they are not known. A call from within `read` for
    /// the same URI reads on its own.
    Entities get(const UnicodeString& uri, const Read& read);
    /// Forgets what is kept.
    void clear();

private:
    struct Entry {
        UnicodeString uri;
        Entities entities;  // null while being read
        std::thread::id reader;
        std::size_t size = 0;
    };
    using Entries = std::list<Entry>;  // most recently used first

    Entries::iterator find(const UnicodeString& uri);
    void trim();

    std::mutex mutex_;
    std::condition_variable changed_;
    Entries entries_;
};

}  // namespace RynCommon
