// Fuzz target of the parsers of property texts. Every reading has to end at the end of the text;
// tokens cover the text; what was pushed back is read alike; and a parsed value's text is parsed
// into an equal value.
//
// The input is UTF-8, or UTF-16 in the machine's order behind a byte FF.
#include <RynCommon/RyNamedValue.h>
#include <RynCommon/RyTokenizer.h>
#include <RynCommon/RyValue.h>
#include <unicode/utf16.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

using namespace RynCommon;

namespace {

[[noreturn]] void fail(const char* what, const UnicodeString& text, const UnicodeString& found) {
    std::string a;
    std::string b;
    std::fprintf(stderr, "%s\n--- text\n%s\n--- found\n%s\n", what, text.toUTF8String(a).c_str(),
                 found.toUTF8String(b).c_str());
    std::abort();
}

UnicodeString readInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0 || data[0] != 0xFF)
        return UnicodeString::fromUTF8(
            {reinterpret_cast<const char*>(data), static_cast<std::int32_t>(size)});
    std::u16string units((size - 1) / 2, u'\0');
    std::memcpy(units.data(), data + 1, units.size() * 2);
    return UnicodeString(units.data(), static_cast<std::int32_t>(units.size()));
}

bool isSpace(char16_t unit) {
    return unit == u' ' || unit == u'\t' || unit == u'\n' || unit == u'\r';
}

bool isHex(char16_t unit) {
    return unit < 0x80 && std::strchr("0123456789abcdefABCDEF", static_cast<char>(unit)) != nullptr;
}

/// A text under a tokenizer, and how far it was read.
class Reader {
public:
    explicit Reader(const UnicodeString& text) : tokenizer(text), text_(text) {
        start_ = tokenizer.getPtr();
    }
    std::int32_t position() { return static_cast<std::int32_t>(tokenizer.getPtr() - start_); }
    bool isAtEnd() { return position() == text_.length(); }

    RyTokenizer tokenizer;

private:
    const UnicodeString& text_;
    const char16_t* start_;
};

bool isSpelt(const RyTokenizer& tokenizer, const UnicodeString& piece) {
    const UnicodeString text = tokenizer.getText();
    const std::int32_t last = piece.length() - 1;
    switch (tokenizer.getToken()) {
        case RYTOKEN_NUMBER:
            return piece.endsWith(text) &&
                   (piece[0] == u'.' || (piece[0] >= u'0' && piece[0] <= u'9'));
        case RYTOKEN_NAME:
            return piece == text;
        case RYTOKEN_STRING:
            return last > 0 && piece.indexOf(piece[0], 1) == last && text.length() <= last - 1;
        case RYTOKEN_COLOR:
            return piece[0] == u'#' &&
                   std::all_of(piece.getBuffer() + 1, piece.getBuffer() + last + 1, isHex);
        default:
            return tokenizer.getToken() == piece.char32At(0) && piece.countChar32() == 1;
    }
}

void checkTokens(const UnicodeString& text) {
    Reader reader(text);
    for (std::int32_t start = 0;; start = reader.position()) {
        const int kind = reader.tokenizer.nextToken();
        while (start < text.length() && isSpace(text[start])) ++start;
        if (kind == RYTOKEN_END) break;
        const UnicodeString piece = text.tempSubStringBetween(start, reader.position());
        if (piece.isEmpty() || !isSpelt(reader.tokenizer, piece)) fail("bad token", text, piece);
    }
    if (!reader.isAtEnd()) fail("tokens do not reach the end", text, u"");
}

using Reading = RyValue (RyTokenizer::*)();

bool isSame(const RyValue& a, const RyValue& b) {
    return a == b && a.getValueType() == b.getValueType() && a.getUnitType() == b.getUnitType();
}

void checkReading(const UnicodeString& text, Reading read) {
    Reader reader(text);
    std::int32_t previous = -1;
    for (;;) {
        const RyValue value = (reader.tokenizer.*read)();
        const std::int32_t position = reader.position();
        if (value.isNull()) break;
        if (position <= previous) fail("reading stands still", text, value.toString());
        previous = position;
        reader.tokenizer.pushBack();
        const RyValue again = (reader.tokenizer.*read)();
        if (!isSame(again, value) || reader.position() != position)
            fail("what was pushed back is read differently", text, again.toString());
    }
    if (!reader.isAtEnd()) fail("values do not reach the end", text, u"");
}

