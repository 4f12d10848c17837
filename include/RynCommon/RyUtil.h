// Small functions used across the library: base64, rounding, numbers as text, quoting.
#pragma once

#include <istream>
#include <ostream>

#include <RynCommon/Forward.h>
#include <RynCommon/RyNameEnum.h>

namespace RynCommon {

/// How a quoted string is written and read.
enum RyQuoteMode : std::uint8_t {
    RYQUOTE_DOUBLE = 0,  ///< in double quotes
    RYQUOTE_SINGLE = 1,  ///< in single quotes
    RYQUOTE_AUTO = 2  ///< in the quotes that the text lacks; double ones when it has both or none
};

/// How convertKansuji writes digits.
enum RyKansujiStyle : std::uint8_t {
    RYKANSUJI_PLAIN = 0,       ///< with place names, as spoken: 千二百三十四
    RYKANSUJI_FORMAL = 1,      ///< with place names, safe from alteration: 壱千弐百参拾四
    RYKANSUJI_POSITIONAL = 2,  ///< digit by digit: 一二三四
    RYKANSUJI_FULLWIDTH = 3    ///< digit by digit in full-width digits: １２３４
};

/// Static functions without state of their own. None follows the process's locale.
class RYNCOMMON_API RyUtil {
public:
    RyUtil() = delete;

    /// Reads `in` to its end; standard alphabet (RFC 4648), padded, without line breaks. `sizeHint`
    /// is the expected number of bytes and only sizes the result in advance. An exception of the
    /// stream passes on.
    static UnicodeString encodeBase64(std::istream& in, int sizeHint);
    /// The same in lines of 76 characters: `indent` before each line, `lineSeparator` between
    /// lines.
    static UnicodeString encodeBase64(std::istream& in, int sizeHint,
                                      const UnicodeString& lineSeparator,
                                      const UnicodeString& indent);
    /// Decodes the first `length` units of `text` (all of it when it is shorter) into `out`.
    /// Whatever is not a base64 letter is skipped, the first "=" ends the data, a trailing group of
    /// two or three letters gives one or two bytes.
    static void decodeBase64(const UnicodeString& text, int length, std::ostream& out);

    /// Rounds half away from zero; saturates, NaN gives 0.
    static int roundToInteger(double value);
    static int roundToInteger(float value);
    static double getNaN();
    static float getNaNf();
    static bool isNaN(double value);
    static bool isNaN(float value);

    static UnicodeString toString(int value);
    static UnicodeString toString(long long value);
    /// "%g" with "." as the decimal sign.
    static UnicodeString toString(double value);

    /// Reads a number (digits, a "." and digits, or both) at `position`, which moves past it. No
    /// sign, no exponent. False, and position unchanged, when there is none. Beyond the range of
    /// double the value is infinite. "5." is 5, the "." not taken.
    static bool parseNumber(const UnicodeString& text, int& position, double& value);
    /// Reads hexadecimal digits at `position`, which moves past them; keeps the low 32 bits. False
    /// when there is none.
    static bool parseHexNum(const UnicodeString& text, int& position, std::uint32_t& value);

    /// In quotes. Where needed a character is escaped as a backslash and six hexadecimal digits (a
    /// form that CSS reads as well): a quote of the enclosing kind, line breaks, and a backslash
    /// that six hexadecimal digits follow. Other backslashes stand for themselves, here and in the
    /// functions below, so that file names stay what they are.
    static UnicodeString quoteString(const UnicodeString& text, RyQuoteMode mode = RYQUOTE_AUTO);
    /// Takes one pair of matching quotes off and resolves escapes; a text without them is returned
    /// as it is.
    static UnicodeString unquoteString(const UnicodeString& text);
    /// Reads the quoted string that starts at `position` (a quote that `mode` admits; RYQUOTE_AUTO
    /// admits both) and reaches to the next quote of its kind; resolves escapes and moves
    /// `position` past the end. False, and nothing changed, when there is no such quote or no end.
    static bool parseString(const UnicodeString& text, int& position, UnicodeString& value,
                            RyQuoteMode mode = RYQUOTE_AUTO);
    /// `url("...")` with quotes, backslashes and line breaks escaped as in quoteString.
    static UnicodeString quoteUri(const UnicodeString& uri);
    /// The text inside of `url(...)`, trimmed, without one matching pair of quotes, escapes
    /// resolved. Other texts are trimmed and lose one matching pair, too.
    static UnicodeString unquoteUri(const UnicodeString& text);

