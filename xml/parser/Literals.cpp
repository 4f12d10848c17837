// Quoted values: of attributes, of entities, and plain ones.
//
// A literal ends at its quote only at the depth of inputs where it began: a quote that an entity's
// replacement text brings is a character of the value.
#include "core/MemoryCheck.h"
#include "core/ShortScan.h"
#include "xml/parser/ParserCore.h"

namespace RynCommon {

/// Reads the opening quote; error 6190 when there is none.
bool ParserCore::openQuote(char16_t& quote) {
    const int c = scanner.peek();
    if (c != u'"' && c != u'\'') {
        error(PARSE_MISSING_QUOTE);
        return false;
    }
    quote = static_cast<char16_t>(c);
    scanner.skip();
    return true;
}

bool ParserCore::readAttributeValue(UnicodeString& value, std::u16string_view& plain) {
    char16_t quote;
    if (!openQuote(quote)) return false;
    // Most values lie in the window as they are.
    const char16_t* const begin = scanner.cursor();
    const char16_t* stop = scanValueStop(begin, scanner.limit(), quote);
    if (stop != scanner.limit() && *stop == quote) {
        plain = {begin, static_cast<std::size_t>(stop - begin)};
        scanner.moveTo(stop + 1);
        return true;
    }
    value.setTo(begin, static_cast<std::int32_t>(stop - begin));
    scanner.moveTo(stop);
    const std::size_t depth = scanner.depth();
    for (;;) {
        if (scanner.cursor() == scanner.limit() && !scanner.more()) {
            error(PARSE_UNENDED_LITERAL, UnicodeString(quote));
            break;
        }
        const char16_t* const run = scanner.cursor();
        stop = findValueStop(run, scanner.limit(), quote);
        value.append(run, 0, static_cast<std::int32_t>(stop - run));
        scanner.moveTo(stop);
        if (stop == scanner.limit()) continue;
        const char16_t c = *stop;
        scanner.skip();
        if (c == quote && scanner.depth() <= depth) break;
        if (c == u'&')
            readAttributeReference(value);
        else if (isXmlSpace(c))
            value.append(u' ');
        else
            value.append(c);
        if (c == u'<') error(PARSE_LESS_THAN_IN_VALUE);
    }
    requireWhole(value);
    return true;
}

void ParserCore::readAttributeReference(UnicodeString& value) {
    if (scanner.accept(u'#')) {
        std::uint32_t c;
        if (readCharacterReference(c)) value.append(static_cast<UChar32>(c));
        return;
    }
    if (char16_t character; readPredefined(character)) {
        value.append(character);
        return;
    }
    RyName name;
    std::u16string_view characters;
    if (!readEntityName(u'&', name)) return;
    if (expandGeneral(name, characters, false) == Expansion::TEXT)
        value.append(characters.data(), 0, static_cast<std::int32_t>(characters.size()));
}

bool ParserCore::readEntityValue(UnicodeString& value) {
    value.remove();
    char16_t quote;
    if (!openQuote(quote)) return false;
    const std::size_t depth = scanner.depth();
    for (;;) {
        const int c = scanner.get();
        if (c == Scanner::END) {
            error(PARSE_UNENDED_LITERAL, UnicodeString(quote));
            break;
        }
        if (c == quote && scanner.depth() <= depth) break;
        RyName name;
        if (c == u'&' && scanner.accept(u'#')) {
            std::uint32_t referenced;
            if (readCharacterReference(referenced)) value.append(static_cast<UChar32>(referenced));
        } else if (c == u'&') {
            // Kept as it is, to be resolved where the entity is used.
            if (readEntityName(u'&', name)) value.append(u'&').append(name.toString()).append(u';');
        } else if (c == u'%' && scanner.peek() != Scanner::END &&
                   isNameStart(static_cast<char16_t>(scanner.peek()))) {
            if (readEntityName(u'%', name)) expandParameter(name, false);
        } else {
            value.append(static_cast<char16_t>(c));
        }
    }
    requireWhole(value);
    return true;
}

bool ParserCore::readPlainLiteral(UnicodeString& value) {
    value.remove();
    char16_t quote;
    if (!openQuote(quote)) return false;
    TextBuffer literal;
    const bool isEnded = readUpTo(quote, &literal);
    const std::u16string_view units = literal.units();
    value.setTo(units.data(), static_cast<std::int32_t>(units.size()));
    requireWhole(value);
    if (isEnded)
        scanner.skip();
    else
        error(PARSE_UNENDED_LITERAL, UnicodeString(quote));
    return true;
}

}  // namespace RynCommon
