// Texts in UTF-8 for the tests, whose names are short because tables are full of them.
#pragma once

#include <RynCommon/RyString.h>

#include <string>

namespace RynCommon {

inline UnicodeString u(const std::string& bytes) {
    return UnicodeString::fromUTF8(bytes);
}

inline std::string s(const UnicodeString& text) {
    std::string bytes;
    return text.toUTF8String(bytes);
}

}  // namespace RynCommon
