// Character and entity references.
//
// A reference in content or in a literal is either a character, appended at once, or an entity
// whose replacement text becomes the topmost input of the scanner: what it holds is read like any
// other text, references in it included. While an entity is being read it counts as open, and a
// reference to an open entity is an undefined one.
#include <algorithm>

#include "core/NameTable.h"
#include "xml/names/MathMLEntities.h"
#include "xml/parser/ParserCore.h"

namespace RynCommon {

namespace {

/// Char of XML 1.0.
constexpr bool isXmlCharacter(std::uint32_t c) {
    return c == 9 || c == 10 || c == 13 || (c >= 0x20 && c <= 0xD7FF) ||
           (c >= 0xE000 && c <= 0xFFFD) || (c >= 0x10000 && c <= 0x10FFFF);
}

/// Value of a digit, or -1.
constexpr int digitValue(int c, bool hexadecimal) {
    if (c >= '0' && c <= '9') return c - '0';
    if (!hexadecimal) return -1;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return -1;
}

constexpr std::uint32_t SATURATED = 0x110000;

}  // namespace

/// A reference that stands whole in the window and is right; false, with nothing read, for others.
bool ParserCore::readPlainCharacterReference(std::uint32_t& codePoint) {
    const char16_t* p = scanner.cursor();
    const char16_t* const end = scanner.limit();
    const bool hexadecimal = p != end && *p == u'x';
    if (hexadecimal) ++p;
    const std::uint32_t radix = hexadecimal ? 16 : 10;
    const char16_t* const digits = p;
    std::uint32_t value = 0;
    for (; p != end; ++p) {
        const int digit = digitValue(*p, hexadecimal);
        if (digit < 0) break;
        value = std::min(value * radix + static_cast<std::uint32_t>(digit), SATURATED);
    }
    if (p == end || p == digits || *p != u';' || !isXmlCharacter(value)) return false;
    scanner.moveTo(p + 1);
    codePoint = value;
    return true;
}

bool ParserCore::readCharacterReference(std::uint32_t& codePoint) {
    if (readPlainCharacterReference(codePoint)) return true;
    UnicodeString spelt;
    const bool hexadecimal = scanner.accept(u'x');
    if (hexadecimal) spelt.append(u'x');
    const std::uint32_t radix = hexadecimal ? 16 : 10;
    std::uint32_t value = 0;
    bool any = false;
    for (;;) {
        const int c = scanner.peek();
        const int digit = digitValue(c, hexadecimal);
        if (digit >= 0) {
            value = std::min(value * radix + static_cast<std::uint32_t>(digit), SATURATED);
            any = true;
            spelt.append(static_cast<char16_t>(c));
            scanner.skip();
            continue;
        }
        if (c == u';' && any) break;
        const bool space = c != Scanner::END && isXmlSpace(static_cast<char16_t>(c));
        error(space ? PARSE_SPACE_IN_CHARACTER_REFERENCE : PARSE_BAD_CHARACTER_REFERENCE, spelt);
        return false;
    }
    scanner.skip();
    if (!isXmlCharacter(value)) {
        error(PARSE_BAD_REFERENCED_CHARACTER, spelt);
        return false;
    }
    codePoint = value;
    return true;
}

bool ParserCore::readPredefined(char16_t& character) {
    constexpr std::size_t SHORTEST = 2, LONGEST = 4;
    if (!generalEntities.isEmpty()) return false;
    const char16_t* const begin = scanner.cursor();
    const auto left = static_cast<std::size_t>(scanner.limit() - begin);
    std::size_t length = SHORTEST;
    while (length < left && length <= LONGEST && begin[length] != u';') ++length;
    if (length >= left || length > LONGEST || length > limits.nameLength) return false;
    character = predefinedEntity(findBuiltinName(begin, static_cast<std::int32_t>(length)));
    if (character == 0) return false;
    scanner.moveTo(begin + length + 1);
    countExpansion(1);
    return true;
}

bool ParserCore::readEntityName(char16_t sign, RyName& name) {
    const Scanner::Name spelt = scanner.scanName();
    if (!spelt.complete) {
        error(PARSE_EMPTY_ENTITY_NAME);
        return false;
    }
    name = names->findWhole(spelt.text, spelt.length);
    if (scanner.accept(u';')) return true;
    error(PARSE_BAD_ENTITY_REFERENCE,
          UnicodeString(sign).append(name.toString()).append(scanner.peekCharacter()));
    return false;
}

ParserCore::Expansion ParserCore::expandGeneral(RyName name, std::u16string_view& characters,
                                                bool externalAllowed) {
    EntityDeclaration* const entity = generalEntities.find(name);
    if (entity == nullptr) {
        if (const char16_t character = predefinedEntity(name)) {
            countExpansion(1);
            predefined_ = character;
            characters = {&predefined_, 1};
            return Expansion::TEXT;
        }
        std::int32_t length = 0;
        const UnicodeString& spelt = name.toString();
        const char16_t* const replacement =
            mathMLEntities ? MathMLEntities::find(
                                 std::u16string_view(spelt.getBuffer(),
                                                     static_cast<std::size_t>(spelt.length())),
                                 length)
                           : nullptr;
        if (replacement == nullptr) {
            error(PARSE_UNDEFINED_ENTITY, spelt);
            return Expansion::NOTHING;
        }
        countExpansion(length);
        characters = {replacement, static_cast<std::size_t>(length)};
        return Expansion::TEXT;
    }
    const bool external = entity->kind == EntityDeclaration::Kind::EXTERNAL;
    if (entity->kind == EntityDeclaration::Kind::UNPARSED || (external && !externalAllowed) ||
        scanner.isOpen(entity) || (external && scanner.isOpen(resolve(entity->systemId)))) {
        error(PARSE_UNDEFINED_ENTITY, name.toString());
        return Expansion::NOTHING;
    }
    checkNesting();
    if (external) {
        pushExternal(*entity);
    } else {
        countExpansion(entity->text.length());
        scanner.pushText(entity->text, entity);
    }
    return Expansion::INPUT;
}

void ParserCore::expandParameter(RyName name, bool padded) {
    EntityDeclaration* const entity = parameterEntities.find(name);
    const bool external = entity != nullptr && entity->kind == EntityDeclaration::Kind::EXTERNAL;
    if (entity == nullptr || scanner.isOpen(entity) ||
        (external && scanner.isOpen(resolve(entity->systemId)))) {
        error(PARSE_UNDEFINED_PARAMETER_ENTITY, name.toString());
        return;
    }
    checkNesting();
    if (external) {
        pushExternal(*entity);
        return;
    }
    countExpansion(entity->text.length());
    if (!padded) {
        scanner.pushText(entity->text, entity);
        return;
    }
    UnicodeString text(u' ');
    scanner.pushText(text.append(entity->text).append(u' '), entity);
}

}  // namespace RynCommon
