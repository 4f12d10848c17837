// Colours: an sRGB triple, optionally qualified by a colour profile.
#pragma once

#include <array>
#include <concepts>

#include <RynCommon/Forward.h>
#include <RynCommon/RyName.h>

namespace RynCommon {

/// A colour. Every colour has an sRGB value, 0x00RRGGBB, or one of three reserved values: the
/// transparent, the current and the invalid colour. A plain colour is no more than that; the other
/// kinds carry a profile: device CMYK, a level of gray, a separation (a named colorant with a tint
/// and, perhaps, an alternate CMYK colour) or an ICC profile with component values. The sRGB value
/// of those is what stands for them where the profile cannot be used (the fallback).
///
/// Components lie in 0 to 1; constructors clamp them first, NaN counts as 0. A base colour gives
/// its sRGB value only, and the invalid colour as a base counts as black. No operation throws,
/// except for lack of memory. A plain value, not synchronised.
class RYNCOMMON_API RyColor {
public:
    /// Plain black.
    RyColor() = default;
    /// A plain colour. Of numbers that are neither an sRGB value nor reserved the low 24 bits are
    /// taken.
    template <std::integral T>
    requires(!std::same_as<T, bool>) explicit RyColor(T rgb)
        : RyColor(Plain(), static_cast<std::uint32_t>(rgb)) {}
    template <std::same_as<bool> Bool>
    explicit RyColor(Bool) = delete;
    /// A plain colour; each component is clamped to 0 to 255.
    RyColor(int r, int g, int b);
    /// A level of gray, 0 black.
    explicit RyColor(float gray);
    RyColor(const RyColor& base, float gray);
    /// CMYK, the sRGB value being cmyk2rgb of the components.
    RyColor(float c, float m, float y, float k);
    RyColor(const RyColor& base, float c, float m, float y, float k);
    /// A separation without an alternate; an empty name stands for "All". The alternate components
    /// read as 1, the sRGB value is the gray of 1 - tint.
    RyColor(const UnicodeString& name, float tint);
    RyColor(const RyColor& base, const UnicodeString& name, float tint);
    /// A separation with an alternate. The sRGB value is cmyk2rgb of the alternate, without regard
    /// to the tint.
    RyColor(const UnicodeString& name, float tint, float c, float m, float y, float k);
    RyColor(const RyColor& base, const UnicodeString& name, float tint, float c, float m, float y,
            float k);
    /// A colour of the ICC profile of that name.
    RyColor(const RyColor& base, const UnicodeString& profile, float value0, float value1,
            float value2, float value3);
    /// The colour of a keyword: the 147 of SVG 1.1, "transparent" and "currentColor". Any other
    /// name is tried again in lower case (of the root locale); the invalid colour when that is no
    /// keyword, either. Interns nothing.
    explicit RyColor(RyName keyword);
    explicit RyColor(RyNameEnum keyword) : RyColor(RyName(keyword)) {}
    /// See RyValue::getColorValue.
    template <std::same_as<RyValue> Value>
    explicit RyColor(const Value& value) : RyColor(fromValue(value)) {}

    /// The reserved colours.
    static RyColor getTransparent() { return RyColor(TRANSPARENT_RGB); }
    static RyColor getCurrentColor() { return RyColor(CURRENT_RGB); }
    static RyColor getInvalidColor() { return RyColor(INVALID_RGB); }
    bool isTransparent() const { return rgb_ == TRANSPARENT_RGB; }
    bool isCurrentColor() const { return rgb_ == CURRENT_RGB; }
    bool isInvalid() const { return rgb_ == INVALID_RGB; }

    unsigned int getRGB() const { return rgb_; }
    operator unsigned int() const { return rgb_; }
    int getR() const { return getR(rgb_); }
    int getG() const { return getG(rgb_); }
    int getB() const { return getB(rgb_); }
    static int getR(unsigned int rgb) { return static_cast<int>(rgb >> 16 & 0xFF); }
    static int getG(unsigned int rgb) { return static_cast<int>(rgb >> 8 & 0xFF); }
    static int getB(unsigned int rgb) { return static_cast<int>(rgb & 0xFF); }
    /// With red and blue exchanged: 0x00BBGGRR.
    unsigned int getBGR() const { return reverseRGB(rgb_); }
    static unsigned int reverseRGB(unsigned int rgb) {
        return (rgb & 0xFF00FF00u) | (rgb >> 16 & 0xFF) | (rgb & 0xFF) << 16;
    }
    static RyColor fromBGR(unsigned int bgr) { return RyColor(reverseRGB(bgr)); }

    /// "#CMYK", "#GRAYSCALE", "#SEPARATION" or "icc-color"; the empty name for a plain colour.
    RyName getProfileType() const { return profileType_; }
    bool isCMYK() const { return profileType_ == RN_hash_CMYK; }
    bool isGrayscale() const { return profileType_ == RN_hash_GRAYSCALE; }
    bool isSeparation() const { return profileType_ == RN_hash_SEPARATION; }
    bool isICCColorProfile() const { return profileType_ == RN_icc_color; }
    /// A separation that prints on every plate: its name is "All" in any case of letters.
    bool isRegistration() const { return isSeparation() && isRegistrationName(name_); }
    static bool isRegistrationName(const UnicodeString& name);

