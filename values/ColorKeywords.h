// The colour keywords of SVG 1.1, "transparent" and "currentColor".
#pragma once

#include <string_view>

#include <RynCommon/RyName.h>

namespace RynCommon {

/// The sRGB value or reserved value of a keyword, else the invalid colour's. A name that is no
/// keyword is tried again in lower case. Interns nothing.
std::uint32_t findKeywordRgb(RyName name);

/// The same for a text.
std::uint32_t findKeywordRgb(std::u16string_view text);

/// The keyword of the lowest number for an sRGB value or a reserved one; the empty name when there
/// is none.
RyNameEnum findColorKeyword(std::uint32_t rgb);

}  // namespace RynCommon
