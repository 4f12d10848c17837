// The recursive lock and its scoped guard.
#pragma once

#include <mutex>

#include <RynCommon/Forward.h>

namespace RynCommon {

/// A lock that the thread holding it may enter again. Taken only through RyMutex.
class RYNCOMMON_API RyLock {
public:
    RyLock();
    ~RyLock();
    /// A copy is a lock of its own, free at first.
    RyLock(const RyLock&);
    /// Both locks stay as they are: a lock's state belongs to the threads that hold it.
    RyLock& operator=(const RyLock&) { return *this; }

private:
    friend class RyMutex;
    std::recursive_mutex mutex_;
};

/// Holds a lock for the length of a scope, also when an error is thrown through it.
class RYNCOMMON_API RyMutex {
public:
    /// Enters `lock` at once. A null pointer guards nothing.
    explicit RyMutex(RyLock* lock);
    explicit RyMutex(RyLock& lock);
    /// Enters the library's one default lock, which is taken before any other lock of the library.
    RyMutex();
    ~RyMutex();
    RyMutex(const RyMutex&) = delete;
    RyMutex& operator=(const RyMutex&) = delete;

    /// Atomic increment and decrement of a plain integer; return the new value.
    static int interlockedIncrement(int& value);
    static int interlockedDecrement(int& value);

private:
    void lock();
    void unlock();

    RyLock* lock_;
};

}  // namespace RynCommon
