// Quoted strings and url(...) notation.
#pragma once

#include <string_view>

#include <RynCommon/RyUtil.h>

namespace RynCommon {

/// RyUtil::quoteString, appended to `out`.
void appendQuoted(UnicodeString& out, std::u16string_view text, RyQuoteMode mode);

/// Appends the contents of a quoted string with its escapes resolved.
void appendUnescaped(UnicodeString& out, std::u16string_view contents);

}  // namespace RynCommon
