// An object that is constructed but never destroyed, for constants that must outlive every static
// destructor.
#pragma once

#include <cstddef>
#include <new>

namespace RynCommon {

/// Holds a T for the rest of the process. Made as a function-local static, it is usable from any
/// static initialiser and destructor, and since it lies in static storage, what it owns is never
/// reported as lost.
template <class T>
class Immortal {
public:
    Immortal() { ::new (static_cast<void*>(room_)) T(); }
    Immortal(const Immortal&) = delete;
    Immortal& operator=(const Immortal&) = delete;

    T& get() { return *std::launder(reinterpret_cast<T*>(room_)); }

private:
    alignas(T) std::byte room_[sizeof(T)];
};

}  // namespace RynCommon
