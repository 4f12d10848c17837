// Shift_JIS codes, worked out with ICU's converter.
#include "xml/serializer/ShiftJisEncoder.h"

#include <unicode/ucnv.h>
#include <unicode/utf16.h>

#include <new>

namespace RynCommon {

ShiftJisEncoder::ShiftJisEncoder() {
    UErrorCode status = U_ZERO_ERROR;
    // Without the converter's data every unit is missing and becomes a reference, which is right,
    // if long.
    converter_ = ucnv_open("cp932", &status);
    if (status == U_MEMORY_ALLOCATION_ERROR) throw std::bad_alloc();
    if (converter_ == nullptr) return;
    ucnv_setFromUCallBack(converter_, UCNV_FROM_U_CALLBACK_STOP, nullptr, nullptr, nullptr,
                          &status);
}

ShiftJisEncoder::~ShiftJisEncoder() {
    ucnv_close(converter_);
}

ShiftJisEncoder::Code ShiftJisEncoder::findCode(char16_t unit) {
    std::unique_ptr<Page>& page = pages_[unit >> 8];
    if (page == nullptr) page = std::make_unique<Page>();
    Code& code = (*page)[unit & 0xFF];
    code = convert(unit);
    return code;
}

ShiftJisEncoder::Code ShiftJisEncoder::convert(char16_t unit) const {
    constexpr Code missing{Code::MISSING};
    if (converter_ == nullptr || U16_IS_SURROGATE(unit)) return missing;
    UErrorCode status = U_ZERO_ERROR;
    char bytes[8];
    const std::int32_t length = ucnv_fromUChars(converter_, bytes, sizeof bytes, &unit, 1, &status);
    if (U_FAILURE(status) || length < 1 || length > 2) return missing;
    char16_t back[4];
    const std::int32_t backLength = ucnv_toUChars(converter_, back, 4, bytes, length, &status);
    if (U_FAILURE(status) || backLength != 1 || back[0] != unit) return missing;
    unsigned code = 0;
    for (int i = 0; i < length; ++i) code = code << 8 | static_cast<std::uint8_t>(bytes[i]);
    return {static_cast<std::uint16_t>(code)};
}

}  // namespace RynCommon