    /// Writes `n` as `format` asks, in the manner of XSLT's number-to-string conversion. What
    /// stands before and after the first run of letters and digits is kept. That run, the token,
    /// names the numbering system by its first character:
    /// - A digit one of eighteen families, alone or at the end of a token that begins with the zero
    ///   of its family, is decimal, as wide as the token ("001").
    /// - i, I and the Roman numeral characters are Roman numerals up to 3999 in small letters and
    ///   39999 in capitals.
    /// - a, A, Greek, Cyrillic, kana, Hangul, and the CJK stems and branches count through their
    ///   alphabet: a to z, aa, ab. A language of its own letters has them behind a, A, and the
    ///   Greek and Cyrillic tokens (those that its ordering tells apart: Spanish has ñ, Czech ch).
    ///   Without these, Latin letters count the low 16 bits of the number.
    /// - 一 and 일 write digit by digit, 甲子 is the sexagenary cycle from 1 to 60.
    /// - א is Hebrew numerals without punctuation, zero and round thousands as words; any Arabic
    ///   letter is the Arabic alphabet.
    ///
    /// Any other token, and any number that a system cannot write (all negative ones among them),
    /// gives the decimal text. Decimal texts are grouped, and their padding with them:
    /// `groupingSeparator` parts groups of `groupingSize` digits, counted from the right. They are
    /// not when the separator is empty, the size below 1, or when separators would fill more than
    /// 64 Ki units and four times what was passed in.
    ///
    /// `letterValue` decides where letters serve in two ways. RN_traditional makes the Greek tokens
    /// Greek numerals up to 9999 (a numeral sign ʹ that ends the token is written behind the
    /// number) and Arabic letters abjad numerals up to 1999; RN_alphabetic makes the Hebrew token
    /// an alphabet. Every other name, the empty one for example, leaves a token what it is above.
    static UnicodeString formatNumber(int n, const UnicodeString& format,
                                      const UnicodeString& groupingSeparator, int groupingSize,
                                      const RyLang& lang, RyNameEnum letterValue);
    /// The same without grouping, each token in its usual letter value.
    static UnicodeString formatNumber(int n, const UnicodeString& format, const RyLang& lang);

    /// Writes `n` in Chinese numerals as Japanese does; a minus sign becomes a full-width one. A
    /// `groupingSeparator` that is not empty stands behind every 万, 億 and so on that more digits
    /// follow, and in the styles without place names between groups of three digits.
    static UnicodeString convertKansuji(int n, RyKansujiStyle style = RYKANSUJI_PLAIN,
                                        const UnicodeString& groupingSeparator = UnicodeString());
    /// Writes the numbers in `text` so: ASCII digits become numerals, "," and "." the separators,
    /// other printable ASCII characters full-width ones; the rest stays. With place names, commas
    /// that part digits by threes or by fours belong to the number and become separators behind its
    /// 万, 億 and so on; leading zeros are dropped; digits that follow a digit and a "." are
    /// written one by one, and so is a number beyond the last place name, 極 (10 to the 48th).
    static UnicodeString convertKansuji(const UnicodeString& text,
                                        RyKansujiStyle style = RYKANSUJI_PLAIN,
                                        const UnicodeString& groupingSeparator = u"\u3001",
                                        const UnicodeString& decimalSeparator = u"\u30FB");

    /// Releases tables that number formatting builds on first use; they are built again when
    /// needed.
    static void cleanup();
};

}  // namespace RynCommon
