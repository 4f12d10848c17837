// Shared by the tests of number formatting.
#pragma once

#include <string>

#include <RynCommon/RyLang.h>
#include <RynCommon/RyUtil.h>

#include "tests/Text.h"

namespace RynCommon {

/// formatNumber without grouping, the text as UTF-8.
inline std::string format(int n, const UnicodeString& picture, const char16_t* tag = u"",
                          RyNameEnum letterValue = RN_EMPTY) {
    return s(RyUtil::formatNumber(n, picture, UnicodeString(), 0, RyLang(tag), letterValue));
}

/// The bijective numeration of base N, digit by digit, as its definition by recursion has it.
inline UnicodeString countNaively(int n, const UnicodeString& letters) {
    const int count = letters.countChar32();
    const auto letter = [&](int i) { return UnicodeString(letters.char32At(i - 1)); };
    if (n <= count) return letter(n);
    return countNaively((n - 1) / count, letters) + letter((n - 1) % count + 1);
}

}  // namespace RynCommon
