// Document type declarations; see the header.
//
// Parameter entities become inputs of the scanner like all others, so a subset is read as one text.
// In the internal subset references to them stand between declarations only; inside declarations
// "%" is looked at where the text comes from an external subset or from a parameter entity. Each
// turn of a loop reads at least one character, also after an error that a callback took.
#include "xml/parser/Doctype.h"

namespace RynCommon {

namespace {

UnicodeString str(const char16_t* text) {
    return UnicodeString(text);
}

bool startsName(int c) {
    return c != Scanner::END && isNameStart(static_cast<char16_t>(c));
}

}  // namespace

// The declaration itself.

Doctype DoctypeReader::readDoctype() {
    Doctype doctype;
    if (!scanner_.skipSpace()) core_.error(PARSE_MISSING_SPACE, str(u"<!DOCTYPE"));
    const Scanner::Name name = scanner_.scanQName();
    if (!name.complete) core_.error(PARSE_BAD_DOCTYPE_NAME);
    const UnicodeString where = str(u"<!DOCTYPE ").append(name.toString());
    scanner_.skipSpace();
    if (startsName(scanner_.peek())) {
        doctype.hasSystemId = readExternalId(where, doctype.publicId, doctype.systemId);
        scanner_.skipSpace();
    }
    if (scanner_.accept(u'[')) {
        subsetDepth_ = scanner_.depth();
        readSubset();
        scanner_.skipSpace();
    }
    endDeclaration(str(u"DOCTYPE"));
    return doctype;
}

/// SYSTEM or PUBLIC with the literals. False when there is no system identifier.
bool DoctypeReader::readExternalId(const UnicodeString& where, UnicodeString& publicId,
                                   UnicodeString& systemId) {
    const Scanner::Name name = scanner_.scanName();
    const RyNameEnum keyword = ParserCore::keyword(name);
    if (keyword != RN_SYSTEM && keyword != RN_PUBLIC) {
        core_.error(PARSE_MISSING_EXTERNAL_ID, where);
        return false;
    }
    const UnicodeString after = name.toString();
    if (keyword == RN_PUBLIC && !readIdentifier(PARSE_MISSING_PUBLIC_LITERAL, after, publicId))
        return false;
    return readIdentifier(PARSE_MISSING_SYSTEM_LITERAL, after, systemId);
}

/// White space and a literal.
bool DoctypeReader::readIdentifier(unsigned short missing, const UnicodeString& after,
                                   UnicodeString& value) {
    const bool space = skipDeclarationSpace();
    const int c = scanner_.peek();
    if (!space || (c != u'"' && c != u'\'')) {
        core_.error(missing, after);
        if (c != u'"' && c != u'\'') return false;
    }
    return core_.readPlainLiteral(value);
}

/// ">"; after an error, goes on behind the declaration. `what` names the declaration that the input
/// ended in.
void DoctypeReader::endDeclaration(const UnicodeString& what) {
    if (scanner_.accept(u'>')) return;
    if (scanner_.peek() == Scanner::END) {
        core_.error(PARSE_UNENDED_DECLARATION, what);
        return;
    }
    core_.unexpectedCharacter();
    skipDeclaration();
}

/// Up to and with ">", looking past quoted texts.
void DoctypeReader::skipDeclaration() {
    for (int c = scanner_.get(); c != u'>'; c = scanner_.get()) {
        if (c == Scanner::END) {
            core_.error(PARSE_UNENDED_DECLARATION, str(u"DOCTYPE"));
            return;
        }
        if ((c == u'"' || c == u'\'') && core_.readUpTo(static_cast<char16_t>(c), nullptr))
            scanner_.skip();
    }
}

// Subsets.

void DoctypeReader::readExternalSubset() {
    external_ = true;
    subsetDepth_ = scanner_.depth();
    readSubset();
}

void DoctypeReader::readSubset() {
    subsetEnded_ = false;
    while (!subsetEnded_) {
        scanner_.skipSpace();
        readSubsetToken(scanner_.peek());
    }
}

void DoctypeReader::readSubsetToken(int c) {
    switch (c) {
        case Scanner::END:
            if (!external_ || openIncludes_ > 0)
                core_.error(PARSE_UNENDED_DECLARATION, str(u"DOCTYPE"));
            subsetEnded_ = true;
            return;
        case u'%':
            scanner_.skip();
            readParameterReference();
            return;
        case u'<':
            scanner_.skip();
            readMarkup();
            return;
        case u']':
            if (openIncludes_ > 0) {
                scanner_.skip();
                if (scanner_.accept(u']') && scanner_.accept(u'>'))
                    --openIncludes_;
                else
                    core_.unexpectedCharacter();
                return;
            }
            if (!external_ && scanner_.depth() <= subsetDepth_) {
                scanner_.skip();
                subsetEnded_ = true;
                return;
            }
            break;
        default:
            break;
    }
    core_.unexpectedCharacter();
    scanner_.getCodePoint();
}

void DoctypeReader::readParameterReference() {
    RyName name;
    if (core_.readEntityName(u'%', name)) core_.expandParameter(name, true);
}

void DoctypeReader::readMarkup() {
    if (scanner_.accept(u'?')) {
        core_.readInstructionRest(nullptr);
        return;
    }
    if (!scanner_.accept(u'!')) {
        core_.unexpectedCharacter();
        return;
    }
    if (scanner_.accept(u'[')) {
        readConditional();
        return;
    }
    if (scanner_.accept(u'-')) {
        if (scanner_.accept(u'-'))
            core_.readCommentRest(nullptr);
        else
            core_.error(PARSE_BAD_COMMENT);
        return;
    }
    const UnicodeString name = scanner_.scanName().toString();
    if (name == str(u"ENTITY"))
        readEntity();
    else if (name == str(u"ATTLIST") && defaults_ != nullptr && !external_)
        readAttributeList();
    else {
        if (name != str(u"ATTLIST") && name != str(u"ELEMENT") && name != str(u"NOTATION"))
            core_.error(PARSE_BAD_MARKUP, name);
        skipDeclaration();
    }
}

/// Behind "<![": INCLUDE goes on reading; IGNORE, and after its error any other section, is passed
/// over.
void DoctypeReader::readConditional() {
    skipDeclarationSpace();
    const UnicodeString name = scanner_.scanName().toString();
    skipDeclarationSpace();
    const bool include = name == str(u"INCLUDE");
    const bool known = include || name == str(u"IGNORE");
    const bool opened = scanner_.accept(u'[');
    if (!known || !opened) core_.error(PARSE_BAD_CONDITIONAL, name);
    if (!opened) return;
    if (include)
        ++openIncludes_;
    else
        skipIgnored();
}

/// Up to the "]]>" that ends the section; sections inside count.
void DoctypeReader::skipIgnored() {
    std::int64_t open = 1;
    while (open > 0) {
        const int c = scanner_.get();
        if (c == Scanner::END) {
            core_.error(PARSE_UNENDED_DECLARATION, str(u"DOCTYPE"));
            return;
        }
        if (c == u'<' && scanner_.accept(u'!') && scanner_.accept(u'['))
            ++open;
        else if (c == u']' && core_.readRunOf(u']') > 0 && scanner_.accept(u'>'))
            --open;
    }
}

/// White space, and references to parameter entities where they may stand; whether there was any.
bool DoctypeReader::skipDeclarationSpace() {
    bool any = scanner_.skipSpace();
    while (inParameterEntity() && scanner_.peek() == u'%') {
        scanner_.skip();
        readParameterReference();
        scanner_.skipSpace();
        any = true;
    }
    return any;
}

// Entities.

void DoctypeReader::readEntity() {
    if (!scanner_.skipSpace()) core_.error(PARSE_MISSING_SPACE, str(u"<!ENTITY"));
    bool parameter = false;
    while (scanner_.accept(u'%')) {
        if (inParameterEntity() && startsName(scanner_.peek()))
            readParameterReference();
        else
            parameter = true;
        scanner_.skipSpace();
    }
    const UnicodeString opening = str(parameter ? u"<!ENTITY %" : u"<!ENTITY");
    const Scanner::Name spelt = scanner_.scanName();
    if (!spelt.complete) {
        core_.error(PARSE_MISSING_ENTITY_NAME, opening);
        skipDeclaration();
        return;
    }
    const RyName name = core_.names->findWhole(spelt.text, spelt.length);
    skipDeclarationSpace();
    EntityDeclaration entity;
    bool valid = true;
    readEntityDefinition(UnicodeString(opening).append(u' ').append(name.toString()), parameter,
                         entity, valid);
    skipDeclarationSpace();
    endDeclaration(str(u"ENTITY"));
    if (!valid) return;
    EntityTable& table = parameter ? core_.parameterEntities : core_.generalEntities;
    if (parameter || predefinedEntity(name) == 0) table.declare(name, std::move(entity));
}

/// The value or the identifiers, with the notation of an unparsed entity.
void DoctypeReader::readEntityDefinition(const UnicodeString& where, bool parameter,
                                         EntityDeclaration& entity, bool& valid) {
    const int c = scanner_.peek();
    if (c == u'"' || c == u'\'') {
        core_.readEntityValue(entity.text);
        return;
    }
    if (c == Scanner::END) {
        valid = false;
        return;
    }
    valid = readExternalId(where, entity.publicId, entity.systemId);
    entity.kind = EntityDeclaration::Kind::EXTERNAL;
    skipDeclarationSpace();
    if (parameter || !startsName(scanner_.peek())) return;
    entity.kind = EntityDeclaration::Kind::UNPARSED;
    if (ParserCore::keyword(scanner_.scanName()) != RN_NDATA)
        core_.error(PARSE_MISSING_NDATA, where);
    skipDeclarationSpace();
    scanner_.scanName();
}

// Attributes.

void DoctypeReader::readAttributeList() {
    skipDeclarationSpace();
    const Scanner::Name spelt = scanner_.scanQName();
    if (!spelt.complete) {
        core_.unexpectedCharacter();
        skipDeclaration();
        return;
    }
    const CachedName& element = core_.find(spelt);
    skipDeclarationSpace();
    while (startsName(scanner_.peek())) {
        AttributeDeclaration attribute;
        if (!readAttributeDefinition(attribute)) {
            core_.unexpectedCharacter();
            skipDeclaration();
            return;
        }
        defaults_->declare(element.prefix, element.local, attribute);
        skipDeclarationSpace();
    }
    endDeclaration(str(u"DOCTYPE"));
}

/// Name, type and default of one attribute; false where the text is none.
bool DoctypeReader::readAttributeDefinition(AttributeDeclaration& attribute) {
    const Scanner::Name spelt = scanner_.scanQName();
    if (!spelt.complete) return false;
    const CachedName& name = core_.find(spelt);
    attribute.prefix = name.prefix;
    attribute.local = name.local;
    skipDeclarationSpace();
    if (!readAttributeType(attribute)) return false;
    skipDeclarationSpace();
    readDefault(attribute);
    return true;
}

bool DoctypeReader::readAttributeType(AttributeDeclaration& attribute) {
    const UnicodeString type = scanner_.scanName().toString();
    attribute.tokenized = type != str(u"CDATA");
    skipDeclarationSpace();
    if (!type.isEmpty() && type != str(u"NOTATION")) return true;
    // An enumeration in parentheses.
    if (!scanner_.accept(u'(')) return false;
    return core_.readUpTo(u')', nullptr) && scanner_.accept(u')');
}

void DoctypeReader::readDefault(AttributeDeclaration& attribute) {
    if (scanner_.accept(u'#')) {
        const UnicodeString keyword = scanner_.scanName().toString();
        if (keyword != str(u"FIXED")) return;
        skipDeclarationSpace();
    }
    const int c = scanner_.peek();
    if (c != u'"' && c != u'\'') return;
    UnicodeString& value = attribute.defaultValue;
    std::u16string_view plain;
    attribute.hasDefault = core_.readAttributeValue(value, plain);
    if (plain.data() != nullptr)
        value = takeWhole(UnicodeString(plain.data(), static_cast<std::int32_t>(plain.size())));
    if (attribute.tokenized) AttributeDefaults::collapse(value);
}

}  // namespace RynCommon
