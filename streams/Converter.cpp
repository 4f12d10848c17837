// Decoders and encoders on ICU's converters, and the choice of faster decoders.
#include "streams/Converter.h"

#include <unicode/ucnv_cb.h>
#include <unicode/ucnv_err.h>

#include <array>
#include <utility>

#include "streams/DoubleByteDecoder.h"
#include "streams/DoubleByteTable.h"
#include "streams/EncodingName.h"

namespace RynCommon::streams {

namespace {

constexpr UChar REPLACEMENT_CHARACTER = 0xFFFD;
/// What stands for a character that an encoding lacks, by preference.
constexpr UChar SUBSTITUTES[] = {0x3013, u'?'};

Conversion toConversion(UErrorCode status) {
    if (status == U_BUFFER_OVERFLOW_ERROR) return Conversion::TargetFull;
    return U_FAILURE(status) ? Conversion::Failed : Conversion::SourceUsed;
}

/// ICU's own substitution callbacks write U+001A for some single bytes, so these take their places.
void U_CALLCONV replaceInvalid(const void*, UConverterToUnicodeArgs* args, const char*,
                               std::int32_t, UConverterCallbackReason reason, UErrorCode* status) {
    if (reason > UCNV_IRREGULAR) return;
    *status = U_ZERO_ERROR;
    ucnv_cbToUWriteUChars(args, &REPLACEMENT_CHARACTER, 1, 0, status);
}

/// `context` points to the substitute, which the encoding has; null stands for the encoding's own.
void U_CALLCONV substituteMissing(const void* context, UConverterFromUnicodeArgs* args,
                                  const UChar*, std::int32_t, UChar32,
                                  UConverterCallbackReason reason, UErrorCode* status) {
    if (reason > UCNV_IRREGULAR) return;
    *status = U_ZERO_ERROR;
    const UChar* substitute = static_cast<const UChar*>(context);
    if (substitute == nullptr) {
        ucnv_cbFromUWriteSub(args, 0, status);
    } else {
        ucnv_cbFromUWriteUChars(args, &substitute, substitute + 1, 0, status);
    }
}

/// Leaves the error as it is. ICU's own callback lets characters that are ignored by default (soft
/// hyphens, variation selectors) vanish from the data unnoticed.
void U_CALLCONV stopAtMissing(const void*, UConverterFromUnicodeArgs*, const UChar*, std::int32_t,
                              UChar32, UConverterCallbackReason, UErrorCode*) {}

class IcuDecoder final : public Decoder {
public:
    explicit IcuDecoder(icu::LocalUConverterPointer converter) : converter_(std::move(converter)) {}

    Conversion decode(const char*& from, const char* fromEnd, char16_t*& to, char16_t* toEnd,
                      bool last) override {
        UErrorCode status = U_ZERO_ERROR;
        ucnv_toUnicode(converter_.getAlias(), &to, toEnd, &from, fromEnd, nullptr, last, &status);
        return toConversion(status);
    }

private:
    icu::LocalUConverterPointer converter_;
};

void setMissingCallback(UConverter& converter, UConverterFromUCallback callback,
                        const void* context) {
    UErrorCode status = U_ZERO_ERROR;
    ucnv_setFromUCallBack(&converter, callback, context, nullptr, nullptr, &status);
}

/// Expects the callback that stops at missing characters.
bool canEncode(UConverter& converter, const UChar& unit) {
    std::array<char, 64> bytes{};
    UErrorCode status = U_ZERO_ERROR;
    ucnv_fromUChars(&converter, bytes.data(), static_cast<std::int32_t>(bytes.size()), &unit, 1,
                    &status);
    ucnv_reset(&converter);
    return U_SUCCESS(status);
}

const UChar* findSubstitute(UConverter& converter) {
    for (const UChar& candidate : SUBSTITUTES) {
        if (canEncode(converter, candidate)) return &candidate;
    }
    return nullptr;
}

/// ICU's converters for names without a byte order, and some for names with one, write marks. Those
/// of the names below do not.
const char* findMarklessForm(const UConverter& converter) {
    switch (ucnv_getType(&converter)) {
        case UCNV_UTF8:
            return "UTF-8";
        case UCNV_UTF16:
        case UCNV_UTF16_LittleEndian:
            return "UTF-16LE";
        case UCNV_UTF16_BigEndian:
            return "UTF-16BE";
        case UCNV_UTF32:
        case UCNV_UTF32_LittleEndian:
            return "UTF-32LE";
        case UCNV_UTF32_BigEndian:
            return "UTF-32BE";
        default:
            return nullptr;
    }
}

icu::LocalUConverterPointer openMarkless(std::string_view encoding) {
    icu::LocalUConverterPointer converter = openConverter(encoding);
    const char* const form = converter.isValid() ? findMarklessForm(*converter) : nullptr;
    return form == nullptr ? std::move(converter) : openConverter(form);
}

}  // namespace

std::unique_ptr<Decoder> openDecoder(std::string_view encoding) {
    icu::LocalUConverterPointer converter = openConverter(encoding);
    if (converter.isNull()) return nullptr;
    UErrorCode status = U_ZERO_ERROR;
    ucnv_setToUCallBack(converter.getAlias(), replaceInvalid, nullptr, nullptr, nullptr, &status);
    if (auto table = acquireDoubleByteTable(*converter))
        return std::make_unique<DoubleByteDecoder>(std::move(converter), std::move(table));
    return std::make_unique<IcuDecoder>(std::move(converter));
}

Encoder::Encoder(std::string_view encoding, bool strict) : converter_(openMarkless(encoding)) {
    if (!isOpen()) return;
    unicode_ = isUnicodeForm(*converter_);
    setMissingCallback(*converter_, stopAtMissing, nullptr);
    if (!strict) {
        setMissingCallback(*converter_, substituteMissing, findSubstitute(*converter_));
    }
}

Conversion Encoder::encode(const char16_t*& from, const char16_t* fromEnd, char*& to, char* toEnd,
                           bool last) {
    UErrorCode status = U_ZERO_ERROR;
    ucnv_fromUnicode(converter_.getAlias(), &to, toEnd, &from, fromEnd, nullptr, last, &status);
    return toConversion(status);
}

}  // namespace RynCommon::streams
