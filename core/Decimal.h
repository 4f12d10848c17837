// Integers as text, for the messages and names that core makes itself.
#pragma once

#include <charconv>

#include <RynCommon/Forward.h>

namespace RynCommon {

inline void appendDecimal(UnicodeString& text, std::int64_t number) {
    char digits[24] = {};
    const std::to_chars_result end = std::to_chars(digits, digits + sizeof digits, number);
    for (const char* p = digits; p != end.ptr; ++p) text.append(static_cast<char16_t>(*p));
}

}  // namespace RynCommon
