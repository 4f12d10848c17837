// Fuzz target of number formatting and of the small text functions: decimal output and Chinese
// numerals are read back as the number, prefix and suffix stay, and base64 and quoting return what
// went in.
//
// The input is a number, a size of groups, a choice of separator, language and letter value, and
// then the format in UTF-8.
#include <RynCommon/RyLang.h>
#include <RynCommon/RyName.h>
#include <RynCommon/RyUtil.h>
#include <unicode/uchar.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sstream>
#include <string>
#include <string_view>

using namespace RynCommon;

namespace {

[[noreturn]] void fail(const char* what, int n, const UnicodeString& in, const UnicodeString& out) {
    std::string a;
    std::string b;
    std::fprintf(stderr, "%s: %d\n--- in\n%s\n--- out\n%s\n", what, n, in.toUTF8String(a).c_str(),
                 out.toUTF8String(b).c_str());
    std::abort();
}

struct Request {
    std::int32_t n = 0;
    std::int8_t size = 0;
    std::uint8_t choices = 0;

    UnicodeString separator() const {
        static constexpr const char16_t* SEPARATORS[] = {u"", u",", u"\u066C", u" - "};
        return SEPARATORS[choices & 3];
    }
    RyLang lang() const {
        static constexpr const char16_t* TAGS[] = {u"",   u"es", u"hu", u"tr",
                                                   u"ru", u"sr", u"ja", u"he"};
        return RyLang(TAGS[choices >> 2 & 7]);
    }
    RyNameEnum letterValue() const {
        return choices >> 5 == 1 ? RN_traditional : choices >> 5 == 2 ? RN_alphabetic : RN_EMPTY;
    }
};

bool isTokenCharacter(UChar32 c) {
    return u_isalnum(c) != 0 || (c >= 0x2160 && c <= 0x2183);
}

/// The token of a format and what stands around it.
struct Pieces {
    explicit Pieces(const UnicodeString& format) {
        std::int32_t begin = 0;
        while (begin < format.length() && !isTokenCharacter(format.char32At(begin)))
            begin = format.moveIndex32(begin, 1);
        std::int32_t end = begin;
        while (end < format.length() && isTokenCharacter(format.char32At(end)))
            end = format.moveIndex32(end, 1);
        prefix = format.tempSubString(0, begin);
        token = format.tempSubStringBetween(begin, end);
        suffix = format.tempSubString(end);
    }
    UnicodeString prefix;
    UnicodeString token;
    UnicodeString suffix;
};

/// The zero of the digits of a token such as 001; 0 when it is none.
UChar32 findZero(const UnicodeString& token) {
    if (token.isEmpty()) return u'0';
    const UChar32 zero = token.char32At(token.length() - 1) - 1;
    if (u_charDigitValue(zero) != 0 || zero > 0xFFFF) return 0;
    for (std::int32_t i = 0; i + 1 < token.length(); ++i)
        if (token[i] != zero) return 0;
    return zero;
}

/// What C prints with "%0*d", each digit moved to that zero.
UnicodeString printDecimal(int n, std::int32_t width, UChar32 zero) {
    std::string digits = std::to_string(n);
    const std::size_t sign = n < 0 ? 1 : 0;
    while (digits.size() < static_cast<std::size_t>(width)) digits.insert(sign, 1, '0');
    UnicodeString text;
    for (const char digit : digits)
        text.append(digit == '-' ? UChar32{u'-'} : zero + (digit - '0'));
    return text;
}

bool isKnownZero(UChar32 zero) {
    static constexpr std::u16string_view ZEROS =
        u"0\u0660\u06F0\u0966\u09E6\u0A66\u0AE6\u0B66\u0C66\u0CE6\u0D66\u0E50\u0ED0\u0F20\u1040"
        u"\u17E0\u1810\uFF10";
    return ZEROS.find(static_cast<char16_t>(zero)) != ZEROS.npos;
}

void checkFormat(const Request& request, const UnicodeString& format) {
    const Pieces pieces(format);
    const UnicodeString text =
        RyUtil::formatNumber(request.n, format, request.separator(), request.size, request.lang(),
                             request.letterValue());
    if (!text.startsWith(pieces.prefix) || !text.endsWith(pieces.suffix) ||
        text.length() <= pieces.prefix.length() + pieces.suffix.length())
        fail("prefix or suffix lost", request.n, format, text);
    UnicodeString number =
        text.tempSubStringBetween(pieces.prefix.length(), text.length() - pieces.suffix.length());
    const UChar32 zero = findZero(pieces.token);
    if (zero == 0 || !isKnownZero(zero)) return;
    if (!request.separator().isEmpty()) number.findAndReplace(request.separator(), UnicodeString());
    if (number != printDecimal(request.n, pieces.token.length(), zero))
        fail("not the number", request.n, format, text);
}

/// The number of a Chinese numeral with place names.
std::int64_t readNumeral(const UnicodeString& numeral, std::u16string_view digits,
                         std::u16string_view places) {
    constexpr std::u16string_view GROUPS = u"万億";
    std::int64_t sum = 0;
    std::int64_t group = 0;
    std::int64_t digit = -1;
    for (std::int32_t i = 0; i < numeral.length(); ++i) {
        const char16_t unit = numeral[i];
        if (const std::size_t at = GROUPS.find(unit); at != GROUPS.npos) {
            sum += (group + std::max<std::int64_t>(digit, 0)) * (at == 0 ? 10'000 : 100'000'000);
            group = 0;
            digit = -1;
        } else if (const std::size_t place = places.find(unit); place != places.npos) {
            constexpr std::array<int, 3> POWERS = {10, 100, 1000};
            group += (digit < 0 ? 1 : digit) * POWERS[place];
            digit = -1;
        } else {
            digit = static_cast<std::int64_t>(digits.find(unit));
        }
    }
    return sum + group + std::max<std::int64_t>(digit, 0);
}

void checkKansuji(int n, const UnicodeString& text) {
    const UnicodeString plain = RyUtil::convertKansuji(n);
    const UnicodeString formal = RyUtil::convertKansuji(n, RYKANSUJI_FORMAL);
    const std::int64_t magnitude = n < 0 ? -std::int64_t{n} : std::int64_t{n};
    const std::int32_t sign = n < 0 ? 1 : 0;
    if (readNumeral(plain.tempSubString(sign), u"〇一二三四五六七八九", u"十百千") != magnitude)
        fail("not the number", n, u"", plain);
    if (readNumeral(formal.tempSubString(sign), u"零壱弐参四五六七八九", u"拾百千") != magnitude)
        fail("not the number", n, u"", formal);
    for (const RyKansujiStyle style : {RYKANSUJI_POSITIONAL, RYKANSUJI_FULLWIDTH})
        if (RyUtil::convertKansuji(text, style, u",", u".").length() != text.length())
            fail("length changed", n, text, RyUtil::convertKansuji(text, style));
    for (const RyKansujiStyle style : {RYKANSUJI_PLAIN, RYKANSUJI_FORMAL})
        if (RyUtil::convertKansuji(text, style).isEmpty() != text.isEmpty())
            fail("numeral lost", n, text, u"");
}

void checkBase64(const std::string& bytes, const Request& request) {
    std::istringstream in(bytes);
    std::istringstream again(bytes);
    const UnicodeString plain = RyUtil::encodeBase64(in, request.n % 0x10000);
    const UnicodeString lines = RyUtil::encodeBase64(again, 0, u"\r\n", u"  ");
    for (const UnicodeString& text : {plain, lines}) {
        std::ostringstream out;
        RyUtil::decodeBase64(text, text.length(), out);
        if (out.str() != bytes) fail("base64 changed the bytes", request.n, plain, text);
    }
}

void checkQuoting(const UnicodeString& text) {
    for (const RyQuoteMode mode : {RYQUOTE_DOUBLE, RYQUOTE_SINGLE, RYQUOTE_AUTO}) {
        const UnicodeString quoted = RyUtil::quoteString(text, mode);
        UnicodeString read;
        int position = 0;
        if (RyUtil::unquoteString(quoted) != text ||
            !RyUtil::parseString(quoted, position, read, mode) || read != text ||
            position != quoted.length())
            fail("quoting changed the text", mode, text, quoted);
    }
    const UnicodeString uri = RyUtil::quoteUri(text);
    if (RyUtil::unquoteUri(uri) != text) fail("quoteUri changed the text", 0, text, uri);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t HEAD = 6;
    if (size < HEAD) return 0;
    Request request;
    std::memcpy(&request.n, data, sizeof request.n);
    request.size = static_cast<std::int8_t>(data[4]);
    request.choices = data[5];
    const std::string bytes(reinterpret_cast<const char*>(data) + HEAD, size - HEAD);
    const UnicodeString text = UnicodeString::fromUTF8(bytes);
    checkFormat(request, text);
    checkKansuji(request.n, text);
    checkBase64(bytes, request);
    checkQuoting(text);
    return 0;
}
