// Release of tables that are built on first use.
#include "text/Cleanup.h"

namespace RynCommon {

namespace {
/// Hooks are only ever added at the front.
constinit std::atomic<CleanupHook*> firstHook{nullptr};
}  // namespace

void CleanupHook::enrol() {
    if (isEnrolled_.exchange(true, std::memory_order_acq_rel)) return;
    next_ = firstHook.load(std::memory_order_relaxed);
    while (!firstHook.compare_exchange_weak(next_, this, std::memory_order_release,
                                            std::memory_order_relaxed)) {
    }
}

void CleanupHook::releaseAll() {
    for (const CleanupHook* hook = firstHook.load(std::memory_order_acquire); hook != nullptr;
         hook = hook->next_)
        hook->release_();
}

}  // namespace RynCommon
