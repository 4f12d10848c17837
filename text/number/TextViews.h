// Between strings and views of their units.
#pragma once

#include <string_view>

#include <RynCommon/Forward.h>

namespace RynCommon {

/// The units of `text`, which has to stay as it is while they are looked at; none of a bogus one.
inline std::u16string_view viewOf(const UnicodeString& text) {
    if (text.isEmpty()) return {};
    return {text.getBuffer(), static_cast<std::size_t>(text.length())};
}

inline void appendView(UnicodeString& text, std::u16string_view piece) {
    if (!piece.empty()) text.append(piece.data(), static_cast<std::int32_t>(piece.size()));
}

}  // namespace RynCommon
