// Named values, and the one way from a value to a name.
#include <RynCommon/RyNamedValue.h>

#include <utility>

#include <RynCommon/RyNameTable.h>

namespace RynCommon {

constinit const RyNamedValue RyNamedValue::NULL_VALUE{};

RyNamedValue& RyNamedValue::operator=(const RyNamedValue& other) {
    const RyName name = other.getName();
    RyValue::operator=(other);
    setName(name);
    return *this;
}

RyNamedValue& RyNamedValue::operator=(RyNamedValue&& other) noexcept {
    const RyName name = other.getName();
    RyValue::operator=(static_cast<RyValue&&>(other));
    setName(name);
    return *this;
}

void RyNamedValue::setValue(const RyValue& value) {
    const RyName name = getName();
    RyValue::operator=(value);
    setName(name);
}

RyNameEnum RyName::fromValue(const RyValue& value) {
    if (value.isName()) return value.getNameValue();
    return RyNameTable::getSharedNameEnum(value.toString());
}

}  // namespace RynCommon
