// The scanner under the tokenizer and the parsers of values.
#include "values/TokenScanner.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "core/MemoryCheck.h"
#include "core/NameTable.h"
#include "text/NumberText.h"
#include "text/Quoting.h"
#include "values/ColorValue.h"
#include "values/NameChars.h"
#include "values/Units.h"

namespace RynCommon {

namespace {

constexpr bool isSign(char16_t unit) {
    return unit == u'+' || unit == u'-';
}
constexpr bool isQuote(char16_t unit) {
    return unit == u'"' || unit == u'\'';
}

/// Integers of up to this many digits fit 32 bits.
constexpr std::size_t SMALL_DIGITS = 9;

/// Three digits, leading ones 0, each doubled.
std::uint32_t expandShortColor(std::uint32_t rgb) {
    return ((rgb & 0xF00) << 8 | (rgb & 0xF0) << 4 | (rgb & 0xF)) * 17;
}

}  // namespace

bool TokenScanner::skip(char16_t unit) {
    skipSpace();
    if (!isAt(unit)) return false;
    ++place_.position;
    return true;
}

std::int32_t TokenScanner::findRunEnd(std::int32_t start) {
    if (static_cast<std::size_t>(start) == text_.size()) return start;
    if (start < place_.runStart || start >= place_.runEnd) {
        place_.runStart = start;
        place_.runEnd =
            static_cast<std::int32_t>(findNameEnd(text_, static_cast<std::size_t>(start)));
    }
    return place_.runEnd;
}

TokenScanner::Token TokenScanner::next() {
    skipSpace();
    Token token;
    token.start = token.textStart = token.textEnd = place_.position;
    if (at() == text_.size()) {
        token.kind = RYTOKEN_END;
    } else if (isNameStartChar(codePointAt(text_, at()))) {
        token.kind = RYTOKEN_NAME;
        place_.position = token.textEnd = findRunEnd(token.start);
    } else if (isNumberAt(0)) {
        readNumber(token);
    } else if (!readString(token) && !readColor(token)) {
        readCharacter(token);
    }
    return token;
}

void TokenScanner::readNumber(Token& token) {
    token.kind = RYTOKEN_NUMBER;
    if (!readSmallInteger(token)) {
        const std::size_t length = scanNumber(text_.substr(at()));
        token.number = RynCommon::readNumber(text_.substr(at(), length));
        place_.position += static_cast<std::int32_t>(length);
    }
    token.textStart = place_.position;
    if (isAt(u'%'))
        ++place_.position;
    else
        place_.position = findRunEnd(place_.position);
    token.textEnd = place_.position;
}

bool TokenScanner::readSmallInteger(Token& token) {
    const std::u16string_view digits = text_.substr(at());
    const std::size_t end = std::min(digits.size(), SMALL_DIGITS);
    std::int32_t number = 0;
    std::size_t length = 0;
    for (; length < end && isDigit(digits[length]); ++length)
        number = number * 10 + (digits[length] - u'0');
    if (isDigit(peek(length)) || peek(length) == u'.') return false;
    token.number = number;
    place_.position += static_cast<std::int32_t>(length);
    return true;
}

bool TokenScanner::readString(Token& token) {
    const char16_t quote = peek(0);
    if (!isQuote(quote)) return false;
    const std::size_t end = text_.find(quote, at() + 1);
    if (end == std::u16string_view::npos) return false;
    token.kind = RYTOKEN_STRING;
    token.form = RyTokenizer::QUOTED;
    token.textStart = place_.position + 1;
    token.textEnd = static_cast<std::int32_t>(end);
    place_.position = token.textEnd + 1;
    return true;
}

bool TokenScanner::readColor(Token& token) {
    if (!isAt(u'#') || getHexDigit(peek(1)) < 0) return false;
    token.kind = RYTOKEN_COLOR;
    ++place_.position;
    std::uint32_t rgb = 0;
    for (; getHexDigit(peek(0)) >= 0; ++place_.position)
        rgb = (rgb << 4 | static_cast<std::uint32_t>(getHexDigit(peek(0)))) & 0xFFFFFF;
    const bool isShort = place_.position - token.start <= 4;
    token.number = isShort ? expandShortColor(rgb) : rgb;
    token.textStart = token.textEnd = place_.position;
    return true;
}

void TokenScanner::readCharacter(Token& token) {
    token.kind = codePointAt(text_, at());
    place_.position += U16_LENGTH(token.kind);
    token.textEnd = place_.position;
}

void TokenScanner::settleSuffix(Token& number) {
    if (number.kind != RYTOKEN_NUMBER || number.unit != RYUNIT_NONE) return;
    number.unit = RYUNIT_NUMBER;
    if (number.textStart == number.textEnd) return;
    number.unit = findUnit(view(number));
    if (number.unit != RYUNIT_NONE) return;
    number.unit = RYUNIT_NUMBER;
    place_.position = number.textEnd = number.textStart;
}

TokenScanner::Token TokenScanner::nextSigned() {
    skipSpace();
    const std::int32_t start = place_.position;
    const bool isSigned = isSign(peek(0)) && isNumberAt(1);
    const bool isNegative = isSigned && isAt(u'-');
    if (isSigned) ++place_.position;
    Token token = next();
    token.start = start;
    token.isNegative = isNegative;
    settleSuffix(token);
    return token;
}

TokenScanner::Token TokenScanner::nextExp() {
    Token token = nextSigned();
    joinExponent(token);
    return token;
}

void TokenScanner::joinExponent(Token& number) {
    if (number.unit != RYUNIT_NUMBER || number.hasExponent || number.textEnd != place_.position)
        return;
    if (!isAt(u'e') && !isAt(u'E')) return;
    if (!isNumberAt(1) && !(isSign(peek(1)) && isNumberAt(2))) return;
    ++place_.position;
    const Token exponent = nextSigned();
    // A power beyond the range must not make 0 times infinity.
    if (number.number != 0) number.number *= std::pow(10.0, getNumber(exponent));
    number.unit = exponent.unit;
    number.textStart = exponent.textStart;
    number.textEnd = exponent.textEnd;
    number.hasExponent = true;
}

std::u16string_view TokenScanner::nextMarker() {
    skipSpace();
    if (!isAt(u'#')) return {};
    const std::int32_t start = place_.position;
    const std::int32_t end = findRunEnd(start + 1);
    if (end == start + 1) return {};
    place_.position = end;
    return slice(start, end);
}

bool TokenScanner::skipGroup() {
    std::size_t depth = 1;
    Token string;
    while (at() < text_.size()) {
        const char16_t unit = text_[at()];
        if (isQuote(unit) && readString(string)) continue;
        ++place_.position;
        if (unit == u'(') ++depth;
        if (unit == u')' && --depth == 0) return true;
    }
    return false;
}

TokenScanner::Token TokenScanner::nextItem(UChar32 separator) {
    skipSpace();
    Token item;
    item.kind = at() == text_.size() ? RYTOKEN_END : RYTOKEN_STRING;
    item.form = RyTokenizer::ITEM;
    item.start = item.textStart = place_.position;
    while (at() < text_.size() && !isSpace(text_[at()])) {
        const UChar32 c = codePointAt(text_, at());
        if (c == separator) break;
        Token string;
        if (!isQuote(text_[at()]))
            place_.position += U16_LENGTH(c);
        else if (!readString(string))
            place_.position = static_cast<std::int32_t>(text_.size());
    }
    item.textEnd = place_.position;
    skipSpace();
    return item;
}

UnicodeString unquoteItem(std::u16string_view item) {
    UnicodeString text;
    while (!item.empty()) {
        const std::size_t plain = std::min(item.find_first_of(u"\"'"), item.size());
        text.append(item.data(), static_cast<std::int32_t>(plain));
        item.remove_prefix(plain);
        if (item.empty()) break;
        const std::size_t end = std::min(item.find(item.front(), 1), item.size());
        appendUnescaped(text, item.substr(1, end - 1));
        item.remove_prefix(std::min(end + 1, item.size()));
    }
    requireWhole(text);
    return text;
}

namespace {

RyValue makeNumberValue(const TokenScanner::Token& number) {
    const double value = number.number;
    const bool isInteger = number.unit == RYUNIT_NUMBER && !number.hasExponent &&
                           value <= std::numeric_limits<std::int32_t>::max() &&
                           value == std::floor(value);
    if (!isInteger)
        return RyValue(static_cast<float>(TokenScanner::getNumber(number)), number.unit);
    const auto integer = static_cast<std::int32_t>(value);
    return RyValue(number.isNegative ? -integer : integer);
}

RyValue makeStringValue(std::u16string_view contents) {
    UnicodeString text;
    appendUnescaped(text, contents);
    return RyValue(text, RYUNIT_LITERAL);
}

RyValue makeNameValue(std::u16string_view name) {
    const auto length = static_cast<std::int32_t>(name.size());
    const RyNameEnum builtin = findBuiltinName(name.data(), length);
    return RyValue(builtin != RN_EMPTY ? builtin : internSharedName(name.data(), length));
}

RyValue makeCharacterValue(UChar32 character) {
    RyValue value(character);
    value.setUnitType(RYUNIT_CHARACTER);
    return value;
}

}  // namespace

RyValue TokenScanner::makeValue(const Token& token) const {
    switch (token.kind) {
        case RYTOKEN_END:
        case RYTOKEN_NONE:
            return RyValue();
        case RYTOKEN_NUMBER:
            return makeNumberValue(token);
        case RYTOKEN_NAME:
            return makeNameValue(view(token));
        case RYTOKEN_STRING:
            if (token.form == RyTokenizer::ITEM)
                return RyValue(unquoteItem(view(token)), RYUNIT_LITERAL);
            return makeStringValue(view(token));
        case RYTOKEN_COLOR:
            return makeColorValue(static_cast<std::uint32_t>(token.number));
        default:
            return makeCharacterValue(token.kind);
    }
}

}  // namespace RynCommon
