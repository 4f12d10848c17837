// The texts of the parser's errors; see the header.
#include "xml/parser/ParseErrors.h"

#include <algorithm>
#include <iterator>

namespace RynCommon {

namespace {

struct ErrorText {
    unsigned short code;
    const char16_t* before;             // what stands before the first argument
    const char16_t* between = nullptr;  // after it; null: the text takes no argument
    const char16_t* after = nullptr;    // after the second argument; null: the text takes one
};

// In order of the codes.
constexpr ErrorText TEXTS[] = {
    {6145, u"Missing end tag."},
    {6146, u"Only one top level element is allowed."},
    {6147, u"Invalid root tag name after '<!DOCTYPE'."},
    {6148, u"Invalid start tag name."},
    {6149, u"Invalid end tag name."},
    {6150, u"End tag '", u"' does not match the start tag '", u"'."},
    {6151, u"Undeclared namespace prefix: ", u""},
    {6152, u"Duplicate attribute: ", u""},
    {6153, u"Invalid attribute name: ", u""},
    {6154, u"Missing '=' after attribute name."},
    {6155, u"Missing whitespace between attributes."},
    {6156, u"Unexpected character: ", u""},
    {6157, u"Unexpected whitespace after '", u"'."},
    {6158, u"Unexpected text at top level of the document: ", u""},
    {6159, u"Unexpected '<![", u"'."},
    {6160, u"Unexpected ']]>'."},
    {6161, u"Unexpected end of input while looking for CDATA section terminator ']]>'."},
    {6162, u"Unexpected end of input while looking for comment terminator '-->'."},
    {6163, u"Unexpected character after -- in comment"},
    {6164, u"Unexpected DOCTYPE declaration outside of prolog."},
    {6165, u"Cannot have multiple DOCTYPE declarations."},
    {6166, u"Missing whitespace after '", u"'."},
    {6167, u"ExternalID is expected after '", u"'."},
    {6168, u"PubidLiteral is expected after '", u"'."},
    {6169, u"SystemLiteral is expected after '", u"'."},
    {6170, u"Unexpected end of input in ", u" declaration."},
    {6171, u"Empty entity name."},
    {6172, u"Invalid character in entity reference: ", u";"},
    {6173, u"Reference to undefined entity: %", u";"},
    {6174, u"Reference to undefined entity: &", u";"},
    {6175, u"Entity name is expected after '", u"'."},
    {6176, u"NDATA is expected after '", u"'."},
    {6177, u"Unexpected XML declaration."},
    {6178, u"Missing 'version=' after '<?xml ' in XML declaration."},
    {6179, u"Missing '=' after '", u"' in XML declaration."},
    {6180, u"Missing whitespace after '", u"' in XML declaration."},
    {6181, u"Missing whitespace before '", u"' in XML declaration."},
    {6182, u"Unsupported XML version: ", u""},
    {6183, u"Invalid standalone declaration in XML declaration."},
    {6184, u"Invalid syntax in CDATA section."},
    {6185, u"Invalid syntax in comment."},
    {6186, u"Unexpected '<!", u"'."},
    {6187, u"The name 'xml' must be lower case: <?", u""},
    {6188, u"Missing whitespace after PI target: <?", u""},
    {6189, u"Unexpected end of input while looking for PI terminator '?>'."},
    {6190, u"Missing quotation character (\" or ')."},
    {6191, u"Unexpected end of input while looking for literal terminator (", u")."},
    {6192, u"Unexpected '<' in attribute value."},
    {6193, u"Unexpected whitespace in character reference: &#", u";"},
    {6194, u"Invalid character in character reference: &#", u";"},
    {6195, u"Invalid unicode character: &#", u";"},
    {6196, u"Invalid character."},
    {6197, u"Unknown or unsupported encoding: ", u"."},
    {6198, u"No-XML document."},
    {6201, u"Conflict encoding: ", u"."},
    {7686, u"End tag '", u"' does not match the start tag '", u"'."},
    {7709, u"Reference to undefined entity: %", u";"},
    {7710, u"Reference to undefined entity: &", u";"},
};

}  // namespace

UnicodeString parseErrorText(unsigned short code, const UnicodeString& arg0,
                             const UnicodeString& arg1) {
    const auto* const found =
        std::lower_bound(std::begin(TEXTS), std::end(TEXTS), code,
                         [](const ErrorText& row, unsigned short key) { return row.code < key; });
    if (found == std::end(TEXTS) || found->code != code) return UnicodeString(u"XML parser error.");
    UnicodeString text(found->before);
    if (found->between != nullptr) text.append(arg0).append(UnicodeString(found->between));
    if (found->after != nullptr) text.append(arg1).append(UnicodeString(found->after));
    return text;
}

}  // namespace RynCommon