void checkItems(const UnicodeString& text) {
    Reader reader(text);
    for (std::int32_t steps = 0; steps <= text.length() + 1; ++steps) {
        reader.tokenizer.nextSeparatedValue(L',');
        if (reader.tokenizer.getToken() == RYTOKEN_END) {
            if (!reader.isAtEnd()) fail("items do not reach the end", text, u"");
            return;
        }
        const bool isAhead = reader.tokenizer.scanSeparator(L',');
        if (isAhead != reader.tokenizer.skipSeparator(L',')) fail("separator lost", text, u"");
    }
    fail("items do not end", text, u"");
}

void checkParse(const UnicodeString& text) {
    const RyValue value = RyValue::parse(text);
    if (value.isUnknownString() && value.getStringValue() != text)
        fail("text lost", text, value.getStringValue());
    const UnicodeString written = value.toValueText();
    // A real that is integral as a float comes back as an integer, which is equal.
    const RyValue again = RyValue::parse(written);
    if (again != value || again.getUnitType() != value.getUnitType())
        fail("not read back", text, written);
    RyTokenizer tokenizer(text);
    const RyValue first = tokenizer.nextTokenValueSigned();
    const bool isSingle =
        !first.isNull() && !first.isCharacter() && tokenizer.nextToken() == RYTOKEN_END;
    if (isSingle == value.isUnknownString() || (isSingle && !isSame(first, value)))
        fail("parse and tokenizer differ", text, first.toString());
    const RyValue text2 = RyValue::parseNonNumeric(text);
    const bool isText = value.isName() || value.isLiteralString();
    if (!(isText ? isSame(text2, value) : text2.isUnknownString()))
        fail("parseNonNumeric differs", text, text2.toString());
}

std::vector<std::string> splitParts(const UnicodeString& text) {
    std::string bytes;
    text.toUTF8String(bytes);
    std::vector<std::string> parts;
    for (std::size_t begin = 0; begin <= bytes.size();) {
        const std::size_t end = std::min(bytes.find('&', begin), bytes.size());
        if (end > begin) parts.push_back(bytes.substr(begin, end - begin));
        begin = end + 1;
    }
    return parts;
}

/// Every part comes back as an entry or among the malformed ones.
void checkParameters(const UnicodeString& text) {
    const RyValue value = RyValue::parseUriFragmentParameters(text, false);
    UnicodeString joined;
    for (RyNamedValueMapIterator entries(value.getNamedValueMap()); entries.hasNext();) {
        const RyNamedValue& entry = entries.next();
        if (!entry.getName().isEmpty()) joined += entry.getName().toString() + u"=";
        joined += entry.getStringValue() + u"&";
    }
    std::vector<std::string> before =
        splitParts(text.startsWith(u"#") ? text.tempSubString(1) : text);
    std::vector<std::string> after = splitParts(joined);
    std::sort(before.begin(), before.end());
    std::sort(after.begin(), after.end());
    if (before != after) fail("parameters lost", text, joined);
}

void checkReferences(const UnicodeString& text) {
    for (const RyValue& value :
         {RyValue::parseDestinationType(text), RyValue::parsePDFOpenParameters(text),
          RyValue::parseExcelOpenParameters(text), RyValue::parseInternalDestination(text, 7),
          RyValue::parseXlinkHref(text), RyValue::parseUriFragmentParameters(text, true)})
        if (!value.isCompound() || value.toString().isEmpty()) fail("no compound", text, u"");
    checkParameters(text);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const UnicodeString text = readInput(data, size);
    checkTokens(text);
    for (const Reading reading :
         {&RyTokenizer::nextTokenValue, &RyTokenizer::nextTokenValueSigned,
          &RyTokenizer::nextTokenValueExp, &RyTokenizer::nextTokenValueFunc})
        checkReading(text, reading);
    checkItems(text);
    checkParse(text);
    checkReferences(text);
    return 0;
}
