// The colour keywords of SVG 1.1, "transparent" and "currentColor".
#include "values/ColorKeywords.h"

#include <unicode/locid.h>
#include <algorithm>
#include <array>

#include <RynCommon/RyColor.h>

#include "core/NameTable.h"

namespace RynCommon {

namespace {

constexpr std::uint32_t TRANSPARENT = 0xFFFFFFFF;
constexpr std::uint32_t CURRENT = 0xFE000000;
constexpr std::uint32_t INVALID = 0xFF000000;

struct Keyword {
    RyNameEnum name;
    std::uint32_t rgb;
};

#define RYN_COLOR_KEYWORD(keyword, rgb) Keyword{RN_##keyword, rgb},
constexpr std::array KEYWORDS = {
#include "values/ColorKeywords.inc"
    Keyword{RN_transparent, TRANSPARENT}, Keyword{RN_currentColor, CURRENT}};
#undef RYN_COLOR_KEYWORD

using Keywords = std::remove_const_t<decltype(KEYWORDS)>;

constexpr bool isLowerName(const Keyword& a, const Keyword& b) {
    return a.name < b.name;
}
constexpr bool isLowerRgb(const Keyword& a, const Keyword& b) {
    return a.rgb != b.rgb ? a.rgb < b.rgb : a.name < b.name;
}

consteval Keywords sortKeywords(bool (*isLower)(const Keyword&, const Keyword&)) {
    Keywords keywords = KEYWORDS;
    std::sort(keywords.begin(), keywords.end(), isLower);
    return keywords;
}
constexpr Keywords BY_NAME = sortKeywords(isLowerName);
constexpr Keywords BY_RGB = sortKeywords(isLowerRgb);

std::uint32_t findExact(RyNameEnum name) {
    const auto found =
        std::lower_bound(BY_NAME.begin(), BY_NAME.end(), Keyword{name, 0}, isLowerName);
    return found != BY_NAME.end() && found->name == name ? found->rgb : INVALID;
}

/// For the text of a name that is no keyword as it is spelt.
std::uint32_t findLowerCase(std::u16string_view text) {
    // Alias, not copy; toLower then makes its own buffer.
    UnicodeString lower(false, text.data(), static_cast<std::int32_t>(text.size()));
    lower.toLower(icu::Locale::getRoot());
    const std::uint32_t rgb = findExact(findBuiltinName(lower.getBuffer(), lower.length()));
    if (rgb == INVALID && lower == UnicodeString(u"currentcolor", 12)) return CURRENT;
    return rgb;
}

}  // namespace

std::uint32_t findKeywordRgb(RyName name) {
    const std::uint32_t rgb = findExact(name);
    if (rgb != INVALID) return rgb;
    const UnicodeString& text = name.toString();
    return findLowerCase({text.getBuffer(), static_cast<std::size_t>(text.length())});
}

std::uint32_t findKeywordRgb(std::u16string_view text) {
    const std::uint32_t rgb =
        findExact(findBuiltinName(text.data(), static_cast<std::int32_t>(text.size())));
    return rgb != INVALID ? rgb : findLowerCase(text);
}

RyNameEnum findColorKeyword(std::uint32_t rgb) {
    const auto found =
        std::lower_bound(BY_RGB.begin(), BY_RGB.end(), Keyword{RN_EMPTY, rgb}, isLowerRgb);
    return found != BY_RGB.end() && found->rgb == rgb ? found->name : RN_EMPTY;
}

}  // namespace RynCommon
