// Names of encodings.
#include "streams/EncodingName.h"

#include <algorithm>
#include <array>
#include <new>

namespace RynCommon::streams {

namespace {

struct Alias {
    /// Lower case.
    std::string_view name;
    const char* converter;
};

/// The encodings of languages that are named by language rather than by code page.
constexpr Alias ALIASES[] = {
    {"chinesebig5", "windows-950"},
    {"chinesegbk", "windows-936"},
    {"koreanksc", "windows-949"},
};

char toLower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

bool isNameCharacter(char c) {
    const char lower = toLower(c);
    return (lower >= 'a' && lower <= 'z') || (c >= '0' && c <= '9') ||
           std::string_view("._:-").find(c) != std::string_view::npos;
}

bool isName(std::string_view text) {
    return !text.empty() && text.size() < UCNV_MAX_CONVERTER_NAME_LENGTH &&
           std::all_of(text.begin(), text.end(), isNameCharacter);
}

std::string toConverterName(std::string_view name) {
    std::string lower(name);
    std::transform(lower.begin(), lower.end(), lower.begin(), toLower);
    for (const Alias& alias : ALIASES) {
        if (alias.name == lower) return alias.converter;
    }
    return std::string(name);
}

/// Byte 0x40 is the blank in every EBCDIC code page, and "@" or no character at all in every other
/// encoding. Code pages of double bytes only have the ideographic blank at 0x4040.
bool isEbcdic(UConverter& converter) {
    std::array<UChar, 8> units{};
    UErrorCode status = U_ZERO_ERROR;
    const int width = std::min<int>(2, ucnv_getMinCharSize(&converter));
    const std::int32_t length = ucnv_toUChars(
        &converter, units.data(), static_cast<std::int32_t>(units.size()), "@@", width, &status);
    ucnv_reset(&converter);
    return U_SUCCESS(status) && length == 1 && units[0] == (width == 1 ? 0x0020 : 0x3000);
}

bool isRefused(UConverter& converter) {
    switch (ucnv_getType(&converter)) {
        case UCNV_UTF7:
        case UCNV_IMAP_MAILBOX:
        case UCNV_EBCDIC_STATEFUL:
            return true;
        default:
            return isEbcdic(converter);
    }
}

}  // namespace

icu::LocalUConverterPointer openConverter(std::string_view name) {
    icu::LocalUConverterPointer converter;
    if (!isName(name)) return converter;
    UErrorCode status = U_ZERO_ERROR;
    converter.adoptInstead(ucnv_open(toConverterName(name).c_str(), &status));
    if (status == U_MEMORY_ALLOCATION_ERROR) throw std::bad_alloc();
    if (U_FAILURE(status) || (converter.isValid() && isRefused(*converter))) {
        converter.adoptInstead(nullptr);
    }
    return converter;
}

bool isUnicodeForm(const UConverter& converter) {
    switch (ucnv_getType(&converter)) {
        case UCNV_UTF8:
        case UCNV_UTF16:
        case UCNV_UTF16_BigEndian:
        case UCNV_UTF16_LittleEndian:
        case UCNV_UTF32:
        case UCNV_UTF32_BigEndian:
        case UCNV_UTF32_LittleEndian:
        case UCNV_CESU8:
        case UCNV_SCSU:
        case UCNV_BOCU1:
            return true;
        default:
            return false;
    }
}

std::string getCanonicalEncodingName(std::string_view name) {
    const icu::LocalUConverterPointer converter = openConverter(name);
    if (converter.isNull()) return {};
    UErrorCode status = U_ZERO_ERROR;
    const char* const icuName = ucnv_getName(converter.getAlias(), &status);
    if (U_FAILURE(status)) return {};
    for (const char* const standard : {"MIME", "IANA"}) {
        status = U_ZERO_ERROR;
        const char* const registered = ucnv_getStandardName(icuName, standard, &status);
        if (U_SUCCESS(status) && registered != nullptr) return registered;
    }
    return icuName;
}

}  // namespace RynCommon::streams
