// External entities, and the XML and text declarations that tell an encoding.
#include <RynCommon/RyUri.h>

#include "core/ErrorLocations.h"
#include "xml/parser/ParserCore.h"

namespace RynCommon {

UnicodeString ParserCore::resolve(const UnicodeString& systemId) const {
    return RyUri(RyUri(baseUri), systemId).toString();
}

void ParserCore::pushExternal(EntityDeclaration& entity) {
    const RyUri uri(RyUri(baseUri), entity.systemId);
    std::unique_ptr<std::istream> stream(uri.getStream());
    if (stream == nullptr) {
        if (uri.isFile())
            throwIoError(IO_CANNOT_OPEN, LOCATION_PARSER_PUSH_STREAM, uri.getLocalPath());
        return;
    }
    countExpansion(0);
    auto input = std::make_unique<TextInput>();
    input->open(std::move(stream));
    const bool known = input->start();
    scanner.pushInput(std::move(input), uri.toString(), &entity);
    if (!known) error(PARSE_INVALID_CHARACTER);
    readTextDeclaration();
}

void ParserCore::readTextDeclaration() {
    static constexpr char16_t OPENING[] = u"<?xml";
    const std::size_t depth = scanner.depth();
    scanner.topInput().setStepping(true);
    UnicodeString read;
    const char16_t* expected = OPENING;
    while (*expected != 0 && scanner.peek() == *expected && scanner.depth() == depth) {
        read.append(*expected++);
        scanner.skip();
    }
    const int next = *expected == 0 ? scanner.peek() : Scanner::END;
    const bool declaration =
        next != Scanner::END && isXmlSpace(static_cast<char16_t>(next)) && scanner.depth() == depth;
    if (declaration) readXmlDeclaration(true);
    if (scanner.depth() == depth) scanner.topInput().setStepping(false);
    if (!declaration && !read.isEmpty()) scanner.pushText(read, nullptr);
}

void ParserCore::applyGivenEncoding(TextInput& input, const UnicodeString& name) {
    const TextInput::Declared result =
        input.setGivenEncoding(name, feature(RyXmlParser::BUILTIN_ENCODINGS_ONLY),
                               feature(RyXmlParser::RAW_UNKNOWN_ENCODING));
    checkDeclared(result, name);
}

void ParserCore::checkDeclared(TextInput::Declared result, const UnicodeString& name) {
    if (result == TextInput::Declared::CONFLICT) error(PARSE_ENCODING_CONFLICT, name);
    if (result == TextInput::Declared::UNSUPPORTED) error(PARSE_UNKNOWN_ENCODING, name);
}

void ParserCore::readXmlDeclaration(bool isTextDeclaration) {
    if (!scanner.skipSpace()) error(PARSE_MISSING_SPACE_AFTER, UnicodeString(u"<?xml"));
    UnicodeString value, encoding;
    bool space = true;
    RyNameEnum name = keyword(scanner.scanName());
    if (name == RN_version) {
        readPseudoAttribute(UnicodeString(), UnicodeString(u"<?xml version"), value);
        if (value != UnicodeString(u"1.0") && value != UnicodeString(u"1.1"))
            error(PARSE_BAD_VERSION, value);
        space = scanner.skipSpace();
        name = keyword(scanner.scanName());
    } else if (!isTextDeclaration) {
        error(PARSE_MISSING_VERSION);
    }
    const bool hasEncoding = name == RN_encoding;
    if (hasEncoding) {
        readPseudoAttribute(space ? UnicodeString() : UnicodeString(u"encoding="),
                            UnicodeString(u"encoding"), encoding);
        space = scanner.skipSpace();
        name = keyword(scanner.scanName());
    }
    if (name == RN_standalone && !isTextDeclaration) {
        readPseudoAttribute(space ? UnicodeString() : UnicodeString(u"standalone="),
                            UnicodeString(u"standalone"), value);
        if (value != UnicodeString(u"yes") && value != UnicodeString(u"no"))
            error(PARSE_BAD_STANDALONE);
        scanner.skipSpace();
    }
    endXmlDeclaration();
    if (!hasEncoding) return;
    TextInput& input = scanner.topInput();
    checkDeclared(input.setDeclaredEncoding(encoding, feature(RyXmlParser::BUILTIN_ENCODINGS_ONLY),
                                            feature(RyXmlParser::RAW_UNKNOWN_ENCODING)),
                  encoding);
}

/// "=" and a literal, the name having been read. `missingSpace` is not empty when white space
/// lacked before the name.
bool ParserCore::readPseudoAttribute(const UnicodeString& missingSpace,
                                     const UnicodeString& whereEquals, UnicodeString& value) {
    value.remove();
    if (!missingSpace.isEmpty()) error(PARSE_MISSING_SPACE_BEFORE, missingSpace);
    scanner.skipSpace();
    if (!scanner.accept(u'=')) error(PARSE_MISSING_DECLARATION_EQUALS, whereEquals);
    scanner.skipSpace();
    return readPlainLiteral(value);
}

/// "?>"; after an error, goes on behind the next ">" or before the next "<".
void ParserCore::endXmlDeclaration() {
    if (scanner.accept(u'?') && scanner.accept(u'>')) return;
    unexpectedCharacter();
    for (int c = scanner.peek(); c != Scanner::END && c != u'<'; c = scanner.peek()) {
        scanner.skip();
        if (c == u'>') return;
    }
}

}  // namespace RynCommon