    /// The components share their storage; each of these is meaningful for its own kind only and
    /// reads whatever lies in its place for the others.
    float getC() const { return getSlot(0); }
    float getM() const { return getSlot(1); }
    float getY() const { return getSlot(2); }
    float getK() const { return getSlot(3); }
    float getGrayscale() const { return getSlot(0); }
    float getSeparationTint() const { return getSlot(0); }
    float getSeparationC() const { return getSlot(1); }
    float getSeparationM() const { return getSlot(2); }
    float getSeparationY() const { return getSlot(3); }
    float getSeparationK() const { return getSlot(4); }
    /// `index` 0 to 5; 0 outside of that.
    float getICCValue(int index) const;

    /// Whether the sRGB value was given rather than computed from the components where none was.
    bool hasCMYKRGB() const { return isCMYK() && hasFlag(4, 0); }
    bool hasGrayscaleRGB() const { return isGrayscale() && hasFlag(1, 0); }
    bool hasSeparationRGB() const { return isSeparation() && hasFlag(5, 0); }
    bool hasSeparationTint() const { return isSeparation() && hasFlag(5, 1); }
    bool hasSeparationCMYK() const { return isSeparation() && hasFlag(5, 2); }
    /// Sets the three flags of a separation, and nothing else; other kinds stay as they are. A text
    /// does not carry what the flags then contradict (an sRGB value that is said to be computed and
    /// is not, a tint said to be missing).
    void adjustSeparationFlags(bool rgb, bool tint, bool cmyk);

    /// Name of the ICC profile, interned; the empty name for other kinds.
    RyName getICCColorProfileName() const;
    /// Name of the colorant; empty for other kinds.
    const UnicodeString& getSeparationColorName() const;
    /// What a separation looks like: cmyk2rgb of the alternate scaled by the tint, or the gray of 1
    /// - tint when there is no alternate. For other kinds the sRGB value.
    unsigned int getSeparationRGB() const;

    static unsigned int cmyk2rgb(float c, float m, float y, float k);
    /// The CMYK colour that takes the gray part of each channel as black. Its sRGB value is
    /// computed by cmyk2rgb, and as the inks are not scaled by what black leaves, it is lighter
    /// than `rgb` for mixed colours, deliberately.
    static RyColor rgb2cmyk(unsigned int rgb);

    /// A plain colour of two thirds of each channel.
    RyColor getDark() const;
    /// A plain colour half way to white in each channel.
    RyColor getLight() const;

    /// The keyword of the sRGB value (or of a reserved one), the one of the lowest name number
    /// where two fit: "aqua", "fuchsia", the "gray" spellings. The empty name when there is none.
    RyName getColorName() const;

    /// The text form. Plain: the keyword, when `named` and there is one, or "#RRGGBB";
    /// "transparent", "currentColor"; nothing for the invalid colour. With a profile: "#RRGGBB
    /// icc-color(#CMYK,c,m,y,k)" when `named`, else "rgb-icc(r,g,b,#CMYK,c,m,y,k)", a level of gray
    /// likewise with "#GRAYSCALE" and one number, a separation with its name, the tint and, when
    /// there is one, its alternate, an ICC colour with its name and four values. Names that are no
    /// plain words are quoted. Numbers are written as "%g".
    ///
    /// RyValue::parseColor(text, true) reads the text back as an equal colour. Two forms serve
    /// that: "rgb-icc(" leaves r, g, b out where no sRGB value was given to a CMYK colour or a
    /// level of gray, and a separation that was given the very sRGB value which would be computed
    /// for it has "#SEPARATION" in front of its name. A reserved sRGB value is written as its
    /// keyword in front of "icc-color(". The `named` form always shows an sRGB value, and so a CMYK
    /// colour or a level of gray without a given one comes back from it as if that value had been
    /// given.
    UnicodeString toString(bool named) const;

    /// Equal sRGB values and profiles with equal components, flags and names (two registration
    /// names are equal). Components are equal when they agree to the six digits that the text form
    /// carries.
    friend RYNCOMMON_API bool operator==(const RyColor& a, const RyColor& b);
    friend bool operator!=(const RyColor& a, const RyColor& b) { return !(a == b); }

private:
    friend struct ColorParts;

    static constexpr std::uint32_t TRANSPARENT_RGB = 0xFFFFFFFF;
    static constexpr std::uint32_t CURRENT_RGB = 0xFE000000;
    static constexpr std::uint32_t INVALID_RGB = 0xFF000000;

    struct Plain {};
    RyColor(Plain, std::uint32_t rgb);
    static RyColor fromValue(const RyValue& value);
    float getSlot(std::size_t index) const;
    bool hasFlag(std::size_t slot, int byte) const {
        return (slots_[slot] >> 8 * byte & 0xFF) != 0;
    }

    std::uint32_t rgb_ = 0;
    RyName profileType_;
    /// Name of the ICC profile or of the colorant.
    UnicodeString name_;
    /// Components as the bits of floats, and bytes of flags after them; see values/ColorParts.h.
    std::array<std::uint32_t, 6> slots_{};
};

}  // namespace RynCommon
