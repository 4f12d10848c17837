// Release of tables that are built on first use.
#pragma once

#include <atomic>

namespace RynCommon {

/// One table's way to be released by RyUtil::cleanup. A room with such a table keeps a hook in
/// static storage and enrols it whenever it builds the table; nothing is allocated and no order of
/// initialisation matters.
class CleanupHook {
public:
    /// `release` must allow to be called when the table is already gone, and must not enrol hooks.
    constexpr explicit CleanupHook(void (*release)()) : release_(release) {}
    CleanupHook(const CleanupHook&) = delete;
    CleanupHook& operator=(const CleanupHook&) = delete;

    /// Makes the release part of every later cleanup. Safe from any thread; once is enough, more do
    /// no harm.
    void enrol();

    /// Calls the release of every enrolled hook, the last enrolled first.
    static void releaseAll();

private:
    void (*release_)();
    CleanupHook* next_ = nullptr;
    std::atomic<bool> isEnrolled_{false};
};

}  // namespace RynCommon
