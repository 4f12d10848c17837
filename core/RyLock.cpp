// The recursive lock, its guard, and the default lock.
#include <RynCommon/RyLock.h>

#include <atomic>

#include "core/Immortal.h"

namespace RynCommon {

namespace {

RyLock& defaultLock() {
    static Immortal<RyLock> lock;
    return lock.get();
}

}  // namespace

RyLock::RyLock() = default;
RyLock::~RyLock() = default;
RyLock::RyLock(const RyLock&) {}

RyMutex::RyMutex(RyLock* lock) : lock_(lock) {
    this->lock();
}
RyMutex::RyMutex(RyLock& lock) : RyMutex(&lock) {}
RyMutex::RyMutex() : RyMutex(defaultLock()) {}
RyMutex::~RyMutex() {
    unlock();
}

void RyMutex::lock() {
    if (lock_ != nullptr) lock_->mutex_.lock();
}

void RyMutex::unlock() {
    if (lock_ != nullptr) lock_->mutex_.unlock();
}

int RyMutex::interlockedIncrement(int& value) {
    return std::atomic_ref<int>(value).fetch_add(1) + 1;
}
int RyMutex::interlockedDecrement(int& value) {
    return std::atomic_ref<int>(value).fetch_sub(1) - 1;
}

}  // namespace RynCommon
