// Sequences of letters: the alphabets that tokens name, and counting with letters.
#include "text/number/Alphabets.h"

#include <algorithm>
#include <array>

namespace RynCommon {

namespace {

constexpr SimpleAlphabet ALPHABETS[] = {
#define RYN_ALPHABET(first, count, isCut, isOfLanguage, letters) \
    {first, letters, isCut, isOfLanguage},
#include "text/number/Alphabets.inc"
#undef RYN_ALPHABET
};

#define RYN_ALPHABET(first, count, isCut, isOfLanguage, letters) \
    static_assert(std::u16string_view(letters).size() == count);
#include "text/number/Alphabets.inc"
#undef RYN_ALPHABET

}  // namespace

const SimpleAlphabet* findSimpleAlphabet(char32_t first) {
    const auto* found =
        std::find_if(std::begin(ALPHABETS), std::end(ALPHABETS),
                     [first](const SimpleAlphabet& row) { return row.first == first; });
    return found == std::end(ALPHABETS) ? nullptr : found;
}

bool appendAlphabetic(UnicodeString& text, int n, const SimpleAlphabet& alphabet) {
    if (n < 1) return false;
    // Cutting once is enough: all numbers of fewer than 16 bits, and every number that letters
    // remain to be found for, pass a further cut unchanged.
    const auto number = static_cast<std::uint32_t>(alphabet.isCut ? n & 0xFFFF : n);
    if (number == 0) return false;
    std::array<char16_t, 32> letters;
    std::int32_t length = 0;
    countInLetters(number, static_cast<std::uint32_t>(alphabet.letters.size()),
                   [&](std::uint32_t index) {
                       letters[static_cast<std::size_t>(length++)] = alphabet.letters[index];
                   });
    text.append(letters.data(), length);
    return true;
}

}  // namespace RynCommon
