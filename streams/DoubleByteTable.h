// What the bytes of a double-byte encoding mean, as two flat tables.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>

#include <unicode/ucnv.h>

namespace RynCommon::streams {

/// The characters of one encoding, as far as they are one byte, or two of which the first is 0x80
/// or more, and one unit. All bytes below 0x80 are. Never changes once it is made.
struct DoubleByteTable {
    /// Marks bytes that the tables do not decide. No pair means U+0000, and a single byte that does
    /// is below 0x80.
    static constexpr char16_t NONE = 0;
    /// Room for the oddities of every encoding that ICU has.
    static constexpr std::size_t MAX_ODDITIES = 5;

    /// Where a pair stands in `pairs`. `lead` is 0x80 or more.
    static constexpr std::size_t indexOf(std::uint8_t lead, std::uint8_t trail) {
        return (lead & 0x7Fu) << 8 | trail;
    }

    /// Whether there are oddities.
    bool odd = false;
    /// The bytes below 0x80 that are not ASCII, each eight times: those of a yen or won sign and an
    /// overline, and of control characters that IBM's tables exchange. Unused ones repeat the
    /// first.
    std::array<std::uint64_t, MAX_ODDITIES> oddities{};
    /// The character that a byte is on its own.
    std::array<char16_t, 256> singles;
    /// The character that two bytes are together, by indexOf(); U+FFFD where they are taken
    /// together and mean none.
    std::array<char16_t, 0x8000> pairs;
};

/// Makes the table by asking `converter`, which is in its initial state and remains in it, and
/// which has to write one U+FFFD for what is no character. Null when bytes below 0x80 are anything
/// but single characters, nearly all of them ASCII.
std::unique_ptr<DoubleByteTable> makeDoubleByteTable(UConverter& converter);

/// The table for a converter as above, made once for each of ICU's converters and kept until
/// RyUtil::cleanup. Null when the converter is not for an encoding of single and double bytes. Safe
/// from any thread.
std::shared_ptr<const DoubleByteTable> acquireDoubleByteTable(UConverter& converter);

}  // namespace RynCommon::streams
