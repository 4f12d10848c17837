// The lexer of property texts.
#pragma once

#include <RynCommon/Forward.h>
#include <RynCommon/RyValue.h>

namespace RynCommon {

class TokenScanner;

/// Kinds of tokens. Any value from 0 on is the code point of a single character, U+0000 and lone
/// surrogates included.
enum RyTokenType : std::int32_t {
    RYTOKEN_END = -1,
    RYTOKEN_NUMBER = -2,
    RYTOKEN_NAME = -3,    ///< NCName of Namespaces in XML 1.0
    RYTOKEN_NONE = -4,    ///< nothing read yet
    RYTOKEN_STRING = -5,  ///< a quoted string or a separated item
    RYTOKEN_COLOR = -6    ///< "#" and hexadecimal digits
};

/// Cuts a property text into tokens and turns them into values. White space (space, TAB, LF, CR)
/// separates tokens.
///
/// A number is digits, "." and digits, or both ("5." is 5 and then "."), with "%" or a run of name
/// characters right behind it as its unit. "#" and hexadecimal digits are a colour: up to three
/// digits are doubled ("#abc" is AABBCC,
/// "#a" 0000AA), of more than six the last six count. A string reaches to the next quote of its
/// kind, with the escapes of RyUtil::quoteString resolved; a quote without an end is a single
/// character.
///
/// Never throws but for lack of memory, and reads any text in linear time. A copy is independent of
/// the original. Used by one thread at a time.
class RYNCOMMON_API RyTokenizer {
public:
    explicit RyTokenizer(const UnicodeString& text);

    /// Reads the next token and returns its kind.
    int nextToken();
    /// The next token as a value: null at the end; a colour; a literal string; a name, interned; a
    /// character (an integer of that unit); a number: an integer when it is integral and fits 32
    /// bits, else a real, with "%" or a unit always a real of that. Units are taken in any case of
    /// letters ("12PT"), except that "Hz" and "kHz" are not known as suffixes. An unknown suffix is
    /// left for the next token ("12foo" is 12 and then the name foo).
    RyValue nextTokenValue();
    /// The same with a "+" or "-" joined to a number right behind it. A sign without one is a
    /// character.
    RyValue nextTokenValueSigned();
    /// The same with an exponent: "e" or "E" and a signed number right behind a plain number give a
    /// real, in the unit of the exponent ("1e3", "1e2%" is 100%).
    RyValue nextTokenValueExp();
    /// The same read in double precision, without regard to the unit; NaN for anything but a
    /// number.
    double nextTokenDoubleExp();
    /// The same with groups and functions, up to the matching ")": "url(...)" gives a URI string,
    /// "rgb(...)" a colour (see RyValue::parseColor), any other group or function a string of
    /// unknown sort with its whole text, and so does one without a ")", which ends with the text.
    /// Functions inside of others are part of their text. A function's name is followed by "(" at
    /// once.
    RyValue nextTokenValueFunc();

    /// The next raw item, up to the separator or white space, quotes taken off (a quote without an
    /// end takes the rest of the text); white space after it is skipped. At a separator the item is
    /// empty and the separator stays: alternate with skipSeparator. At the end of the text the item
    /// is empty and the token is RYTOKEN_END, else RYTOKEN_STRING. A pushed-back token gives its
    /// text.
    UnicodeString nextSeparatedValue(wchar_t separator);
    /// Skips white space and, when the separator follows, that and the white space after it, and
    /// says whether it did. With a token pushed back it does nothing and returns false.
    bool skipSeparator(wchar_t separator);
    /// Whether skipSeparator would find the separator. Consumes nothing.
    bool scanSeparator(wchar_t separator) const;

    /// Lets the next reading give the current token again. A function or group, and for the signed
    /// readings a character, is read afresh from its start. Before the first token it does nothing.
    void pushBack() { isPushedBack_ = token_.kind != RYTOKEN_NONE; }

    /// Kind of the current token.
    int getToken() const { return token_.kind; }
    /// The current number without its sign, or the 0xRRGGBB of the current colour.
    double getNumber() const { return token_.number; }
    /// A name, the contents of a string or item, or the suffix of a number.
    UnicodeString getText() const;
    /// Where reading goes on, in the tokenizer's own copy of the text, which ends in U+0000. Valid
    /// until the tokenizer is assigned to or destroyed.
    const char16_t* getPtr();

private:
    friend class TokenScanner;

    /// How the text of a token is spelt in the source.
    enum Form : std::uint8_t { PLAIN, QUOTED, ITEM, NOTATION };

    struct Token {
        std::int32_t kind = RYTOKEN_NONE;
        std::int32_t start = 0;
        std::int32_t textStart = 0;
        std::int32_t textEnd = 0;
        double number = 0;
        /// Unit of a number; NONE as long as its suffix is as it was read.
        RyValueUnitType unit = RYUNIT_NONE;
        bool isNegative = false;
        /// A real though it may be integral.
        bool hasExponent = false;
        Form form = PLAIN;
    };
    struct Place {
        std::int32_t position = 0;
        /// The last run of name characters, so that no run is looked through twice.
        std::int32_t runStart = 0;
        std::int32_t runEnd = 0;
    };

    TokenScanner makeScanner();
    bool takePushedBack(bool rereadsCharacters);
    void readSigned();
    void readExp();
    RyValue takeNotation();

    UnicodeString source_;
    Token token_;
    Place place_;
    bool isPushedBack_ = false;
};

}  // namespace RynCommon
