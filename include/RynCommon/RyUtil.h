// Small functions used across the library: base64, rounding, numbers as text, quoting.
#pragma once

#include <istream>
#include <ostream>

#include <RynCommon/Forward.h>

namespace RynCommon {

/// How a quoted string is written and read.
enum RyQuoteMode : std::uint8_t {
    RYQUOTE_DOUBLE = 0,  ///< in double quotes
    RYQUOTE_SINGLE = 1,  ///< in single quotes
    RYQUOTE_AUTO = 2     ///< in the quotes that the text lacks; double ones when it has both or none
};

/// Static functions without state of their own. None follows the process's locale.
class RYNCOMMON_API RyUtil {
public:
    RyUtil() = delete;

    /// Reads `in` to its end; standard alphabet (RFC 4648), padded, without line breaks. `sizeHint` is the expected
    /// number of bytes and only sizes the result in advance. An exception of the stream passes on.
    static UnicodeString encodeBase64(std::istream& in, int sizeHint);
    /// The same in lines of 76 characters: `indent` before each line, `lineSeparator` between lines.
    static UnicodeString encodeBase64(std::istream& in, int sizeHint,
                                      const UnicodeString& lineSeparator,
                                      const UnicodeString& indent);
    /// Decodes the first `length` units of `text` (all of it when it is shorter) into `out`. Whatever is not a base64
    /// letter is skipped, the first "=" ends the data, a trailing group of two or three letters gives one or two bytes.
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

    /// Reads a number (digits, a "." and digits, or both) at `position`, which moves past it. No sign, no exponent.
    /// False, and position unchanged, when there is none. Beyond the range of double the value is infinite. "5." is 5,
    /// the "." not taken.
    static bool parseNumber(const UnicodeString& text, int& position, double& value);
    /// Reads hexadecimal digits at `position`, which moves past them; keeps the low 32 bits. False when there is none.
    static bool parseHexNum(const UnicodeString& text, int& position, std::uint32_t& value);

    /// In quotes. Where needed a character is escaped as a backslash and six hexadecimal digits (a form that CSS reads
    /// as well): a quote of the enclosing kind, line breaks, and a backslash that six hexadecimal digits follow. Other
    /// backslashes stand for themselves, here and in the functions below, so that file names stay what they are.
    static UnicodeString quoteString(const UnicodeString& text, RyQuoteMode mode = RYQUOTE_AUTO);
    /// Takes one pair of matching quotes off and resolves escapes; a text without them is returned as it is.
    static UnicodeString unquoteString(const UnicodeString& text);
    /// Reads the quoted string that starts at `position` (a quote that `mode` admits; RYQUOTE_AUTO admits both) and
    /// reaches to the next quote of its kind; resolves escapes and moves `position` past the end. False, and nothing
    /// changed, when there is no such quote or no end.
    static bool parseString(const UnicodeString& text, int& position, UnicodeString& value,
                            RyQuoteMode mode = RYQUOTE_AUTO);
    /// `url("...")` with quotes, backslashes and line breaks escaped as in quoteString.
    static UnicodeString quoteUri(const UnicodeString& uri);
    /// The text inside of `url(...)`, trimmed, without one matching pair of quotes, escapes resolved. Other texts are
    /// trimmed and lose one matching pair, too.
    static UnicodeString unquoteUri(const UnicodeString& text);

    /// Releases tables that number formatting builds on first use; they are built again when needed.
    static void cleanup();
};

}  // namespace RynCommon
