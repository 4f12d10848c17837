// What the tests of values share.
#pragma once

#include <ostream>
#include <sstream>
#include <string>
#include <vector>

#include <RynCommon/RyValue.h>

#include "tests/Text.h"

namespace RynCommon {

/// Kind, unit and text, which together show every difference between values without an object.
inline std::string describe(const RyValue& value) {
    return std::to_string(value.getValueType()) + "/" + std::to_string(value.getUnitType()) + " " +
           s(value.toString());
}

inline void PrintTo(const RyValue& value, std::ostream* out) {
    *out << describe(value);
}

/// Texts that a vertical bar parts.
inline std::vector<UnicodeString> split(const std::string& texts) {
    std::vector<UnicodeString> result;
    std::istringstream in(texts);
    for (std::string text; std::getline(in, text, '|');) result.push_back(u(text));
    return result;
}

inline RyValue makeInteger(int number, RyValueUnitType unit) {
    RyValue value(number);
    value.setUnitType(unit);
    return value;
}

}  // namespace RynCommon
