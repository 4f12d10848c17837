// Shift_JIS codes of UTF-16 units.
#pragma once

#include <array>
#include <cstdint>
#include <memory>

struct UConverter;

namespace RynCommon {

/// Encodes single units by code page 932, the form of Shift_JIS in use. A unit counts as present
/// only when its code converts back to it, so that no reader sees another character. Codes are
/// worked out for 256 units at a time, when the first of them is asked for.
class ShiftJisEncoder {
public:
    /// One byte, two bytes, or neither.
    struct Code {
        static constexpr std::uint16_t UNKNOWN = 0;
        static constexpr std::uint16_t MISSING = 0xFFFF;

        std::uint16_t bytes = UNKNOWN;

        bool isMissing() const { return bytes == MISSING; }
        bool isDouble() const { return bytes > 0xFF; }
    };

    ShiftJisEncoder();
    ~ShiftJisEncoder();
    ShiftJisEncoder(const ShiftJisEncoder&) = delete;
    ShiftJisEncoder& operator=(const ShiftJisEncoder&) = delete;

    /// The code of a unit from U+0080 on. Surrogates are missing.
    Code encode(char16_t unit) {
        if (const std::unique_ptr<Page>& page = pages_[unit >> 8]) {
            const Code code = (*page)[unit & 0xFF];
            if (code.bytes != Code::UNKNOWN) return code;
        }
        return findCode(unit);
    }

private:
    using Page = std::array<Code, 256>;

    Code findCode(char16_t unit);
    Code convert(char16_t unit) const;

    UConverter* converter_;
    std::array<std::unique_ptr<Page>, 256> pages_;
};

}  // namespace RynCommon
