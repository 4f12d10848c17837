// The shared constant strings, and exact-size storage of text.
#pragma once

#include <cstddef>

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
    struct Block;

    bool hasBlock() const { return word_ != 0 && (word_ & 1) == 0; }
    Block* block() const { return reinterpret_cast<Block*>(word_); }
    void freeBlock();
    void copyUnits(std::size_t from, std::size_t count, char16_t* to) const;

    // 0 for the empty text; the address of a block; or, when bit 0 is set, the text itself: its
    // length in bits 1 to 3 and its units in the bytes above.
    std::uintptr_t word_ = 0;
};

}  // namespace RynCommon
