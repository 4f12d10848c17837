// Numbers, times and texts as people read them.
#include "Format.h"

#include <unicode/uchar.h>

#include <cstdio>

std::string formatCount(std::uint64_t count) {
    const std::string digits = std::to_string(count);
    std::string text;
    for (std::size_t i = 0; i < digits.size(); ++i) {
        if (i != 0 && (digits.size() - i) % 3 == 0) text += ',';
        text += digits[i];
    }
    return text;
}

std::string formatTime(std::chrono::duration<double> time) {
    const double milliseconds = time.count() * 1000;
    const bool isLong = milliseconds >= 1000;
    const double value = isLong ? time.count() : milliseconds;
    const int decimals = value < 10 ? 2 : value < 100 ? 1 : 0;
    char text[64];
    std::snprintf(text, sizeof text, "%.*f %s",
                  isLong      ? 2
                  : value < 1 ? 3
                              : decimals,
                  value, isLong ? "s" : "ms");
    return text;
}

std::string formatShare(std::chrono::duration<double> part, std::chrono::duration<double> whole) {
    char text[64];
    std::snprintf(text, sizeof text, "%.2g %% of it", 100 * (part / whole));
    return text;
}

std::string formatText(const icu::UnicodeString& text) {
    icu::UnicodeString printable;
    for (std::int32_t i = 0; i < text.length(); i = text.moveIndex32(i, 1)) {
        const UChar32 c = text.char32At(i);
        printable.append(u_iscntrl(c) || U_IS_SURROGATE(c) ? UChar32{0xFFFD} : c);
    }
    std::string result;
    return printable.toUTF8String(result);
}
