// Hebrew numerals.
#pragma once

#include <RynCommon/Forward.h>

namespace RynCommon {

/// Letters by value, the greatest first, 15 and 16 as 9 and 6, 9 and 7; neither geresh nor
/// gershayim, no final forms.
///
/// The thousands are the letters of their count in front of the rest (5784 is התשפד). Without marks
/// round thousands could not be told from units, so within each million they are words: אלף,
/// אלפיים, then the count and אלפים. Zero is אפס; millions are their count and מיליון. False, and
/// nothing appended, below 0.
bool appendHebrew(UnicodeString& text, int n);

}  // namespace RynCommon
