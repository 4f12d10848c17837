// Colours inside of values.
//
// A plain colour is an integer of the colour unit. Any other is a compound of that unit with these
// entries. Their names are built in, except for those of the six ICC values, so that values of the
// other kinds intern nothing:
//
//   rgb                          plain colour value: the sRGB value, or a reserved one
//   color-profile                name: #CMYK, #GRAYSCALE, #SEPARATION or icc-color
//   name                         literal: colorant or ICC profile
//   cyan magenta yellow black    components of CMYK, and of the alternate of a separation
//   gray                         level of gray
//   level                        tint of a separation
//   value-0 to value-5           components of an ICC colour
//   fallback, active, alternate  true or false: whether the sRGB value, the tint, the alternate was
//   given
#include "values/ColorValue.h"

#include <span>

#include <RynCommon/RyNamedValue.h>

#include "core/NameTable.h"
#include "values/ColorParts.h"

namespace RynCommon {

namespace {

constexpr RyNameEnum CMYK_ENTRIES[] = {RN_cyan, RN_magenta, RN_yellow, RN_black};
constexpr RyNameEnum GRAY_ENTRIES[] = {RN_gray};
constexpr RyNameEnum SEPARATION_ENTRIES[] = {RN_level, RN_cyan, RN_magenta, RN_yellow, RN_black};
/// Flag entries, by the byte of the flags.
constexpr RyNameEnum FLAG_ENTRIES[] = {RN_fallback, RN_active, RN_alternate};

std::span<const RyNameEnum> getEntryNames(RyNameEnum profileType) {
    switch (profileType) {
        case RN_hash_CMYK:
            return CMYK_ENTRIES;
        case RN_hash_GRAYSCALE:
            return GRAY_ENTRIES;
        case RN_hash_SEPARATION:
            return SEPARATION_ENTRIES;
        default:
            return {};
    }
}

RyName getComponentName(RyNameEnum profileType, std::size_t index) {
    const auto names = getEntryNames(profileType);
    if (index < names.size()) return names[index];
    char16_t text[] = u"value-0";
    text[6] = static_cast<char16_t>(u'0' + index);
    return internSharedName(text, 7);
}

std::size_t countFlags(RyNameEnum profileType) {
    if (!ColorParts::hasFlags(profileType)) return 0;
    return profileType == RN_hash_SEPARATION ? 3 : 1;
}

void setComponents(RyNamedValueMap& map, const ColorParts& parts) {
    const RyNameEnum kind = parts.profileType;
    const std::size_t count = ColorParts::countComponents(kind);
    for (std::size_t i = 0; i < count; ++i)
        map.setNamedItem(getComponentName(kind, i), RyValue(parts.getComponent(i)));
    for (std::size_t i = 0; i < countFlags(kind); ++i)
        map.setNamedItem(FLAG_ENTRIES[i], RyValue((parts.slots[count] >> 8 * i & 0xFF) != 0));
}

void getComponents(const RyNamedValueMap& map, ColorParts& parts) {
    const RyNameEnum kind = parts.profileType;
    const std::size_t count = ColorParts::countComponents(kind);
    for (std::size_t i = 0; i < count; ++i) {
        const RyNamedValue entry = map.getNamedItem(getComponentName(kind, i));
        parts.setComponent(i, clampComponent(entry.getRealValue(RYUNIT_NUMBER)));
    }
    for (std::size_t i = 0; i < countFlags(kind); ++i)
        if (map.getNamedItem(FLAG_ENTRIES[i]).isTrue()) parts.slots[count] |= 1u << 8 * i;
}

bool readCompound(const RyNamedValueMap& map, RyColor& color) {
    const RyNamedValue rgb = map.getNamedItem(RN_rgb);
    ColorParts parts;
    parts.profileType = map.getNamedItem(RN_color_profile).getNameValue();
    if (!rgb.isColor() || !rgb.isInteger()) return false;
    if (ColorParts::countComponents(parts.profileType) == 0) return false;
    parts.rgb = static_cast<std::uint32_t>(rgb.getIntegerValue());
    parts.name = map.getNamedItem(RN_name).getStringValue();
    getComponents(map, parts);
    color = parts.toColor();
    return true;
}

}  // namespace

RyValue makeColorValue(std::uint32_t rgb) {
    RyValue value(rgb);
    value.setUnitType(RYUNIT_COLOR);
    return value;
}

bool readColorValue(const RyValue& value, RyColor& color) {
    if (!value.isColor()) return false;
    if (value.isCompound()) return readCompound(*value.getNamedValueMap(), color);
    color = RyColor(value.getIntegerValue());
    return true;
}

RyValue::RyValue(const RyColor& color) {
    if (color.getProfileType().isEmpty()) {
        *this = makeColorValue(color.getRGB());
        return;
    }
    const ColorParts parts(color);
    const RyPtr<RyNamedValueMap> map(new RyNamedValueMap);
    map->setNamedItem(RN_rgb, makeColorValue(parts.rgb));
    map->setNamedItem(RN_color_profile, RyValue(parts.profileType));
    if (!parts.name.isEmpty()) map->setNamedItem(RN_name, RyValue(parts.name, RYUNIT_LITERAL));
    setComponents(*map, parts);
    *this = RyValue(map.get());
    setUnitType(RYUNIT_COLOR);
}

RyColor RyValue::getColorValue() const {
    RyColor color = RyColor::getInvalidColor();
    if (isName()) return RyColor(RyName(getNameValue()));
    readColorValue(*this, color);
    return color;
}

RyColor RyColor::fromValue(const RyValue& value) {
    return value.getColorValue();
}

}  // namespace RynCommon
