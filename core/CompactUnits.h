// The inside of compact texts, for those who read their units where they lie.
//
// A block is four bytes of length and width followed by the units, in one allocation. Most texts of
// documents are Latin-1 and take half the room of UTF-16; many values are so short that they fit
// into the pointer, which saves the allocation.
#pragma once

#include <cstdint>

#include <RynCommon/RyString.h>

#include "core/EightUnits.h"

namespace RynCommon {

struct RyCompactText::Block {
    std::uint32_t lengthAndWidth;  // the length times two, plus one where units take two bytes

    static Block* make(const char16_t* text, std::int32_t length);
    static Block* copy(const Block* other);
    static void free(Block* block);

    std::size_t length() const { return lengthAndWidth >> 1; }
    bool isWide() const { return (lengthAndWidth & 1) != 0; }
    std::size_t size() const { return length() << (lengthAndWidth & 1); }
    std::uint8_t* bytes() { return reinterpret_cast<std::uint8_t*>(this + 1); }
    const std::uint8_t* bytes() const { return reinterpret_cast<const std::uint8_t*>(this + 1); }
    const char16_t* units() const { return reinterpret_cast<const char16_t*>(this + 1); }
    /// Units from `from` on; `to` has room for `count`.
    void copyUnits(std::size_t from, std::size_t count, char16_t* to) const;

private:
    static Block* allocate(std::size_t length, bool wide);
};

/// A view of a text's units in the width in which they are kept. The text must outlive it and stay
/// unchanged.
class CompactUnits {
public:
    explicit CompactUnits(const RyCompactText& text) {
        if (!text.hasBlock()) {
            length_ = shortLength(text);
            for (unsigned i = 0; i < sizeof room_; ++i)
                room_[i] = static_cast<std::uint8_t>(shortUnits(text) >> 8 * i);
            return;
        }
        const RyCompactText::Block& block = *text.block();
        length_ = block.length();
        isWide_ = block.isWide();
        data_ = block.bytes();
    }
    /// The text of units that stand in a larger range, which ends at `limit`. Most texts and values
    /// of dense documents have up to seven units, and eight can be looked at at once.
    static RyCompactText makeText(std::u16string_view units, const char16_t* limit) {
        RyCompactText text;
        std::uint64_t bytes = 0;
        const bool isShort = sizeof text.word_ == sizeof bytes && units.size() < sizeof bytes &&
                             !units.empty() && limit - units.data() >= EightUnits::COUNT &&
                             EightUnits(units.data()).toLatin1(units.size(), bytes);
        if (!isShort) return {units.data(), static_cast<std::int32_t>(units.size())};
        text.word_ = static_cast<std::uintptr_t>(bytes << 8 | units.size() << 1 | 1);
        return text;
    }
    CompactUnits(const CompactUnits&) = delete;
    CompactUnits& operator=(const CompactUnits&) = delete;

    /// Whether the text is kept in its word: at most seven units of Latin-1.
    static bool isShort(const RyCompactText& text) { return !text.hasBlock(); }
    static std::size_t shortLength(const RyCompactText& text) { return text.shortLength(); }
    /// The units of a short text, the first one lowest, with zeros above.
    static std::uint64_t shortUnits(const RyCompactText& text) { return text.shortUnits(); }

    std::size_t length() const { return length_; }
    /// Whether utf16() holds the units, or latin1().
    bool isWide() const { return isWide_; }
    const std::uint8_t* latin1() const { return data_; }
    const char16_t* utf16() const { return reinterpret_cast<const char16_t*>(data_); }

private:
    std::size_t length_;
    bool isWide_ = false;
    std::uint8_t room_[sizeof(std::uintptr_t)];  // of a text without a block
    const std::uint8_t* data_ = room_;
};

}  // namespace RynCommon
