// Numbers digit by digit in CJK digits, and the sexagenary cycle.
#pragma once

#include <string_view>

#include <RynCommon/Forward.h>

namespace RynCommon {

/// The ten digits of Chinese numerals, and the Korean ones.
inline constexpr std::u16string_view KANJI_DIGITS = u"〇一二三四五六七八九";
inline constexpr std::u16string_view KOREAN_DIGITS = u"영일이삼사오육칠팔구";

/// Writes every decimal digit with the one of `digits`. False, and nothing appended, below 0.
bool appendPositional(UnicodeString& text, int n, std::u16string_view digits);

/// A stem and a branch. False, and nothing appended, outside of 1 to 60.
bool appendSexagenary(UnicodeString& text, int n);

}  // namespace RynCommon
