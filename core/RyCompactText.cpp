// Text in exactly the room it needs.
//
// A block is four bytes of length and width followed by the units, in one allocation. Most texts of
// documents are Latin-1 and take half the room of UTF-16.
#include <cstring>
#include <new>
#include <utility>

#include <RynCommon/RyString.h>

#include "core/UnitScan.h"

namespace RynCommon {

struct RyCompactText::Block {
    std::uint32_t lengthAndWidth;  // the length times two, plus one where units take two bytes

    static Block* make(const char16_t* text, std::int32_t length) {
        if (length <= 0) return nullptr;
        const std::size_t n = static_cast<std::size_t>(length);
        const bool wide = !isLatin1(text, n);
        Block* const block = allocate(n, wide);
        if (wide)
            std::memcpy(block->bytes(), text, 2 * n);
        else
            narrowLatin1(text, n, block->bytes());
        return block;
    }

    static Block* copy(const Block* other) {
        if (other == nullptr) return nullptr;
        Block* const block = allocate(other->length(), other->isWide());
        std::memcpy(block->bytes(), other->bytes(), other->size());
        return block;
    }

    static void free(Block* block) { ::operator delete(block); }

    std::size_t length() const { return lengthAndWidth >> 1; }
    bool isWide() const { return (lengthAndWidth & 1) != 0; }
    std::size_t size() const { return length() << (lengthAndWidth & 1); }
    std::uint8_t* bytes() { return reinterpret_cast<std::uint8_t*>(this + 1); }
    const std::uint8_t* bytes() const { return reinterpret_cast<const std::uint8_t*>(this + 1); }
    const char16_t* units() const { return reinterpret_cast<const char16_t*>(this + 1); }

    // Units from `from` on; `to` has room for `count`.
    void copyUnits(std::size_t from, std::size_t count, char16_t* to) const {
        if (isWide())
            std::memcpy(to, units() + from, 2 * count);
        else
            widenLatin1(bytes() + from, count, to);
    }

private:
    static Block* allocate(std::size_t length, bool wide) {
        void* const room = ::operator new(sizeof(Block) + (length << int{wide}));
        return ::new (room) Block{static_cast<std::uint32_t>(length << 1 | std::size_t{wide})};
    }
};

RyCompactText::RyCompactText(const char16_t* text, std::int32_t length)
    : block_(Block::make(text, length)) {}

RyCompactText::RyCompactText(const UnicodeString& text)
    : RyCompactText(text.getBuffer(), text.length()) {}

RyCompactText::RyCompactText(const RyCompactText& other) : block_(Block::copy(other.block_)) {}

RyCompactText::RyCompactText(RyCompactText&& other) noexcept
    : block_(std::exchange(other.block_, nullptr)) {}

RyCompactText& RyCompactText::operator=(const RyCompactText& other) {
    if (this != &other) Block::free(std::exchange(block_, Block::copy(other.block_)));
    return *this;
}

RyCompactText& RyCompactText::operator=(RyCompactText&& other) noexcept {
    if (this != &other) Block::free(std::exchange(block_, std::exchange(other.block_, nullptr)));
    return *this;
}

RyCompactText::~RyCompactText() {
    Block::free(block_);
}

std::int32_t RyCompactText::length() const {
    return block_ == nullptr ? 0 : static_cast<std::int32_t>(block_->length());
}

UnicodeString RyCompactText::toString() const {
    UnicodeString text;
    copyTo(text);
    return text;
}

void RyCompactText::copyTo(UnicodeString& text) const {
    text.remove();
    if (block_ == nullptr) return;
    char16_t* const to = text.getBuffer(length());
    if (to == nullptr) throw std::bad_alloc();
    block_->copyUnits(0, block_->length(), to);
    text.releaseBuffer(length());
}

void RyCompactText::appendTo(UnicodeString& text) const {
    if (block_ == nullptr) return;
    if (block_->isWide()) {
        text.append(block_->units(), length());
        return;
    }
    // In pieces: the string's own append grows its buffer by more than it needs, which keeps long
    // series linear.
    char16_t piece[512];
    for (std::size_t at = 0; at < block_->length();) {
        const std::size_t count = std::min(block_->length() - at, std::size(piece));
        block_->copyUnits(at, count, piece);
        text.append(piece, static_cast<std::int32_t>(count));
        at += count;
    }
}

bool RyCompactText::equals(const UnicodeString& text) const {
    if (length() != text.length()) return false;
    if (block_ == nullptr) return true;
    const char16_t* const units = text.getBuffer();
    if (block_->isWide()) return std::memcmp(block_->bytes(), units, block_->size()) == 0;
    const std::uint8_t* const bytes = block_->bytes();
    for (std::size_t i = 0; i < block_->length(); ++i) {
        if (units[i] != bytes[i]) return false;
    }
    return true;
}

}  // namespace RynCommon
