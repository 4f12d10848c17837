// What the tests of values share.
#pragma once

#include <ostream>
#include <string>

#include <RynCommon/RyValue.h>

namespace RynCommon {

inline std::string narrow(const UnicodeString& text) {
    std::string result;
    return text.toUTF8String(result);
}

/// Kind, unit and text, which together show every difference between values without an object.
inline std::string describe(const RyValue& value) {
    return std::to_string(value.getValueType()) + "/" + std::to_string(value.getUnitType()) + " " +
           narrow(value.toString());
}

inline void PrintTo(const RyValue& value, std::ostream* out) {
    *out << describe(value);
}

inline RyValue makeInteger(int number, RyValueUnitType unit) {
    RyValue value(number);
    value.setUnitType(unit);
    return value;
}

}  // namespace RynCommon
