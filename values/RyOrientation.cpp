// A rotation in quarter turns.
#include <RynCommon/RyOrientation.h>
#include <RynCommon/RyValue.h>

namespace RynCommon {

RyOrientation::RyOrientation(int degrees) {
    const std::int64_t shifted = std::int64_t{degrees} + (degrees < 0 ? -45 : 45);
    degrees_ = static_cast<std::int32_t>(shifted / 90 & 3) * 90;
}

RyOrientation::operator RyValue() const {
    return RyValue(int{degrees_});
}

int RyOrientation::fromValue(const RyValue& value) {
    return value.getIntegerValue();
}

}  // namespace RynCommon
