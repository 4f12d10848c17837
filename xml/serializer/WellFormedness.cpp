// Tests of names and texts against XML 1.0.
#include "xml/serializer/WellFormedness.h"

#include <unicode/utf16.h>

#include <algorithm>
#include <iterator>

#include "xml/parser/CharClass.h"

namespace RynCommon {

namespace {

struct Range {
    char32_t first;
    char32_t last;
};

// Productions 4 and 4a of XML 1.0 (Fifth Edition) without the colon.
constexpr Range NAME_START[] = {
    {'A', 'Z'},       {'_', '_'},       {'a', 'z'},       {0xC0, 0xD6},     {0xD8, 0xF6},
    {0xF8, 0x2FF},    {0x370, 0x37D},   {0x37F, 0x1FFF},  {0x200C, 0x200D}, {0x2070, 0x218F},
    {0x2C00, 0x2FEF}, {0x3001, 0xD7FF}, {0xF900, 0xFDCF}, {0xFDF0, 0xFFFD}, {0x10000, 0xEFFFF},
};
constexpr Range NAME_MORE[] = {
    {'-', '.'}, {'0', '9'}, {0xB7, 0xB7}, {0x300, 0x36F}, {0x203F, 0x2040},
};

template <std::size_t N>
bool isIn(const Range (&ranges)[N], char32_t c) {
    const Range* const range = std::find_if(std::begin(ranges), std::end(ranges),
                                            [c](const Range& r) { return c <= r.last; });
    return range != std::end(ranges) && c >= range->first;
}

// Whether a unit below the surrogates is allowed.
constexpr bool isPlainUnit(char16_t unit) {
    return unit >= 0x20 ? unit < 0xD800 : unit == u'\t' || unit == u'\n' || unit == u'\r';
}

bool isNcName(const char16_t* p, std::int32_t length) {
    for (std::int32_t i = 0; i < length;) {
        const bool first = i == 0;
        UChar32 c;
        U16_NEXT(p, i, length, c);
        const auto point = static_cast<char32_t>(c);
        if (!isIn(NAME_START, point) && (first || !isIn(NAME_MORE, point))) return false;
    }
    return length > 0;
}

}  // namespace

bool isCharacterData(const char16_t* text, std::size_t length) {
    const char16_t* const end = text + length;
    for (const char16_t* p = text; p != end; ++p) {
        if (isPlainUnit(*p)) [[likely]]
            continue;
        if (U16_IS_LEAD(*p)) {
            if (++p == end || !U16_IS_TRAIL(*p)) return false;
        } else if (*p < 0xE000 || *p > 0xFFFD) {
            return false;
        }
    }
    return true;
}

bool isCharacterData(const UnicodeString& text) {
    return isCharacterData(text.getBuffer(), static_cast<std::size_t>(text.length()));
}

bool isNcName(const UnicodeString& text) {
    return isNcName(text.getBuffer(), text.length());
}

bool isCommentText(const UnicodeString& text) {
    return isCharacterData(text) && text.indexOf(u"--", 2, 0) < 0 && !text.endsWith(u"-", 1);
}

bool isProcessingInstructionText(const UnicodeString& text) {
    const char16_t* const p = text.getBuffer();
    const char16_t* const end = p + text.length();
    const auto length = static_cast<std::int32_t>(std::find_if(p, end, isXmlSpace) - p);
    return isNcName(p, length) && text.tempSubString(0, length).caseCompare(u"xml", 3, 0) != 0 &&
           isCharacterData(text) && text.indexOf(u"?>", 2, 0) < 0;
}

bool isWhiteSpace(const UnicodeString& text) {
    const char16_t* const p = text.getBuffer();
    return std::all_of(p, p + text.length(), isXmlSpace);
}

}  // namespace RynCommon
