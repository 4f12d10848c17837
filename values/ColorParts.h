// What colours are made of, for the rooms that print, read and store them.
//
// A colour keeps its components in six slots of 32 bits, floats first, with its flags as bytes of
// the slot after them:
//
//   CMYK         C, M, Y, K, flags (byte 0: sRGB value given)
//   grayscale    gray, flags (byte 0: sRGB value given)
//   separation   tint, C, M, Y, K, flags (byte 0: sRGB value, 1: tint, 2: alternate given)
//   ICC          six values
#pragma once

#include <array>
#include <bit>

#include <RynCommon/RyColor.h>

namespace RynCommon {

/// 0 to 1; NaN gives 0.
constexpr float clampComponent(float value) {
    if (!(value > 0)) return 0;
    return value < 1 ? value : 1;
}

/// The float next to the six digits that texts carry of a component.
float roundComponent(float value);

/// Whether two components have the same six digits.
bool isSameComponent(float a, float b);

/// The 0x00RRGGBB of a level of gray.
std::uint32_t grayToRgb(float gray);

/// All fields of a colour, open to be read and set.
struct ColorParts {
    using Slots = std::array<std::uint32_t, 6>;

    ColorParts() = default;
    explicit ColorParts(const RyColor& color)
        : rgb(color.rgb_),
          profileType(color.profileType_),
          name(color.name_),
          slots(color.slots_) {}

    RyColor toColor() const {
        RyColor color(RyColor::Plain(), rgb);
        color.profileType_ = profileType;
        color.name_ = name;
        color.slots_ = slots;
        return color;
    }
    float getComponent(std::size_t index) const { return std::bit_cast<float>(slots[index]); }
    void setComponent(std::size_t index, float value) {
        slots[index] = std::bit_cast<std::uint32_t>(value);
    }

    /// Number of components of a kind, of which the flags are the slot after; 0 for an unknown
    /// kind.
    static std::size_t countComponents(RyNameEnum profileType);
    /// Whether the kind has flags.
    static bool hasFlags(RyNameEnum profileType) {
        return profileType != RN_icc_color && countComponents(profileType) != 0;
    }

    std::uint32_t rgb = 0;
    RyName profileType;
    UnicodeString name;
    Slots slots{};
};

/// Whether `rgb` may be what is computed for a separation with the components of `parts` where no
/// sRGB value is given. Components count as known to six digits only.
bool isComputedRgb(std::uint32_t rgb, const ColorParts& parts, bool hasCMYK);

}  // namespace RynCommon
