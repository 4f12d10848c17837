// The parts of interned names: the built-in look-up, the table of run-time names, and interning by
// view.
#pragma once

#include <array>
#include <atomic>
#include <bit>
#include <memory>

#include <RynCommon/Forward.h>
#include <RynCommon/RyNameEnum.h>

#include "core/TextHash.h"

namespace RynCommon {

/// Number of a built-in name; 0 for any other text. Takes no lock and allocates nothing.
RyNameEnum findBuiltinName(const char16_t* text, std::int32_t length) noexcept;

/// Text of a built-in number or of 0. `number` is in 0 to RYNAME_BUILTIN_LAST. Takes no lock.
const UnicodeString& builtinNameString(RyNameEnum number);

/// Interns in the shared table by view: a text that is known already makes no string.
RyNameEnum internSharedName(const char16_t* text, std::int32_t length);

/// Counts the shared tables that are gone. Numbers of run-time names are good for one generation.
unsigned sharedNameGeneration() noexcept;

/// The run-time names of a table: numbers from RYNAME_BUILTIN_LAST + 1 on, in the order of first
/// use.
///
/// Insertions are the caller's to serialise. Everything else may be asked at any time, also during
/// an insertion, without a lock. A failed insertion leaves the table as it was.
class RuntimeNames {
public:
    RuntimeNames();
    ~RuntimeNames();
    RuntimeNames(const RuntimeNames&) = delete;
    RuntimeNames& operator=(const RuntimeNames&) = delete;

    /// The texts of all numbers up to this one may be read.
    RyNameEnum last() const {
        return static_cast<RyNameEnum>(last_.load(std::memory_order_acquire));
    }
    /// The hash that the operations below take, so that it can be worked out before a lock is
    /// taken.
    static std::uint32_t hash(const char16_t* text, std::int32_t length) noexcept {
        return static_cast<std::uint32_t>(
            hashText(text, static_cast<std::size_t>(length), textHashSeed()));
    }
    /// The number, or 0 for an unknown text. A text that is being inserted is known or not.
    RyNameEnum find(const char16_t* text, std::int32_t length, std::uint32_t hash) const;
    /// The number, which is the next free one for an unknown text.
    RyNameEnum intern(const char16_t* text, std::int32_t length, std::uint32_t hash);
    /// `number` is in RYNAME_BUILTIN_LAST + 1 to last().
    const UnicodeString& text(RyNameEnum number) const {
        const Place place = placeOf(static_cast<std::size_t>(number - RYNAME_BUILTIN_LAST - 1));
        return blocks_[place.block].load(std::memory_order_relaxed)[place.offset];
    }

private:
    class Index;

    const Index& index() const { return *index_.load(std::memory_order_acquire); }
    bool isText(std::int32_t number, const char16_t* text, std::int32_t length) const;
    void growIndex();
    void appendText(const char16_t* text, std::int32_t length);
    std::size_t count() const;
    /// Where the text at `index` lies.
    struct Place {
        std::size_t block;
        std::size_t offset;
    };
    static Place placeOf(std::size_t index) {
        const auto block = static_cast<std::size_t>(std::bit_width(index / FIRST_BLOCK + 1)) - 1;
        return {block, index - FIRST_BLOCK * ((std::size_t{1} << block) - 1)};
    }

    std::unique_ptr<Index> ownedIndex_;
    std::atomic<const Index*> index_;  // the same, for readers
    // Texts never move: block k has room for FIRST_BLOCK << k of them, so that a number leads to
    // its text by two shifts. A block is stored before last_ tells of a text in it.
    static constexpr std::size_t FIRST_BLOCK = 1024;
    static constexpr std::size_t MOST_BLOCKS = 21;
    std::array<std::atomic<UnicodeString*>, MOST_BLOCKS> blocks_{};
    std::atomic<std::int32_t> last_{RYNAME_BUILTIN_LAST};
};

}  // namespace RynCommon
