// Runs that the kernels are tested on.
#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>

namespace RynCommon {

/// Every offset that a run may have within a vector, and one more.
constexpr std::size_t ALIGNMENTS = 17;

/// A run of `length` elements that starts at any alignment and ends where its allocation ends, so
/// that a sanitizer sees every access past it.
template <class T>
class UnitRun {
public:
    UnitRun(std::size_t length, std::size_t offset, T fill)
        : room_(new T[offset + length]), start_(room_.get() + offset), length_(length) {
        std::fill_n(room_.get(), offset + length, fill);
    }
    T* begin() { return start_; }
    T* end() { return start_ + length_; }
    T& operator[](std::size_t i) { return start_[i]; }

private:
    std::unique_ptr<T[]> room_;
    T* start_;
    std::size_t length_;
};

}  // namespace RynCommon
