// Numbers digit by digit in CJK digits, and the sexagenary cycle.
#include "text/number/CjkNumerals.h"

#include <array>

#include "text/number/Alphabets.h"

namespace RynCommon {

bool appendPositional(UnicodeString& text, int n, std::u16string_view digits) {
    if (n < 0) return false;
    std::array<char16_t, 10> numeral;
    std::size_t begin = numeral.size();
    do {
        numeral[--begin] = digits[static_cast<std::size_t>(n % 10)];
        n /= 10;
    } while (n > 0);
    text.append(numeral.data() + begin, static_cast<std::int32_t>(numeral.size() - begin));
    return true;
}

bool appendSexagenary(UnicodeString& text, int n) {
    if (n < 1 || n > 60) return false;
    const std::u16string_view stems = findSimpleAlphabet(U'甲')->letters;
    const std::u16string_view branches = findSimpleAlphabet(U'子')->letters;
    const auto index = static_cast<std::size_t>(n - 1);
    text.append(stems[index % stems.size()]).append(branches[index % branches.size()]);
    return true;
}

}  // namespace RynCommon
