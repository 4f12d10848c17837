// Numbers as text and back, the same in every locale.
#include "text/NumberText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <string>
#include <system_error>

namespace RynCommon {

namespace {

constexpr bool isDigit(char16_t unit) {
    return unit >= u'0' && unit <= u'9';
}

std::size_t countDigits(std::u16string_view text) {
    std::size_t count = 0;
    while (count < text.size() && isDigit(text[count])) ++count;
    return count;
}

void appendAscii(UnicodeString& text, const char* begin, const char* end) {
    std::array<char16_t, 64> wide;
    std::int32_t length = 0;
    for (const char* from = begin; from != end; ++from)
        wide[length++] = static_cast<char16_t>(*from);
    text.append(wide.data(), length);
}

/// Powers of ten that a double holds exactly.
constexpr std::array<double, 23> POWERS_OF_TEN = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                  1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                                  1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

/// With at most this many digits the digits' integer and the power of ten are exact doubles, and so
/// one division rounds correctly.
constexpr std::size_t EXACT_DIGITS = 15;

double readShort(std::u16string_view digits) {
    std::int64_t mantissa = 0;
    std::size_t point = digits.size();
    for (std::size_t i = 0; i < digits.size(); ++i) {
        if (digits[i] == u'.')
            point = i + 1;
        else
            mantissa = mantissa * 10 + (digits[i] - u'0');
    }
    return static_cast<double>(mantissa) / POWERS_OF_TEN[digits.size() - point];
}

double readLong(const char* begin, const char* end) {
    double value = 0;
    const auto result = std::from_chars(begin, end, value, std::chars_format::fixed);
    if (result.ec != std::errc::result_out_of_range) return value;
    // Too large, or too near to zero: an integer part with a digit other than 0 tells which.
    for (const char* at = begin; at != end && *at != '.'; ++at)
        if (*at != '0') return std::numeric_limits<double>::infinity();
    return 0;
}

}  // namespace

void appendInteger(UnicodeString& text, std::int64_t value) {
    std::array<char, 24> buffer;
    const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
    appendAscii(text, buffer.data(), result.ptr);
}

void appendReal(UnicodeString& text, double value) {
    std::array<char, 32> buffer;
    const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                      std::chars_format::general, 6);
    appendAscii(text, buffer.data(), result.ptr);
}

void appendExactReal(UnicodeString& text, float value) {
    // The largest number has 39 digits, the smallest 45 behind the point.
    std::array<char, 64> buffer;
    char* end = buffer.data();
    if (std::isinf(value)) {
        if (value < 0) *end++ = '-';
        *end++ = '9';
        end = std::fill_n(end, std::numeric_limits<float>::max_exponent10, '0');
    } else {
        end =
            std::to_chars(end, buffer.data() + buffer.size(), value, std::chars_format::fixed).ptr;
    }
    appendAscii(text, buffer.data(), end);
}

void appendHex(UnicodeString& text, std::uint32_t value, int digits) {
    for (int shift = (digits - 1) * 4; shift >= 0; shift -= 4)
        text.append(u"0123456789ABCDEF"[value >> shift & 15]);
}

std::size_t scanNumber(std::u16string_view text) {
    const std::size_t whole = countDigits(text);
    if (whole == text.size() || text[whole] != u'.') return whole;
    const std::size_t fraction = countDigits(text.substr(whole + 1));
    return fraction == 0 ? whole : whole + 1 + fraction;
}

double readNumber(std::u16string_view digits) {
    if (digits.size() <= EXACT_DIGITS) return readShort(digits);
    std::array<char, 64> buffer;
    if (digits.size() <= buffer.size()) {
        char* end = buffer.data();
        for (const char16_t unit : digits) *end++ = static_cast<char>(unit);
        return readLong(buffer.data(), end);
    }
    std::string narrow;
    narrow.reserve(digits.size());
    for (const char16_t unit : digits) narrow.push_back(static_cast<char>(unit));
    return readLong(narrow.data(), narrow.data() + narrow.size());
}

}  // namespace RynCommon
