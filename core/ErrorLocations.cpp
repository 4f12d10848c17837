// All wording of system and input/output errors, as tables, and the two routines that raise them.
//
// Texts and place names are compared by callers and stay as they are, odd spellings included.
#include "core/ErrorLocations.h"

#include <iterator>
#include <string_view>

#include <RynCommon/RyError.h>

namespace RynCommon {

namespace {

// Indexed by ErrorLocation.
constexpr std::u16string_view LOCATION_NAMES[] = {
    u"RyDocument::loadNextNode",
    u"RyDocument::doSave",
    u"AttrNodeMap::setNamedItem",
    u"AttrNodeMap::setNamedItemNS",
    u"RyElement::removeAttributeNode",
    u"RyNode::setNodeValue",
    u"RyNode::insertBefore",
    u"RyNode::replaceChild",
    u"RyNode::removeChild",
    u"RyNode::appendChild",
    u"XmlParserImpl::checkStream",
    u"XmlParserImpl::pushStream",
    u"XmlParserImpl::setInput",
    u"XmlParserImpl::isWhitespace",
    u"XmlParserImpl::isEmptyElementTag",
    u"XmlParserImpl::getAttributeNamespace",
    u"XmlParserImpl::getAttributeName",
    u"XmlParserImpl::getAttributePrefix",
    u"XmlParserImpl::getAttributeValue",
    u"XmlSerializerImpl::setOutput",
    u"XmlSerializerImpl::startDocumen",
    u"XmlSerializerImpl::attributeSub",
    u"XmlSerializerImpl::endTagt",
    u"",
    u"XmlSerializerImpl::checkStream",
    u"",
    u"RyMemStream",
    u"RyTempFile",
};
static_assert(std::size(LOCATION_NAMES) == LOCATION_TEMP_FILE + 1);

// In a text, "%a" is the first argument, or "arg" where there is none, "%1" the first argument as
// it is, and "%2" the second.
struct ErrorText {
    unsigned short code;
    std::u16string_view text;
};

constexpr ErrorText SYSTEM_TEXTS[] = {
    {SYSTEM_ARG_IS_NULL, u"%a is null."},
    {SYSTEM_WRONG_DOCUMENT, u"%aarg is created from a different document."},
    {SYSTEM_NOT_AN_ATTR, u"%a is not an RyAttr object."},
    {SYSTEM_ATTR_IN_USE,
     u"%a is an RyAttr that is already an attribute of another RyElement object."},
    {SYSTEM_NOT_A_CHILD, u"%a is not a child of this node."},
    {SYSTEM_WRONG_STATE, u"Cannot set a value on node type: %1"},
    {SYSTEM_START_DOCUMENT_MISPLACED, u"startDocument() must be called just after setOutput()."},
    {SYSTEM_ATTRIBUTE_MISPLACED, u"attribute() must be called just after startTag()."},
    {SYSTEM_END_TAG_UNEXPECTED, u"Unexpected endTag()."},
    {SYSTEM_END_TAG_MISMATCH, u"End tag '%1' does not match the start tag '%2'."},
    {SYSTEM_DOCDECL_UNEXPECTED, u"Unexpected docdecl()."},
    {SYSTEM_UNSUPPORTED_NODE, u"Unsupported node type."},
};
constexpr std::u16string_view SYSTEM_FALLBACK = u"RyErrorCodeRYNLIB";
constexpr std::u16string_view WRONG_STATE_WITHOUT_TYPE = u"Cannot set a value on node type.";

constexpr ErrorText IO_TEXTS[] = {
    {IO_CANNOT_OPEN, u"Cannot open file: %1"},
    {IO_UNEXPECTED_END, u"Unexpected end of input stream."},
    {IO_OUTPUT_NOT_SET, u"Output stream is not set."},
    {IO_INPUT_ERROR, u"Input stream error."},
    {IO_OUTPUT_ERROR, u"Output stream error."},
    {IO_CANNOT_REMOVE_TEMP, u"Cannot remove temporary file: %1"},
    {IO_CANNOT_CREATE_TEMP, u"Cannot create temporary file: %1"},
};
constexpr std::u16string_view IO_FALLBACK = u"RyErrorCodeIO";

void append(UnicodeString& to, std::u16string_view text) {
    to.append(text.data(), static_cast<std::int32_t>(text.size()));
}

template <std::size_t N>
std::u16string_view textOf(unsigned short code, const ErrorText (&table)[N],
                           std::u16string_view fallback) {
    for (const ErrorText& row : table) {
        if (row.code == code) return row.text;
    }
    return fallback;
}

void appendArgument(UnicodeString& to, char16_t which, const UnicodeString& first,
                    const UnicodeString& second) {
    if (which == u'2')
        to.append(second);
    else if (which == u'a' && first.isEmpty())
        append(to, u"arg");
    else
        to.append(first);
}

void appendFilled(UnicodeString& to, std::u16string_view text, const UnicodeString& first,
                  const UnicodeString& second) {
    for (std::size_t at = 0;;) {
        const std::size_t mark = text.find(u'%', at);
        append(to, text.substr(at, mark - at));
        if (mark == text.npos) return;
        appendArgument(to, text[mark + 1], first, second);
        at = mark + 2;
    }
}

}  // namespace

void throwSystemError(unsigned short code, int location, const UnicodeString& argName,
                      const UnicodeString& arg2) {
    std::u16string_view text = textOf(code, SYSTEM_TEXTS, SYSTEM_FALLBACK);
    if (code == SYSTEM_WRONG_STATE && argName.isEmpty()) text = WRONG_STATE_WITHOUT_TYPE;
    UnicodeString message(u"SYSTEM ERROR: ");
    appendFilled(message, text, argName, arg2);
    throw RyError(code, message, getErrorLocationName(location), -1, -1, UnicodeString());
}

void throwIoError(unsigned short code, int location, const UnicodeString& arg) {
    UnicodeString message;
    appendFilled(message, textOf(code, IO_TEXTS, IO_FALLBACK), arg, UnicodeString());
    throw RyError(code, message, getErrorLocationName(location), -1, -1, UnicodeString());
}

UnicodeString getErrorLocationName(int location) {
    UnicodeString name;
    if (location < 0 || location > LOCATION_TEMP_FILE) return name;
    if (LOCATION_NAMES[location].empty()) return name;
    append(name, u"RynCommon::");
    append(name, LOCATION_NAMES[location]);
    return name;
}

}  // namespace RynCommon
