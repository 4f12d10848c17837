// The room for put-back in front of the get area of the inflating stream buffers.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace RynCommon::streams {

/// Bytes that can be put back after any read.
constexpr std::size_t PUT_BACK = 10;

/// Moves the last bytes before `next`, of those from `first` on, to the start of `buffer`.
/// @return their count
inline std::size_t keepPutBack(char* buffer, const char* first, const char* next) {
    const std::size_t kept = std::min(static_cast<std::size_t>(next - first), PUT_BACK);
    if (kept > 0) std::memmove(buffer, next - kept, kept);
    return kept;
}

/// The same for when `taken` was delivered behind `next` without passing through the buffer.
inline std::size_t keepPutBack(char* buffer, const char* first, const char* next, const char* taken,
                               std::size_t count) {
    const std::size_t fresh = std::min(count, PUT_BACK);
    const std::size_t available = static_cast<std::size_t>(next - first);
    const std::size_t old = std::min(available, PUT_BACK - fresh);
    if (old > 0) std::memmove(buffer, next - old, old);
    if (fresh > 0) std::memcpy(buffer + old, taken + count - fresh, fresh);
    return old + fresh;
}

}  // namespace RynCommon::streams
