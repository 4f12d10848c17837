// Rounding, numbers as text and the release of lazily built tables.
#include <RynCommon/RyUtil.h>

#include <cmath>
#include <limits>

#include "text/Cleanup.h"
#include "text/NumberText.h"

namespace RynCommon {

namespace {

std::u16string_view viewFrom(const UnicodeString& text, int position) {
    if (position < 0 || position >= text.length()) return {};
    return {text.getBuffer() + position, static_cast<std::size_t>(text.length() - position)};
}

}  // namespace

int RyUtil::roundToInteger(double value) {
    if (std::isnan(value)) return 0;
    const double shifted = value < 0 ? value - 0.5 : value + 0.5;
    if (shifted <= std::numeric_limits<int>::min()) return std::numeric_limits<int>::min();
    if (shifted >= std::numeric_limits<int>::max()) return std::numeric_limits<int>::max();
    return static_cast<int>(shifted);
}

// In double the sum is exact; as floats, odd numbers above 2^23 would be rounded up.
int RyUtil::roundToInteger(float value) {
    return roundToInteger(static_cast<double>(value));
}

double RyUtil::getNaN() {
    return std::numeric_limits<double>::quiet_NaN();
}
float RyUtil::getNaNf() {
    return std::numeric_limits<float>::quiet_NaN();
}
bool RyUtil::isNaN(double value) {
    return std::isnan(value);
}
bool RyUtil::isNaN(float value) {
    return std::isnan(value);
}

UnicodeString RyUtil::toString(int value) {
    return toString(static_cast<long long>(value));
}

UnicodeString RyUtil::toString(long long value) {
    UnicodeString text;
    appendInteger(text, value);
    return text;
}

UnicodeString RyUtil::toString(double value) {
    UnicodeString text;
    appendReal(text, value);
    return text;
}

bool RyUtil::parseNumber(const UnicodeString& text, int& position, double& value) {
    const std::u16string_view rest = viewFrom(text, position);
    const std::size_t length = scanNumber(rest);
    if (length == 0) return false;
    value = readNumber(rest.substr(0, length));
    position += static_cast<int>(length);
    return true;
}

bool RyUtil::parseHexNum(const UnicodeString& text, int& position, std::uint32_t& value) {
    const std::u16string_view rest = viewFrom(text, position);
    std::uint32_t number = 0;
    std::size_t length = 0;
    for (; length < rest.size() && getHexDigit(rest[length]) >= 0; ++length)
        number = number << 4 | static_cast<std::uint32_t>(getHexDigit(rest[length]));
    if (length == 0) return false;
    value = number;
    position += static_cast<int>(length);
    return true;
}

void RyUtil::cleanup() {
    CleanupHook::releaseAll();
}

}  // namespace RynCommon
