// Text in exactly the room it needs, and reading one after the other.
#include <algorithm>
#include <cstring>
#include <iterator>
#include <new>
#include <utility>

#include <RynCommon/RyString.h>

#include "core/CompactUnits.h"
#include "core/MemoryCheck.h"
#include "core/SlabMemory.h"
#include "core/UnitScan.h"

namespace RynCommon {

RyCompactText::Block* RyCompactText::Block::allocate(std::size_t length, bool wide) {
    void* const room = SlabMemory::allocate(sizeof(Block) + (length << int{wide}));
    return ::new (room) Block{static_cast<std::uint32_t>(length << 1 | std::size_t{wide})};
}

RyCompactText::Block* RyCompactText::Block::make(const char16_t* text, std::int32_t length) {
    const std::size_t n = static_cast<std::size_t>(length);
    const bool wide = !isLatin1(text, n);
    Block* const block = allocate(n, wide);
    if (wide)
        std::memcpy(block->bytes(), text, 2 * n);
    else
        narrowLatin1(text, n, block->bytes());
    return block;
}

RyCompactText::Block* RyCompactText::Block::copy(const Block* other) {
    Block* const block = allocate(other->length(), other->isWide());
    std::memcpy(block->bytes(), other->bytes(), other->size());
    return block;
}

void RyCompactText::Block::free(Block* block) {
    SlabMemory::release(block, sizeof(Block) + block->size());
}

void RyCompactText::Block::copyUnits(std::size_t from, std::size_t count, char16_t* to) const {
    if (isWide())
        std::memcpy(to, units() + from, 2 * count);
    else
        widenLatin1(bytes() + from, count, to);
}

namespace {

constexpr std::size_t SHORT_MOST = sizeof(std::uintptr_t) - 1;
/// Room for any short text, written whole.
constexpr std::int32_t SHORT_ROOM = 8;

std::uintptr_t shortUnit(std::uintptr_t word, std::size_t index) {
    return word >> (8 * (index + 1)) & 0xFF;
}

/// The word of a text of 1 to SHORT_MOST units, or 0 when one of them is not Latin-1.
std::uintptr_t packShort(const char16_t* text, std::size_t length) {
    std::uintptr_t word = 1 | length << 1;
    char16_t all = 0;
    for (std::size_t i = 0; i < length; ++i) {
        all = static_cast<char16_t>(all | text[i]);
        word |= static_cast<std::uintptr_t>(text[i] & 0xFF) << (8 * (i + 1));
    }
    return all < 0x100 ? word : 0;
}

}  // namespace

RyCompactText::RyCompactText(const char16_t* text, std::int32_t length) {
    if (length <= 0) return;
    const std::size_t n = static_cast<std::size_t>(length);
    if (n <= SHORT_MOST) word_ = packShort(text, n);
    if (word_ == 0) word_ = reinterpret_cast<std::uintptr_t>(Block::make(text, length));
}

RyCompactText::RyCompactText(const RyCompactText& other)
    : word_(other.hasBlock() ? reinterpret_cast<std::uintptr_t>(Block::copy(other.block()))
                             : other.word_) {}

RyCompactText& RyCompactText::operator=(const RyCompactText& other) {
    if (this != &other) *this = RyCompactText(other);
    return *this;
}

RyCompactText& RyCompactText::operator=(RyCompactText&& other) noexcept {
    if (this == &other) return *this;
    if (hasBlock()) freeBlock();
    word_ = std::exchange(other.word_, 0);
    return *this;
}

void RyCompactText::freeBlock() {
    Block::free(block());
}

std::int32_t RyCompactText::length() const {
    return static_cast<std::int32_t>(hasBlock() ? block()->length() : shortLength());
}

// Units from `from` on; `to` has room for `count`.
void RyCompactText::copyUnits(std::size_t from, std::size_t count, char16_t* to) const {
    if (hasBlock()) {
        block()->copyUnits(from, count, to);
        return;
    }
    for (std::size_t i = 0; i < count; ++i)
        to[i] = static_cast<char16_t>(shortUnit(word_, from + i));
}

UnicodeString RyCompactText::toString() const {
    UnicodeString text;
    copyTo(text);
    return text;
}

void RyCompactText::copyTo(UnicodeString& text) const {
    text.remove();
    if (isEmpty()) return;
    const std::int32_t all = length();
    char16_t* const to = text.getBuffer(std::max(all, SHORT_ROOM));
    if (to == nullptr) throw std::bad_alloc();
    if (hasBlock())
        block()->copyUnits(0, static_cast<std::size_t>(all), to);
    else
        widenShort(to);
    text.releaseBuffer(all);
}

void RyCompactText::appendTo(UnicodeString& text) const {
    if (hasBlock() && block()->isWide()) {
        text.append(block()->units(), length());
        requireWhole(text);
        return;
    }
    // In pieces: the string's own append grows its buffer by more than it needs, which keeps long
    // series linear.
    char16_t piece[512];
    const std::size_t all = static_cast<std::size_t>(length());
    for (std::size_t at = 0; at < all;) {
        const std::size_t count = std::min(all - at, std::size(piece));
        copyUnits(at, count, piece);
        text.append(piece, static_cast<std::int32_t>(count));
        at += count;
    }
    requireWhole(text);
}

bool RyCompactText::equals(const UnicodeString& text) const {
    if (length() != text.length()) return false;
    const char16_t* const units = text.getBuffer();
    const std::size_t all = static_cast<std::size_t>(length());
    if (hasBlock() && block()->isWide()) return std::memcmp(block()->bytes(), units, 2 * all) == 0;
    for (std::size_t i = 0; i < all; ++i) {
        const std::uintptr_t unit = hasBlock() ? block()->bytes()[i] : shortUnit(word_, i);
        if (units[i] != unit) return false;
    }
    return true;
}

// Reading.

namespace {

constexpr std::size_t EIGHT = 8;

void widenEight(const std::uint8_t* p, char16_t* to) {
#if defined(__GNUC__)
    using Narrow = std::uint8_t __attribute__((vector_size(8)));
    using Wide = std::uint16_t __attribute__((vector_size(16)));
    Narrow narrow;
    std::memcpy(&narrow, p, sizeof narrow);
    const Wide wide = __builtin_convertvector(narrow, Wide);
    std::memcpy(to, &wide, sizeof wide);
#else
    for (std::size_t i = 0; i < EIGHT; ++i) to[i] = p[i];
#endif
}

/// Widens 8 to 32 units, what most texts have that are no longer short. Groups may overlap.
void widenFew(const std::uint8_t* p, std::size_t length, char16_t* to) {
    const std::size_t last = length - EIGHT;
    widenEight(p, to);
    if (length > 2 * EIGHT) {
        widenEight(p + EIGHT, to + EIGHT);
        widenEight(p + last - EIGHT, to + last - EIGHT);
    }
    widenEight(p + last, to + last);
}

/// Widens and asks for what comes two pieces later, in this text or in one behind it: blocks lie
/// in document order, but so far apart that the processor does not foresee the next lines in time
/// by itself. This takes a third off walks over path data and a tenth off those over prose.
void widenLong(const std::uint8_t* p, std::size_t length, char16_t* to) {
#if defined(__GNUC__)
    constexpr std::size_t PIECE = 512, CACHE_LINE = 64;
    for (;; p += PIECE, to += PIECE, length -= PIECE) {
        const std::size_t piece = std::min(length, PIECE);
        // Nothing may lie there, where a request does no harm.
        const auto ahead = reinterpret_cast<std::uintptr_t>(p) + 2 * PIECE;
        for (std::size_t i = 0; i < piece; i += CACHE_LINE)
            __builtin_prefetch(reinterpret_cast<const void*>(ahead + i));
        if (length <= PIECE) break;
        widenLatin1(p, PIECE, to);
    }
#endif
    widenLatin1(p, length, to);
}

}  // namespace

std::u16string_view RyTextBuffer::readBlock(const RyCompactText& text) {
    const RyCompactText::Block& block = *text.block();
    const std::size_t length = block.length();
    if (block.isWide()) return {block.units(), length};
    char16_t* const to = makeRoom(length);
    if (length >= EIGHT && length <= 4 * EIGHT)
        widenFew(block.bytes(), length, to);
    else
        widenLong(block.bytes(), length, to);
    return {to, length};
}

std::u16string_view RyTextBuffer::read(const UnicodeString& text) {
    const auto length = static_cast<std::size_t>(text.length());
    char16_t* const to = makeRoom(length);
    if (length > 0) std::memcpy(to, text.getBuffer(), length * sizeof(char16_t));
    return {to, length};
}

void RyTextBuffer::grow(std::size_t length) {
    const std::size_t wanted = std::max({length, 2 * capacity_, LEAST});
    room_ = std::make_unique_for_overwrite<char16_t[]>(wanted);
    capacity_ = wanted;
}

}  // namespace RynCommon
