// The shared constant strings, and exact-size storage of text.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string_view>

#include <RynCommon/Forward.h>

namespace RynCommon {

/// The shared empty text: what functions return that have no text. Usable from any static
/// initialiser.
class RYNCOMMON_API RyEmptyString : public UnicodeString {
public:
    RyEmptyString();
    ~RyEmptyString() override;
    static const RyEmptyString& EMPTY_VALUE;
};

/// The shared bogus text (ICU's setToBogus): absent, as against empty. Usable from any static
/// initialiser.
class RYNCOMMON_API RyBogusString : public UnicodeString {
public:
    RyBogusString();
    ~RyBogusString() override;
    static const RyBogusString& BOGUS_VALUE;
};

/// Counts the translation units that use the constants above, so that the first to be initialised
/// sets them up.
class RYNCOMMON_API RyStringConstants {
public:
    RyStringConstants();
    ~RyStringConstants();
    RyStringConstants(const RyStringConstants&) = delete;
    RyStringConstants& operator=(const RyStringConstants&) = delete;
};
namespace {
[[maybe_unused]] const RyStringConstants ryStringConstants;
}

/// A text kept in exactly the room it needs: one byte a unit where all are below U+0100, else two.
/// One pointer in size, which holds a text of up to seven such units itself. A tree's texts and
/// attribute values rest in it.
class RYNCOMMON_API RyCompactText {
public:
    RyCompactText() = default;
    RyCompactText(const char16_t* text, std::int32_t length);
    explicit RyCompactText(const UnicodeString& text)
        : RyCompactText(text.getBuffer(), text.length()) {}
    RyCompactText(const RyCompactText& other);
    RyCompactText(RyCompactText&& other) noexcept : word_(other.word_) { other.word_ = 0; }
    RyCompactText& operator=(const RyCompactText& other);
    RyCompactText& operator=(RyCompactText&& other) noexcept;
    ~RyCompactText() {
        if (hasBlock()) freeBlock();
    }

    /// Number of UTF-16 units.
    std::int32_t length() const;
    bool isEmpty() const { return word_ == 0; }
    UnicodeString toString() const;
    void appendTo(UnicodeString& text) const;
    /// Replaces the text of `text`, whose buffer is used again.
    void copyTo(UnicodeString& text) const;
    bool equals(const UnicodeString& text) const;

private:
    friend class CompactUnits;
    friend class RyTextBuffer;
    struct Block;

    bool hasBlock() const { return word_ != 0 && (word_ & 1) == 0; }
    Block* block() const { return reinterpret_cast<Block*>(word_); }
    // Of a text without a block.
    std::size_t shortLength() const { return word_ >> 1 & 7; }
    std::uint64_t shortUnits() const { return word_ >> 8; }  // the first one lowest, then zeros
    /// Writes eight units: those of the text and zeros.
    void widenShort(char16_t* to) const {
        const std::uint64_t units = shortUnits();
#if defined(__GNUC__)
        if constexpr (std::endian::native == std::endian::little) {
            using Narrow = std::uint8_t __attribute__((vector_size(8)));
            using Wide = std::uint16_t __attribute__((vector_size(16)));
            Narrow narrow;
            std::memcpy(&narrow, &units, sizeof narrow);
            const Wide wide = __builtin_convertvector(narrow, Wide);
            std::memcpy(to, &wide, sizeof wide);
            return;
        }
#endif
        for (int i = 0; i < 8; ++i) to[i] = static_cast<char16_t>(units >> 8 * i & 0xFF);
    }
    void freeBlock();
    void copyUnits(std::size_t from, std::size_t count, char16_t* to) const;

    // 0 for the empty text; the address of a block; or, when bit 0 is set, the text itself: its
    // length in bits 1 to 3 and its units in the bytes above.
    std::uintptr_t word_ = 0;
};

/// Shows the units of a tree's texts one after the other without making strings of them: of a text
/// that is kept as UTF-16 where they lie, of any other one widened into memory that is used again.
class RYNCOMMON_API RyTextBuffer {
public:
    RyTextBuffer() = default;
    RyTextBuffer(const RyTextBuffer&) = delete;
    RyTextBuffer& operator=(const RyTextBuffer&) = delete;

    /// The units, valid until the next call and as long as `text` lives unchanged.
    std::u16string_view read(const RyCompactText& text) {
        if (text.hasBlock()) return readBlock(text);
        char16_t* const to = makeRoom(0);
        text.widenShort(to);
        return {to, text.shortLength()};
    }
    /// Those of a copy of the string.
    std::u16string_view read(const UnicodeString& text);

private:
    static constexpr std::size_t LEAST = 256;  // units, more than any text without a block has

    char16_t* makeRoom(std::size_t length) {
        if (length >= capacity_) grow(length);
        return room_.get();
    }
    void grow(std::size_t length);
    std::u16string_view readBlock(const RyCompactText& text);

    std::unique_ptr<char16_t[]> room_;
    std::size_t capacity_ = 0;
};

}  // namespace RynCommon
