// Values from texts of one token.
//
// The text is looked at where it lies. Nothing is interned or copied before it is known that
// nothing follows the token, so numbers, units, colours and built-in names cost no allocation, and
// a text of many words leaves no names behind.
#include <RynCommon/RyValue.h>

#include "values/TokenScanner.h"

namespace RynCommon {

RyValue RyValue::parse(const UnicodeString& text) {
    TokenScanner::Place place;
    TokenScanner scanner(viewText(text), place);
    TokenScanner::Token token;
    return scanner.readSingle(token) ? scanner.makeValue(token) : RyValue(text);
}

RyValue RyValue::parseNonNumeric(const UnicodeString& text) {
    TokenScanner::Place place;
    TokenScanner scanner(viewText(text), place);
    TokenScanner::Token token = scanner.next();
    const bool isText = token.kind == RYTOKEN_STRING || token.kind == RYTOKEN_NAME;
    return isText && scanner.isAtEnd() ? scanner.makeValue(token) : RyValue(text);
}

}  // namespace RynCommon
