// Names of encodings; see the header.
#include "xml/input/Encodings.h"

#include <unicode/locid.h>

#include <RynCommon/RyNameTable.h>

namespace RynCommon {

namespace {

constexpr char16_t OWN_UTF8_DECLARATION = 0x00AD;
constexpr char16_t OWN_LABELLED_SHIFT_JIS_DECLARATION = 0x008B;

EncodingKind kindOfBuiltin(RyNameEnum name) {
    switch (name) {
        case RN_UTF_8:
            return ENCODING_UTF8;
        case RN_UTF_16:
        case RN_UCS_2:
        case RN_UNICODE:
        case RN_ISO_10646_UCS_2:
            return ENCODING_UTF16;
        case RN_UTF_16LE:
            return ENCODING_UTF16LE;
        case RN_UTF_16BE:
            return ENCODING_UTF16BE;
        case RN_UTF_32:
        case RN_UCS_4:
        case RN_ISO_10646_UCS_4:
            return ENCODING_UTF32;
        case RN_UTF_32LE:
            return ENCODING_UTF32LE;
        case RN_UTF_32BE:
            return ENCODING_UTF32BE;
        case RN_ANSI_X3_4:
        case RN_ANSI_X3_4_1968:
        case RN_ANSI_X3_4_1986:
        case RN_ASCII:
        case RN_ISO646_US:
        case RN_ISO_646_IRV:
        case RN_ISO_646_IRV_1991:
        case RN_US_ASCII:
            return ENCODING_ASCII;
        case RN_ISO_8859_1_80:
        case RN_ISO_8859_1_81:
        case RN_ISO_8859_1_1987:
        case RN_LATIN1:
            return ENCODING_LATIN1;
        default:
            return ENCODING_CONVERTER;
    }
}

}  // namespace

EncodingKind encodingKindOf(const UnicodeString& name) {
    UnicodeString key(name);
    key.trim().toUpper(icu::Locale::getRoot());
    if (key.length() == 1 &&
        (key[0] == OWN_UTF8_DECLARATION || key[0] == OWN_LABELLED_SHIFT_JIS_DECLARATION))
        return ENCODING_UTF8;
    return kindOfBuiltin(RyNameTable::getBuiltinNameEnum(key));
}

UnicodeString converterNameOf(const UnicodeString& name) {
    UnicodeString result(name);
    result.trim();
    if (result == UnicodeString(u"&#139;")) result = UnicodeString(u"SHIFT_JIS");
    return result;
}

}  // namespace RynCommon
