// Text that is gathered from several places.
#include "xml/parser/TextBuffer.h"

#include <limits>
#include <new>

namespace RynCommon {

void TextBuffer::grow(std::size_t count) {
    constexpr auto most = static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max());
    constexpr std::size_t LEAST = 128;
    if (count > most - size_) throw std::bad_alloc();
    const std::size_t needed = size_ + count;
    const std::size_t capacity = needed + needed / 4 + LEAST;
    auto larger = std::make_unique_for_overwrite<char16_t[]>(capacity);
    if (size_ != 0) std::memcpy(larger.get(), units_.get(), size_ * sizeof(char16_t));
    units_ = std::move(larger);
    capacity_ = capacity;
}

}  // namespace RynCommon
