// The lexer of property texts: the current token, pushing it back, and functions.
#include <RynCommon/RyTokenizer.h>

#include <RynCommon/RyUtil.h>

#include "core/MemoryCheck.h"
#include "text/Quoting.h"
#include "values/ColorParse.h"
#include "values/NameChars.h"
#include "values/TokenScanner.h"

namespace RynCommon {

namespace {

UnicodeString toText(std::u16string_view view) {
    return takeWhole(UnicodeString(view.data(), static_cast<std::int32_t>(view.size())));
}

}  // namespace

RyTokenizer::RyTokenizer(const UnicodeString& text) : source_(text) {
    requireWhole(source_);
}

TokenScanner RyTokenizer::makeScanner() {
    return TokenScanner(viewText(source_), place_);
}

bool RyTokenizer::takePushedBack(bool rereadsCharacters) {
    if (!isPushedBack_) return false;
    isPushedBack_ = false;
    if (token_.form != NOTATION && !(rereadsCharacters && token_.kind >= 0)) return true;
    place_.position = token_.start;
    return false;
}

int RyTokenizer::nextToken() {
    if (!takePushedBack(false)) token_ = makeScanner().next();
    return token_.kind;
}

RyValue RyTokenizer::nextTokenValue() {
    nextToken();
    TokenScanner scanner = makeScanner();
    scanner.settleSuffix(token_);
    return scanner.makeValue(token_);
}

void RyTokenizer::readSigned() {
    if (!takePushedBack(true)) token_ = makeScanner().nextSigned();
    makeScanner().settleSuffix(token_);
}

void RyTokenizer::readExp() {
    readSigned();
    makeScanner().joinExponent(token_);
}

RyValue RyTokenizer::nextTokenValueSigned() {
    readSigned();
    return makeScanner().makeValue(token_);
}

RyValue RyTokenizer::nextTokenValueExp() {
    readExp();
    return makeScanner().makeValue(token_);
}

double RyTokenizer::nextTokenDoubleExp() {
    readExp();
    return token_.kind == RYTOKEN_NUMBER ? TokenScanner::getNumber(token_) : RyUtil::getNaN();
}

RyValue RyTokenizer::nextTokenValueFunc() {
    readExp();
    TokenScanner scanner = makeScanner();
    const bool isFunction = token_.kind == RYTOKEN_NAME && scanner.isAt(u'(');
    if (!isFunction && token_.kind != u'(') return scanner.makeValue(token_);
    if (isFunction) scanner.skipUnit();
    return takeNotation();
}

RyValue RyTokenizer::takeNotation() {
    TokenScanner scanner = makeScanner();
    const std::u16string_view name = scanner.view(token_);
    const bool isClosed = scanner.skipGroup();
    token_.form = NOTATION;
    const std::u16string_view whole = scanner.slice(token_.start, place_.position);
    if (isClosed && name == u"url") return RyValue(RyUtil::unquoteUri(toText(whole)), RYUNIT_URI);
    if (RyValue color; isClosed && name == u"rgb" && parseColorText(whole, false, color))
        return color;
    return RyValue(toText(whole));
}

UnicodeString RyTokenizer::nextSeparatedValue(wchar_t separator) {
    if (!takePushedBack(false)) token_ = makeScanner().nextItem(static_cast<UChar32>(separator));
    return getText();
}

bool RyTokenizer::scanSeparator(wchar_t separator) const {
    RyTokenizer::Place place = place_;
    TokenScanner scanner(viewText(source_), place);
    return !isPushedBack_ && !scanner.isAtEnd() &&
           codePointAt(scanner.text(), static_cast<std::size_t>(place.position)) ==
               static_cast<UChar32>(separator);
}

bool RyTokenizer::skipSeparator(wchar_t separator) {
    if (isPushedBack_) return false;
    TokenScanner scanner = makeScanner();
    scanner.skipSpace();
    if (!scanSeparator(separator)) return false;
    place_.position += U16_LENGTH(static_cast<UChar32>(separator));
    scanner.skipSpace();
    return true;
}

UnicodeString RyTokenizer::getText() const {
    Place place = place_;
    const std::u16string_view view = TokenScanner(viewText(source_), place).view(token_);
    if (token_.kind >= 0) return UnicodeString();
    if (token_.form == ITEM) return unquoteItem(view);
    if (token_.form != QUOTED) return toText(view);
    UnicodeString text;
    appendUnescaped(text, view);
    return text;
}

const char16_t* RyTokenizer::getPtr() {
    return source_.getTerminatedBuffer() + place_.position;
}

}  // namespace RynCommon
