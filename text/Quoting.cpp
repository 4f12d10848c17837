// Quoted strings and url(...) notation.
//
// The contents of a quoted string reach to the next quote of its kind, and a backslash in them
// stands for itself, so that file names such as C:\dir\a.png need no care. One form is an escape: a
// backslash and exactly six hexadecimal digits, which is also what CSS 2.1 (4.1.3) takes for the
// character of that number without a blank after it. Writing uses it for the few characters that
// would be misread: the enclosing quote, line breaks, and a backslash that six hexadecimal digits
// follow. So every text is read back as it was. In url("...") every backslash and both quotes are
// written in that way, since readers of CSS take other escapes there.
#include "text/Quoting.h"

#include <unicode/uchar.h>
#include <unicode/utf16.h>

#include "core/MemoryCheck.h"
#include "text/NumberText.h"

namespace RynCommon {

namespace {

constexpr std::size_t ESCAPE_DIGITS = 6;

std::u16string_view viewOf(const UnicodeString& text) {
    return {text.getBuffer(), static_cast<std::size_t>(text.length())};
}

void append(UnicodeString& out, std::u16string_view text) {
    out.append(text.data(), static_cast<std::int32_t>(text.size()));
}

constexpr bool isQuote(char16_t unit) {
    return unit == u'"' || unit == u'\'';
}
constexpr bool isLineBreak(char16_t unit) {
    return unit == u'\n' || unit == u'\r' || unit == u'\f';
}

/// Number of the escape whose backslash stands at the start of `text`, -1 when it is none.
std::int32_t readEscape(std::u16string_view text) {
    if (text.size() <= ESCAPE_DIGITS) return -1;
    std::int32_t number = 0;
    for (std::size_t i = 1; i <= ESCAPE_DIGITS; ++i) {
        const int digit = getHexDigit(text[i]);
        if (digit < 0) return -1;
        number = number * 16 + digit;
    }
    return number;
}

void appendEscape(UnicodeString& out, char16_t unit) {
    out.append(u'\\');
    appendHex(out, unit, ESCAPE_DIGITS);
}

template <class NeedsEscape>
void appendEscaped(UnicodeString& out, std::u16string_view text, NeedsEscape needsEscape) {
    std::size_t runStart = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (!needsEscape(i)) continue;
        append(out, text.substr(runStart, i - runStart));
        appendEscape(out, text[i]);
        runStart = i + 1;
    }
    append(out, text.substr(runStart));
}

char16_t chooseQuote(std::u16string_view text, RyQuoteMode mode) {
    if (mode != RYQUOTE_AUTO) return mode == RYQUOTE_SINGLE ? u'\'' : u'"';
    const bool hasDouble = text.find(u'"') != std::u16string_view::npos;
    const bool hasSingle = text.find(u'\'') != std::u16string_view::npos;
    return hasDouble && !hasSingle ? u'\'' : u'"';
}

bool isQuoted(std::u16string_view text) {
    return text.size() >= 2 && isQuote(text.front()) && text.back() == text.front();
}

bool isUrlNotation(const UnicodeString& text) {
    static constexpr char16_t PREFIX[] = u"url(";
    return text.length() >= 5 && text.charAt(text.length() - 1) == u')' &&
           text.caseCompare(0, 4, PREFIX, 0, 4, U_FOLD_CASE_DEFAULT) == 0;
}

bool isOpenedBy(RyQuoteMode mode, char16_t unit) {
    if (mode == RYQUOTE_AUTO) return isQuote(unit);
    return unit == (mode == RYQUOTE_SINGLE ? u'\'' : u'"');
}

}  // namespace

void appendQuoted(UnicodeString& out, std::u16string_view text, RyQuoteMode mode) {
    const char16_t quote = chooseQuote(text, mode);
    out.append(quote);
    appendEscaped(out, text, [&](std::size_t i) {
        if (text[i] == u'\\') return readEscape(text.substr(i)) >= 0;
        return text[i] == quote || isLineBreak(text[i]);
    });
    out.append(quote);
    requireWhole(out);
}

void appendUnescaped(UnicodeString& out, std::u16string_view contents) {
    std::size_t backslash = contents.find(u'\\');
    while (backslash != std::u16string_view::npos) {
        append(out, contents.substr(0, backslash));
        contents.remove_prefix(backslash);
        const std::int32_t number = readEscape(contents);
        const bool isEscape = number >= 0 && number <= 0x10FFFF && !U_IS_SURROGATE(number);
        out.append(isEscape ? static_cast<UChar32>(number) : static_cast<UChar32>(u'\\'));
        contents.remove_prefix(isEscape ? 1 + ESCAPE_DIGITS : 1);
        backslash = contents.find(u'\\');
    }
    append(out, contents);
    requireWhole(out);
}

UnicodeString RyUtil::quoteString(const UnicodeString& text, RyQuoteMode mode) {
    UnicodeString result;
    appendQuoted(result, viewOf(text), mode);
    return result;
}

UnicodeString RyUtil::unquoteString(const UnicodeString& text) {
    const std::u16string_view view = viewOf(text);
    if (!isQuoted(view)) return text;
    UnicodeString result;
    appendUnescaped(result, view.substr(1, view.size() - 2));
    return result;
}

bool RyUtil::parseString(const UnicodeString& text, int& position, UnicodeString& value,
                         RyQuoteMode mode) {
    if (position < 0 || position >= text.length()) return false;
    const std::u16string_view rest = viewOf(text).substr(static_cast<std::size_t>(position));
    if (!isOpenedBy(mode, rest.front())) return false;
    const std::size_t end = rest.find(rest.front(), 1);
    if (end == std::u16string_view::npos) return false;
    UnicodeString contents;
    appendUnescaped(contents, rest.substr(1, end - 1));
    position += static_cast<int>(end) + 1;
    value = contents;
    return true;
}

UnicodeString RyUtil::quoteUri(const UnicodeString& uri) {
    const std::u16string_view view = viewOf(uri);
    UnicodeString result(u"url(\"");
    appendEscaped(result, view, [&](std::size_t i) {
        return isQuote(view[i]) || view[i] == u'\\' || isLineBreak(view[i]);
    });
    result.append(u"\")", 2);
    requireWhole(result);
    return result;
}

UnicodeString RyUtil::unquoteUri(const UnicodeString& text) {
    UnicodeString trimmed(text);
    trimmed.trim();
    if (isUrlNotation(trimmed)) {
        trimmed.truncate(trimmed.length() - 1);
        trimmed.remove(0, 4).trim();
    }
    requireWhole(trimmed);
    std::u16string_view view = viewOf(trimmed);
    if (isQuoted(view)) view = view.substr(1, view.size() - 2);
    UnicodeString result;
    appendUnescaped(result, view);
    return result;
}

}  // namespace RynCommon
