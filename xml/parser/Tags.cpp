// Start and end tags, with their attributes and namespaces.
#include "core/MemoryCheck.h"
#include "core/ShortScan.h"
#include "xml/parser/XmlParserImpl.h"

namespace RynCommon {

namespace {

/// What an added attribute counts in characters of expansion: a few bytes of a tag may call for a
/// thousand of them.
constexpr std::int32_t DEFAULT_ATTRIBUTE_COST = 64;

bool isSpaceAt(Scanner& scanner) {
    const int c = scanner.peek();
    return c != Scanner::END && isXmlSpace(static_cast<char16_t>(c));
}

UnicodeString qualified(const CachedName& name) {
    return UnicodeString(name.text, static_cast<std::int32_t>(name.length));
}

UnicodeString qualified(RyName prefix, RyName local) {
    if (prefix.isEmpty()) return local.toString();
    return UnicodeString(prefix.toString()).append(u':').append(local.toString());
}

}  // namespace

// Start tags.

inline const CachedName& XmlParserImpl::readElementName() {
    const CachedName* known = guessElementName();
    if (known == nullptr) {
        known = core_.findBefore(scanner().cursor(), scanner().limit(), u'>', u' ', u'/');
        if (known == nullptr) return readNewElementName();
        lastName_->successor = known;
    }
    lastName_ = known;
    scanner().moveTo(scanner().cursor() + known->length);
    scanner().look(scanner().cursor() + 1);
    return *known;
}

const CachedName& XmlParserImpl::readNewElementName() {
    Scanner::Name spelt = scanner().scanQName();
    if (!spelt.complete && spelt.length == 0 && isSpaceAt(scanner())) {
        core_.error(PARSE_UNEXPECTED_SPACE, UnicodeString(u'<'));
        scanner().skipSpace();
        spelt = scanner().scanQName();
    }
    if (spelt.complete) return core_.find(spelt);
    core_.error(PARSE_BAD_START_TAG_NAME);
    return noName_;
}

void XmlParserImpl::readStartTag() {
    core_.event = START_TAG;
    const int outer = namespaces_.depth();
    if (outer == 0 && rootSeen_) core_.error(PARSE_SECOND_ROOT);
    const CachedName& name = readElementName();
    rootSeen_ = true;
    if (static_cast<std::uint32_t>(outer) >= core_.limits.depth) core_.exceedLimit();
    namespaces_.push(name);
    attributes_.clear();
    emptyTag_ = hasQualifiedAttribute_ = false;
    if (!scanner().acceptInWindow(u'>') && !readPlainAttributes()) readAttributes();
    if (!defaults_.isEmpty()) applyDefaults(name);
    if (outer == 0) bindBuiltinVocabulary(name);
    // An element without prefixes takes the namespace that is in force.
    if (name.prefix.isEmpty() && !hasQualifiedAttribute_ && attributes_.size() < 2)
        namespaces_.top().ns = namespaces_.defaultNamespace();
    else
        resolveNamespaces();
}

/// The attributes at the reading point that stand in the window as most do: a known name, "=" and a
/// quoted value to be taken as it is. Everything else is left to readAttributes(). True when the
/// tag has ended.
bool XmlParserImpl::readPlainAttributes() {
    const char16_t* const end = scanner().limit();
    const char16_t* p = scanner().cursor();
    while (p != end && isXmlSpace(*p) && attributes_.size() < core_.limits.attributes) {
        const char16_t* at = p + 1;
        while (at != end && isXmlSpace(*at)) ++at;
        const CachedName* const name = core_.findBefore(at, end, u'=');
        if (name == nullptr) return false;
        at += name->length + 1;
        if (at == end || (*at != u'"' && *at != u'\'')) return false;
        const char16_t* const value = at + 1;
        const char16_t* const stop = scanValueStop(value, end, *at);
        if (stop == end || *stop != *at) return false;
        ParsedAttribute& attribute = attributes_.add(name->prefix, name->local);
        attribute.setPlain(value, static_cast<std::size_t>(stop - value));
        p = stop + 1;
        scanner().moveTo(p);
        finishAttribute(attribute);
    }
    return scanner().acceptInWindow(u'>');
}

/// Up to and with ">" or "/>". "<" and the end of input end the tag as well.
void XmlParserImpl::readAttributes() {
    bool space = scanner().skipSpace();
    for (;;) {
        const int c = scanner().peek();
        if (c == u'>') {
            scanner().skip();
            return;
        }
        if (c == Scanner::END || c == u'<') {
            core_.unexpectedCharacter();
            return;
        }
        if (c == u'/') {
            scanner().skip();
            if (isSpaceAt(scanner())) {
                core_.error(PARSE_UNEXPECTED_SPACE, UnicodeString(u'/'));
                scanner().skipSpace();
            }
            emptyTag_ = scanner().accept(u'>');
            if (emptyTag_) return;
            core_.unexpectedCharacter();
            if (scanner().peek() == Scanner::END || scanner().peek() == u'<') return;
            space = true;  // told of already
        } else if (!space && !isNameStart(static_cast<char16_t>(c))) {
            core_.unexpectedCharacter();
            scanner().getCodePoint();
            space = scanner().skipSpace();
        } else {
            if (!space) core_.error(PARSE_MISSING_ATTRIBUTE_SPACE);
            readAttribute();
            space = scanner().skipSpace();
        }
    }
}

void XmlParserImpl::readAttribute() {
    const Scanner::Name spelt = scanner().scanQName();
    if (!spelt.complete) {
        readBadAttributeName(spelt);
        return;
    }
    const CachedName& name = core_.find(spelt);
    scanner().skipSpace();
    if (!scanner().accept(u'=')) {
        core_.error(PARSE_MISSING_EQUALS);
        return;
    }
    scanner().skipSpace();
    ParsedAttribute& attribute = addAttribute(name.prefix, name.local);
    std::u16string_view plain;
    if (!core_.readAttributeValue(attribute.own(), plain)) {
        attributes_.removeLast();
        return;
    }
    if (plain.data() != nullptr) attribute.setPlain(plain.data(), plain.size());
    finishAttribute(attribute);
}

/// A namespace declaration takes effect.
void XmlParserImpl::finishAttribute(const ParsedAttribute& attribute) {
    if (!attribute.isQualified()) return;
    hasQualifiedAttribute_ = true;
    if (!attribute.isNamespaceDeclaration()) return;
    const std::u16string_view uri = attribute.units();
    namespaces_.bind(attribute.prefix.isEmpty() ? RyName() : attribute.local,
                     core_.names->findWhole(uri.data(), uri.size()));
}

/// Reports what was read of the name with what follows up to a delimiter; at least one character is
/// read.
void XmlParserImpl::readBadAttributeName(const Scanner::Name& name) {
    UnicodeString text = name.toString();
    const auto isDelimiter = [](char16_t c) {
        return isXmlSpace(c) || c == u'=' || c == u'>' || c == u'/' || c == u'<';
    };
    scanner().appendUntil(text, isDelimiter);
    if (text.isEmpty()) text.append(static_cast<UChar32>(scanner().getCodePoint()));
    core_.error(PARSE_BAD_ATTRIBUTE_NAME, text);
}

// Declared attributes.

/// Collapses values of declared types and adds the defaults of attributes that are not there.
void XmlParserImpl::applyDefaults(const CachedName& element) {
    const AttributeDefaults::Declarations* const declarations =
        defaults_.find(element.prefix, element.local);
    if (declarations == nullptr) return;
    const std::size_t given = attributes_.size();
    for (const AttributeDeclaration& declaration : *declarations) {
        bool found = false;
        for (std::size_t i = 0; i < given; ++i) {
            ParsedAttribute& attribute = attributes_[i];
            if (attribute.local != declaration.local || attribute.prefix != declaration.prefix)
                continue;
            found = true;
            if (!declaration.tokenized) continue;
            attribute.copyPlain();
            AttributeDefaults::collapse(attribute.own());
        }
        if (!found && declaration.hasDefault) addDefault(declaration);
    }
}

void XmlParserImpl::addDefault(const AttributeDeclaration& declaration) {
    core_.countExpansion(declaration.defaultValue.length() + DEFAULT_ATTRIBUTE_COST);
    ParsedAttribute& attribute = addAttribute(declaration.prefix, declaration.local);
    attribute.own() = ownText(declaration.defaultValue);
    if (attribute.isQualified()) hasQualifiedAttribute_ = true;
    if (attribute.isNamespaceDeclaration())
        namespaces_.bind(declaration.prefix.isEmpty() ? RyName() : declaration.local,
                         RyName(declaration.defaultValue));
}

// Namespaces.

/// An unprefixed root of a vocabulary known here is in its namespace without saying so.
void XmlParserImpl::bindBuiltinVocabulary(const CachedName& root) {
    if (!root.prefix.isEmpty() || (root.local != RN_svg && root.local != RN_chart)) return;
    bindVocabulary(RyName(root.local == RN_svg ? UnicodeString(u"http://www.w3.org/2000/svg")
                                               : UnicodeString(u"urn:ryncommon:chart")));
}

/// Binds `ns` as the default where there is none, and "xlink" where it is unbound.
void XmlParserImpl::bindVocabulary(RyName ns) {
    if (namespaces_.lookup(RyName()).isEmpty()) namespaces_.bind(RyName(), ns);
    if (namespaces_.lookup(RN_xlink).isEmpty())
        namespaces_.bind(RN_xlink, RyName(UnicodeString(u"http://www.w3.org/1999/xlink")));
}

void XmlParserImpl::resolveNamespaces() {
    NamespaceManager::Element& element = namespaces_.top();
    const RyName prefix = element.name->prefix;
    const RyName ns = namespaces_.lookup(prefix);
    element.ns = ns;
    if (ns.isEmpty() && !prefix.isEmpty()) core_.error(PARSE_UNDECLARED_PREFIX, prefix.toString());
    if (hasQualifiedAttribute_) resolveAttributes();
    if (attributes_.size() > 1) reportDuplicates();
}

void XmlParserImpl::resolveAttributes() {
    RyName lastPrefix, lastNs;
    for (std::size_t i = 0; i < attributes_.size(); ++i) {
        ParsedAttribute& attribute = attributes_[i];
        if (attribute.prefix.isEmpty()) {
            if (attribute.local == RN_xmlns) attribute.ns = RN_NS_xmlns;
            continue;
        }
        if (attribute.prefix != lastPrefix) {
            lastPrefix = attribute.prefix;
            lastNs = namespaces_.lookup(lastPrefix);
        }
        attribute.ns = lastNs;
        if (!lastNs.isEmpty()) continue;
        if (core_.feature(TOLERANT_PREFIXES))
            attribute.ns = lastPrefix;
        else
            core_.error(PARSE_UNDECLARED_PREFIX, lastPrefix.toString());
    }
}

void XmlParserImpl::reportDuplicates() {
    attributes_.forEachDuplicate([this](const ParsedAttribute& attribute) {
        core_.error(PARSE_DUPLICATE_ATTRIBUTE, qualified(attribute.prefix, attribute.local));
    });
}

// End tags.

/// False for an end tag with nothing open.
bool XmlParserImpl::readEndTag() {
    core_.event = END_TAG;
    if (namespaces_.depth() == 0) return readOtherEndTag(noName_);
    const CachedName& expected = *namespaces_.top().name;
    // Nearly always the open element's name as it was spelt, and ">".
    const char16_t* const begin = scanner().cursor();
    const std::size_t length = expected.length;
    if (isInWindow(expected) && begin[length] == u'>' && equalUnits(begin, expected.text, length) &&
        length != 0) {
        scanner().moveTo(begin + length + 1);
        return true;
    }
    return readOtherEndTag(expected);
}

bool XmlParserImpl::readOtherEndTag(const CachedName& expected) {
    const bool open = namespaces_.depth() > 0;
    if (isSpaceAt(scanner())) {
        core_.error(PARSE_UNEXPECTED_SPACE, UnicodeString(u"</"));
        scanner().skipSpace();
    }
    const Scanner::Name spelt = scanner().scanQName();
    if (!spelt.complete) {
        core_.error(PARSE_BAD_END_TAG_NAME);
    } else if (!open || spelt.length != expected.length ||
               !equalUnits(spelt.text, expected.text, spelt.length)) {
        core_.error(PARSE_END_TAG_MISMATCH, spelt.toString(), qualified(expected));
    }
    scanner().skipSpace();
    if (!scanner().accept(u'>')) {
        core_.unexpectedCharacter();
        skipToTagEnd();
    }
    return open;
}

/// Behind the next ">", or before the next "<" or the end.
void XmlParserImpl::skipToTagEnd() {
    for (int c = scanner().peek(); c != Scanner::END && c != u'<'; c = scanner().peek()) {
        scanner().skip();
        if (c == u'>') return;
    }
}

}  // namespace RynCommon
