// Searching bytes: a pattern, and line ends.
//
// A pattern is looked for by its first and its last byte, a vector of places at a time; where both
// stand the bytes between are compared. That runs at the speed of memory unless the text is full of
// near misses, so the comparisons draw on a credit that grows with the bytes passed. When it is
// used up, the rest of the text is left to the C library, whose search does not depend on the text.
//
// The kernels are compiled for several instruction sets; the first call picks the best that the
// processor has. No kernel reads outside of the range given.
#pragma once

#include <cstddef>
#include <string_view>

namespace RynCommon {

/// Looks for one pattern in any number of texts, one after the other.
class BytePattern {
public:
    static constexpr std::size_t NOT_FOUND = std::string_view::npos;

    /// `pattern` is not empty and outlives the object.
    explicit BytePattern(std::string_view pattern) : pattern_(pattern) {}

    /// Where the pattern first stands in `text`, or NOT_FOUND.
    std::size_t find(std::string_view text);

private:
    std::string_view pattern_;
    std::size_t credit_ = 0;  // bytes that may still be compared in vain
    bool nearMisses_ = false;
};

/// First CR or LF in [p, end), or `end`.
const char* findLineEnd(const char* p, const char* end) noexcept;

}  // namespace RynCommon
