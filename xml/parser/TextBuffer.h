// Text that is gathered from several places.
#pragma once

#include <unicode/utf16.h>

#include <cstddef>
#include <cstring>
#include <memory>
#include <string_view>

#include <RynCommon/Forward.h>

namespace RynCommon {

/// Units appended one run after the other to memory that is used again. A string does the same, but
/// asks itself at each run whether it may. Prose, with a reference in every eighth text, is read in
/// 5 % less by gathering here. Lack of memory is std::bad_alloc, and so is more than a string can
/// hold.
class TextBuffer {
public:
    bool isEmpty() const { return size_ == 0; }
    std::u16string_view units() const { return {units_.get(), size_}; }

    void clear() { size_ = 0; }
    /// Frees the memory, too.
    void release() {
        units_.reset();
        size_ = capacity_ = 0;
    }
    void append(const char16_t* units, std::size_t count) {
        if (capacity_ - size_ < count) grow(count);
        if (count != 0) std::memcpy(units_.get() + size_, units, count * sizeof(char16_t));
        size_ += count;
    }
    void append(std::u16string_view units) { append(units.data(), units.size()); }
    void append(char16_t unit) {
        if (capacity_ == size_) grow(1);
        units_[size_++] = unit;
    }
    void appendCodePoint(UChar32 c) {
        if (c <= 0xFFFF) return append(static_cast<char16_t>(c));
        append(static_cast<char16_t>(U16_LEAD(c)));
        append(static_cast<char16_t>(U16_TRAIL(c)));
    }
    void append(char16_t unit, std::size_t count) {
        for (; count > 0; --count) append(unit);
    }
    /// Takes the last unit away if it is `unit`.
    void dropLast(char16_t unit) {
        if (size_ > 0 && units_[size_ - 1] == unit) --size_;
    }

private:
    void grow(std::size_t count);

    std::unique_ptr<char16_t[]> units_;
    std::size_t size_ = 0;
    std::size_t capacity_ = 0;
};

}  // namespace RynCommon
