// Objects that wait for the next who needs one.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <memory>

#include "text/Cleanup.h"

namespace RynCommon {

/// Up to four objects of a class, as many as commonly are in use at a time, that are dear to make
/// and as good as new after use. They wait in places that any thread may fill and empty without a
/// lock, and are freed with the process's other shared memory.
template <class T>
class HandOver {
public:
    /// Keeps the object, or frees it when enough wait already.
    static void give(std::unique_ptr<T> object) noexcept {
        hook.enrol();
        for (std::atomic<T*>& place : places) {
            T* none = nullptr;
            if (!place.compare_exchange_strong(none, object.get())) continue;
            static_cast<void>(object.release());
            return;
        }
    }
    /// Null when none waits.
    static std::unique_ptr<T> take() noexcept {
        for (std::atomic<T*>& place : places) {
            if (place.load(std::memory_order_relaxed) == nullptr) continue;
            if (T* const object = place.exchange(nullptr)) return std::unique_ptr<T>(object);
        }
        return nullptr;
    }

private:
    static void freeAll() {
        for (std::atomic<T*>& place : places) delete place.exchange(nullptr);
    }

    static constinit inline std::array<std::atomic<T*>, 4> places{};
    static constinit inline CleanupHook hook{freeAll};
};

}  // namespace RynCommon
