// The scanner under the tokenizer and the parsers of values: tokens of a text that is only looked
// at.
//
// Time is linear in the text whatever is asked, because of three rules. The run of name characters
// behind a number is remembered, so that a suffix which is put back is not looked through again
// from every number inside of it
// ("1.1.1.1..."). An end of string is looked for in vain at most once for each kind of quote, since
// no quote of that kind can follow. And nesting is counted, not entered.
#pragma once

#include <string_view>

#include <RynCommon/RyTokenizer.h>

namespace RynCommon {

class TokenScanner {
public:
    using Token = RyTokenizer::Token;
    using Place = RyTokenizer::Place;

    /// Reads on at `place`, which is kept up to date. Both must outlive the scanner.
    TokenScanner(std::u16string_view text, Place& place) : text_(text), place_(place) {}

    /// The next token; a number with its whole suffix, known or not.
    Token next();
    /// The next token; a number with a sign right in front of it and its suffix settled.
    Token nextSigned();
    /// The same with an exponent.
    Token nextExp();

    /// Reads the only token of the text as RyValue::parse takes it. False when there are others, or
    /// when it is a character.
    bool readSingle(Token& token) {
        token = nextSigned();
        return token.kind < RYTOKEN_END && isAtEnd();
    }

    /// Settles the suffix of a number that was just read: its unit is found, or an unknown suffix
    /// is put back and taken off the token. Nothing happens to other tokens and to a settled
    /// number.
    void settleSuffix(Token& number);
    /// Joins an exponent to a settled plain number that ends here.
    void joinExponent(Token& number);

    /// White space is skipped, and nothing follows.
    bool isAtEnd() {
        skipSpace();
        return at() == text_.size();
    }
    /// Whether the next unit is `unit`, white space counting.
    bool isAt(char16_t unit) const { return peek(0) == unit; }
    /// Consumes white space and then `unit`; only the white space when another unit follows.
    bool skip(char16_t unit);
    /// Whether the unit before here is white space.
    bool isBehindSpace() const { return at() > 0 && isSpace(text_[at() - 1]); }
    /// Consumes one unit that has been looked at.
    void skipUnit() { ++place_.position; }
    /// Consumes "#" and the name characters behind it; empty, and only white space consumed, when
    /// there are none.
    std::u16string_view nextMarker();
    /// Goes behind the ")" that closes what was opened before here; strings are taken whole. False,
    /// and at the end of the text, when there is none.
    bool skipGroup();
    /// Consumes a raw item, see RyTokenizer::nextSeparatedValue.
    Token nextItem(UChar32 separator);
    void skipSpace() {
        while (at() < text_.size() && isSpace(text_[at()])) ++place_.position;
    }

    /// Text of a token, or the contents of a string as they are spelt.
    std::u16string_view view(const Token& token) const {
        return slice(token.textStart, token.textEnd);
    }
    std::u16string_view slice(std::int32_t start, std::int32_t end) const {
        return text_.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(end - start));
    }
    std::u16string_view text() const { return text_; }
    std::int32_t position() const { return place_.position; }

    /// The value of a token; its number is settled. Only here a name is interned.
    RyValue makeValue(const Token& token) const;
    /// The number of a settled number token.
    static double getNumber(const Token& number) {
        return number.isNegative ? 0 - number.number : number.number;
    }

private:
    static constexpr bool isDigit(char16_t unit) { return unit >= u'0' && unit <= u'9'; }
    static constexpr bool isSpace(char16_t unit) {
        return unit <= u' ' && (unit == u' ' || unit == u'\t' || unit == u'\n' || unit == u'\r');
    }
    std::size_t at() const { return static_cast<std::size_t>(place_.position); }
    /// The unit `offset` units on; a noncharacter behind the end.
    char16_t peek(std::size_t offset) const {
        return at() + offset < text_.size() ? text_[at() + offset] : u'\uFFFF';
    }
    bool isNumberAt(std::size_t offset) const {
        return isDigit(peek(offset)) || (peek(offset) == u'.' && isDigit(peek(offset + 1)));
    }
    std::int32_t findRunEnd(std::int32_t start);

    void readNumber(Token& token);
    /// A few digits without a fraction, as most numbers are. False, and nothing read, for any other
    /// number.
    bool readSmallInteger(Token& token);
    bool readString(Token& token);
    bool readColor(Token& token);
    void readCharacter(Token& token);

    std::u16string_view text_;
    Place& place_;
};

/// The view of a text; empty for a bogus one.
inline std::u16string_view viewText(const UnicodeString& text) {
    return {text.getBuffer(), static_cast<std::size_t>(text.length())};
}

/// The contents of an item with its quotes taken off.
UnicodeString unquoteItem(std::u16string_view item);

}  // namespace RynCommon
