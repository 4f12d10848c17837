// Sequences of letters: the alphabets that tokens name, and counting with letters.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include <RynCommon/Forward.h>

namespace RynCommon {

/// An alphabet whose letters are one unit each.
struct SimpleAlphabet {
    /// The character that a token begins with.
    char16_t first;
    std::u16string_view letters;
    /// Basic and full-width Latin letters are counted from the low 16 bits of the number.
    bool isCut;
    /// Whether languages may have an alphabet of their own in its place.
    bool isOfLanguage;
};

/// The alphabet of a token that begins with the character, or null.
const SimpleAlphabet* findSimpleAlphabet(char32_t first);

/// False, and nothing appended, when there is no sequence for the number.
bool appendAlphabetic(UnicodeString& text, int n, const SimpleAlphabet& alphabet);

/// A number in letters as the bijective numeration of base `count` has it: the last letter is
/// followed by the first one doubled, and there is no zero. `n` is above 0, `count` above 1;
/// `appendLetter` gets an index below `count`.
template <class AppendLetter>
void countInLetters(std::uint32_t n, std::uint32_t count, AppendLetter appendLetter) {
    std::array<std::uint32_t, 32> indexes;
    std::size_t length = 0;
    for (; n > 0; n = (n - 1) / count) indexes[length++] = (n - 1) % count;
    while (length > 0) appendLetter(indexes[--length]);
}

}  // namespace RynCommon
