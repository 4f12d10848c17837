// Numbers for pages and lists: finds the token's numbering system and falls back to decimal where
// there is none.
//
// The rooms of the systems each append their text and answer whether they could; a room that could
// not has appended nothing. They look at the token's first character, except for decimal forms (its
// last character, too) and for those that want an exact token. The order in which they are asked
// does not matter, for no first character is claimed twice, except by letters that serve as
// alphabet and as numerals: there the letter value decides.
#include <RynCommon/RyLang.h>
#include <RynCommon/RyUtil.h>
#include <unicode/uchar.h>

#include "core/MemoryCheck.h"
#include "text/number/Alphabets.h"
#include "text/number/CjkNumerals.h"
#include "text/number/Digits.h"
#include "text/number/FormatToken.h"
#include "text/number/HebrewNumerals.h"
#include "text/number/LanguageAlphabets.h"
#include "text/number/LetterValueNumerals.h"
#include "text/number/Roman.h"
#include "text/number/TextViews.h"

namespace RynCommon {

namespace {

/// What a number is to look like, apart from its grouping.
struct Request {
    const FormatPieces& pieces;
    const RyLang& lang;
    RyNameEnum letterValue;
};

bool isArabicLetter(char32_t c) {
    return c >= 0x0600 && c <= 0x06FF && u_isalpha(static_cast<UChar32>(c)) != 0;
}

/// Numeral sign or the prime that it is canonically equivalent to: part of a token, since both
/// count as letters.
bool isKeraia(char32_t c) {
    return c == 0x0374 || c == 0x02B9;
}

bool appendGreekValues(UnicodeString& text, int n, const FormatPieces& pieces) {
    const bool isSmall = pieces.first == U'α';
    if (!appendLetterValues(text, n, isSmall ? GREEK_SMALL_VALUES : GREEK_CAPITAL_VALUES))
        return false;
    if (isKeraia(pieces.last)) text.append(static_cast<char16_t>(pieces.last));
    return true;
}

bool appendArabic(UnicodeString& text, int n, RyNameEnum letterValue) {
    if (letterValue == RN_traditional) return appendLetterValues(text, n, ABJAD_VALUES);
    return appendAlphabetic(text, n, *findSimpleAlphabet(U'أ'));
}

/// The alphabet of the language where it has one, else the one of the token.
bool appendLetters(UnicodeString& text, int n, const RyLang& lang, char32_t first) {
    const SimpleAlphabet* alphabet = findSimpleAlphabet(first);
    if (alphabet == nullptr) return false;
    if (!alphabet->isOfLanguage || lang.isEmpty()) return appendAlphabetic(text, n, *alphabet);
    const auto table = acquireLanguageAlphabets();
    const LanguageAlphabet* own = table->find(lang.getLanguage(), first);
    return own != nullptr ? own->append(text, n) : appendAlphabetic(text, n, *alphabet);
}

bool appendInSystem(UnicodeString& text, int n, const Request& request) {
    const std::u16string_view token = request.pieces.token;
    const char32_t first = request.pieces.first;
    if (appendRoman(text, n, first)) return true;
    if (token == u"一") return appendPositional(text, n, KANJI_DIGITS);
    if (token == u"일") return appendPositional(text, n, KOREAN_DIGITS);
    if (token == u"甲子") return appendSexagenary(text, n);
    if (first == U'א' && request.letterValue != RN_alphabetic) return appendHebrew(text, n);
    if ((first == U'α' || first == U'Α') && request.letterValue == RN_traditional)
        return appendGreekValues(text, n, request.pieces);
    if (isArabicLetter(first)) return appendArabic(text, n, request.letterValue);
    return appendLetters(text, n, request.lang, first);
}

void appendNumber(UnicodeString& text, int n, const Request& request, const Grouping& grouping) {
    if (const auto form = findDecimalForm(request.pieces))
        appendDecimal(text, n, *form, grouping);
    else if (!appendInSystem(text, n, request))
        appendDecimal(text, n, DecimalForm(), grouping);
}

UnicodeString formatPieces(int n, const UnicodeString& format, const Grouping& grouping,
                           const RyLang& lang, RyNameEnum letterValue) {
    const FormatPieces pieces = splitFormat(viewOf(format));
    UnicodeString text;
    appendView(text, pieces.prefix);
    appendNumber(text, n, {pieces, lang, letterValue}, grouping);
    appendView(text, pieces.suffix);
    requireWhole(text);
    return text;
}

/// The numeral of a format that is i or I and nothing else, if there is one.
std::u16string_view findWholeText(int n, const UnicodeString& format) {
    if (format.length() != 1) return {};
    return findReadyRoman(n, format.charAt(0));
}

/// A string that refers to constant storage, which ICU copies as soon as the string is changed.
UnicodeString referTo(std::u16string_view text) {
    return UnicodeString(false, text.data(), static_cast<std::int32_t>(text.size()));
}

}  // namespace

UnicodeString RyUtil::formatNumber(int n, const UnicodeString& format,
                                   const UnicodeString& groupingSeparator, int groupingSize,
                                   const RyLang& lang, RyNameEnum letterValue) {
    const std::u16string_view whole = findWholeText(n, format);
    if (!whole.empty()) return referTo(whole);
    return formatPieces(n, format, {viewOf(groupingSeparator), groupingSize}, lang, letterValue);
}

UnicodeString RyUtil::formatNumber(int n, const UnicodeString& format, const RyLang& lang) {
    const std::u16string_view whole = findWholeText(n, format);
    if (!whole.empty()) return referTo(whole);
    return formatPieces(n, format, Grouping(), lang, RN_EMPTY);
}

}  // namespace RynCommon
