// Colours: construction, access and conversion.
#include <RynCommon/RyColor.h>

#include <unicode/locid.h>
#include <algorithm>
#include <charconv>

#include <RynCommon/RyString.h>

#include "values/ColorKeywords.h"
#include "values/ColorParts.h"

namespace RynCommon {

namespace {

constexpr std::uint32_t pack(std::uint32_t r, std::uint32_t g, std::uint32_t b) {
    return r << 16 | g << 8 | b;
}

/// A level of 0 to 1 as a byte, rounded half up.
std::uint32_t toByte(float level) {
    return static_cast<std::uint32_t>(level * 255 + 0.5F);
}

/// What is left of a channel under an ink and black, both in 0 to 1.
std::uint32_t toChannel(float ink, float black) {
    const float t = std::min((1 - black) * ink + black, 1.0F);
    return toByte(1 - t);
}

constexpr std::uint32_t RGB_FLAG = 1;
constexpr std::uint32_t TINT_FLAG = 1 << 8;
constexpr std::uint32_t CMYK_FLAG = 1 << 16;

/// Six significant digits, as "%g" writes them.
struct Digits {
    explicit Digits(float value)
        : end(std::to_chars(buffer.data(), buffer.data() + buffer.size(),
                            static_cast<double>(value), std::chars_format::general, 6)
                  .ptr) {}
    std::array<char, 32> buffer;
    char* end;
};

struct Channels {
    explicit Channels(std::uint32_t rgb)
        : r(RyColor::getR(rgb)), g(RyColor::getG(rgb)), b(RyColor::getB(rgb)) {}
    bool isBetween(const Channels& low, const Channels& high) const {
        return r >= low.r && r <= high.r && g >= low.g && g <= high.g && b >= low.b && b <= high.b;
    }
    int r;
    int g;
    int b;
};

/// What is computed for a separation whose components are those of `parts` times `factor`.
std::uint32_t computeRgb(const ColorParts& parts, bool hasCMYK, float factor) {
    const auto component = [&](std::size_t i) {
        return roundComponent(parts.getComponent(i)) * factor;
    };
    if (!hasCMYK) return grayToRgb(1 - clampComponent(component(0)));
    return RyColor::cmyk2rgb(component(1), component(2), component(3), component(4));
}

}  // namespace

float roundComponent(float value) {
    const Digits digits(value);
    float rounded = value;
    std::from_chars(digits.buffer.data(), digits.end, rounded);
    return rounded;
}

bool isSameComponent(float a, float b) {
    return a == b || roundComponent(a) == roundComponent(b);
}

std::uint32_t grayToRgb(float gray) {
    const std::uint32_t level = toByte(clampComponent(gray));
    return pack(level, level, level);
}

std::size_t ColorParts::countComponents(RyNameEnum profileType) {
    switch (profileType) {
        case RN_hash_CMYK:
            return 4;
        case RN_hash_GRAYSCALE:
            return 1;
        case RN_hash_SEPARATION:
            return 5;
        case RN_icc_color:
            return 6;
        default:
            return 0;
    }
}

bool isComputedRgb(std::uint32_t rgb, const ColorParts& parts, bool hasCMYK) {
    // A little more ink is darker in every channel. The margin is a unit in the sixth digit.
    const Channels dark(computeRgb(parts, hasCMYK, 1 + 1e-5F));
    const Channels light(computeRgb(parts, hasCMYK, 1 - 1e-5F));
    return rgb <= 0xFFFFFF && Channels(rgb).isBetween(dark, light);
}

RyColor::RyColor(Plain, std::uint32_t rgb) : rgb_(rgb) {
    const bool isReserved = rgb == TRANSPARENT_RGB || rgb == CURRENT_RGB || rgb == INVALID_RGB;
    if (!isReserved) rgb_ &= 0xFFFFFF;
}

RyColor::RyColor(int r, int g, int b)
    : rgb_(pack(static_cast<std::uint32_t>(std::clamp(r, 0, 255)),
                static_cast<std::uint32_t>(std::clamp(g, 0, 255)),
                static_cast<std::uint32_t>(std::clamp(b, 0, 255)))) {}

RyColor::RyColor(float gray) : RyColor(RyColor(grayToRgb(gray)), gray) {}

RyColor::RyColor(const RyColor& base, float gray) {
    ColorParts parts;
    parts.rgb = base.isInvalid() ? 0 : base.rgb_;
    parts.profileType = RN_hash_GRAYSCALE;
    parts.setComponent(0, clampComponent(gray));
    parts.slots[1] = RGB_FLAG;
    *this = parts.toColor();
}

RyColor::RyColor(float c, float m, float y, float k)
    : RyColor(RyColor(cmyk2rgb(c, m, y, k)), c, m, y, k) {}

RyColor::RyColor(const RyColor& base, float c, float m, float y, float k) {
    ColorParts parts;
    parts.rgb = base.isInvalid() ? 0 : base.rgb_;
    parts.profileType = RN_hash_CMYK;
    parts.setComponent(0, clampComponent(c));
    parts.setComponent(1, clampComponent(m));
    parts.setComponent(2, clampComponent(y));
    parts.setComponent(3, clampComponent(k));
    parts.slots[4] = RGB_FLAG;
    *this = parts.toColor();
}

RyColor::RyColor(const UnicodeString& name, float tint)
    : RyColor(RyColor(grayToRgb(1 - clampComponent(tint))), name, tint) {
    adjustSeparationFlags(false, true, false);
}

RyColor::RyColor(const RyColor& base, const UnicodeString& name, float tint)
    : RyColor(base, name, tint, 1, 1, 1, 1) {
    adjustSeparationFlags(true, true, false);
}

RyColor::RyColor(const UnicodeString& name, float tint, float c, float m, float y, float k)
    : RyColor(RyColor(cmyk2rgb(c, m, y, k)), name, tint, c, m, y, k) {
    adjustSeparationFlags(false, true, true);
}

RyColor::RyColor(const RyColor& base, const UnicodeString& name, float tint, float c, float m,
                 float y, float k) {
    ColorParts parts;
    parts.rgb = base.isInvalid() ? 0 : base.rgb_;
    parts.profileType = RN_hash_SEPARATION;
    parts.name = name.isEmpty() ? UnicodeString(u"All", 3) : name;
    parts.setComponent(0, clampComponent(tint));
    parts.setComponent(1, clampComponent(c));
    parts.setComponent(2, clampComponent(m));
    parts.setComponent(3, clampComponent(y));
    parts.setComponent(4, clampComponent(k));
    parts.slots[5] = RGB_FLAG | TINT_FLAG | CMYK_FLAG;
    *this = parts.toColor();
}

RyColor::RyColor(const RyColor& base, const UnicodeString& profile, float value0, float value1,
                 float value2, float value3) {
    ColorParts parts;
    parts.rgb = base.isInvalid() ? 0 : base.rgb_;
    parts.profileType = RN_icc_color;
    parts.name = profile;
    parts.setComponent(0, clampComponent(value0));
    parts.setComponent(1, clampComponent(value1));
    parts.setComponent(2, clampComponent(value2));
    parts.setComponent(3, clampComponent(value3));
    *this = parts.toColor();
}

RyColor::RyColor(RyName keyword) : RyColor(Plain(), findKeywordRgb(keyword)) {}

bool RyColor::isRegistrationName(const UnicodeString& name) {
    return UnicodeString(name).toLower(icu::Locale::getRoot()) == UnicodeString(u"all", 3);
}

float RyColor::getSlot(std::size_t index) const {
    return std::bit_cast<float>(slots_[index]);
}

float RyColor::getICCValue(int index) const {
    return index >= 0 && index < 6 ? getSlot(static_cast<std::size_t>(index)) : 0;
}

void RyColor::adjustSeparationFlags(bool rgb, bool tint, bool cmyk) {
    if (!isSeparation()) return;
    slots_[5] = (rgb ? RGB_FLAG : 0) | (tint ? TINT_FLAG : 0) | (cmyk ? CMYK_FLAG : 0);
}

RyName RyColor::getICCColorProfileName() const {
    return isICCColorProfile() ? RyName(name_) : RyName();
}

const UnicodeString& RyColor::getSeparationColorName() const {
    return isSeparation() ? name_ : RyEmptyString::EMPTY_VALUE;
}

unsigned int RyColor::getSeparationRGB() const {
    if (!isSeparation()) return rgb_;
    const float tint = getSeparationTint();
    if (!hasSeparationCMYK()) return grayToRgb(1 - tint);
    return cmyk2rgb(getSeparationC() * tint, getSeparationM() * tint, getSeparationY() * tint,
                    getSeparationK() * tint);
}

unsigned int RyColor::cmyk2rgb(float c, float m, float y, float k) {
    const float black = clampComponent(k);
    return pack(toChannel(clampComponent(c), black), toChannel(clampComponent(m), black),
                toChannel(clampComponent(y), black));
}

RyColor RyColor::rgb2cmyk(unsigned int rgb) {
    const float c = 1 - static_cast<float>(getR(rgb)) / 255;
    const float m = 1 - static_cast<float>(getG(rgb)) / 255;
    const float y = 1 - static_cast<float>(getB(rgb)) / 255;
    const float k = std::min({c, m, y});
    return RyColor(c - k, m - k, y - k, k);
}

RyColor RyColor::getDark() const {
    return RyColor(2 * getR() / 3, 2 * getG() / 3, 2 * getB() / 3);
}

RyColor RyColor::getLight() const {
    return RyColor(255 - (255 - getR()) / 2, 255 - (255 - getG()) / 2, 255 - (255 - getB()) / 2);
}

RyName RyColor::getColorName() const {
    return findColorKeyword(rgb_);
}

bool operator==(const RyColor& a, const RyColor& b) {
    if (a.rgb_ != b.rgb_ || a.profileType_ != b.profileType_) return false;
    const RyNameEnum kind = a.profileType_;
    // Only four values of an ICC colour count.
    const std::size_t count = kind == RN_icc_color ? 4 : ColorParts::countComponents(kind);
    for (std::size_t i = 0; i < count; ++i)
        if (!isSameComponent(a.getSlot(i), b.getSlot(i))) return false;
    if (ColorParts::hasFlags(kind) && a.slots_[count] != b.slots_[count]) return false;
    return a.name_ == b.name_ || (a.isRegistration() && b.isRegistration());
}

}  // namespace RynCommon
