// Text, references, CDATA sections, comments and instructions.
#include "core/ShortScan.h"
#include "xml/parser/XmlParserImpl.h"

#include <cstdio>

namespace RynCommon {

namespace {

/// Whether `name` is "xml" in whatever case.
bool isXmlInAnyCase(const Scanner::Name& name) {
    return name.complete && name.length == 3 && (name.text[0] | 0x20) == u'x' &&
           (name.text[1] | 0x20) == u'm' && (name.text[2] | 0x20) == u'l';
}

/// "U+0078 (x)".
UnicodeString describeCharacter(UChar32 c) {
    char number[24];
    std::snprintf(number, sizeof number, "U+%04X (", static_cast<unsigned>(c));
    return UnicodeString(number, -1, US_INV).append(c).append(u')');
}

}  // namespace

void XmlParserImpl::topLevelError(const UnicodeString& text) {
    core_.error(PARSE_TOP_LEVEL_TEXT, text);
}

// Text.

void XmlParserImpl::readTextOrSpace() {
    if (namespaces_.depth() == 0) {
        core_.event = IGNORABLE_WHITESPACE;
        readTopLevelText();
    } else {
        core_.event = TEXT;
        readText();
    }
}

/// Characters up to "<", "&" or the end. A text that a tag ends in the same window is not copied.
void XmlParserImpl::readText() {
    for (;;) {
        const char16_t* const begin = scanner().cursor();
        const char16_t* const end = scanner().limit();
        const char16_t* const stop = scanTextStop(begin, end);
        if (end - stop > 1 && *stop == u'<' && stop[1] != u'!' && stop[1] != u'?' &&
            text_.isEmpty() && stop != begin) {
            plain_ = {begin, static_cast<std::size_t>(stop - begin)};
            scanner().moveTo(stop);
            scanner().look(stop + 1);
            return;
        }
        text_.append(begin, static_cast<std::size_t>(stop - begin));
        scanner().moveTo(stop);
        if (stop == end) {
            if (!scanner().more()) return;
        } else if (*stop == u']') {
            readClosingBrackets();
        } else {
            scanner().look(stop + 1);
            return;
        }
    }
}

/// A run of "]", which must not stand before ">" when it is longer than one.
void XmlParserImpl::readClosingBrackets() {
    const std::int32_t count = core_.readRunOf(u']');
    text_.append(u']', static_cast<std::size_t>(count));
    if (count < 2 || scanner().peek() != u'>') return;
    scanner().skip();
    text_.append(u'>');
    core_.error(PARSE_CDATA_END_IN_TEXT);
}

/// White space; every other character is an error and left out.
void XmlParserImpl::readTopLevelText() {
    for (int c = scanner().peek(); c != Scanner::END && c != u'<' && c != u'&';
         c = scanner().peek()) {
        if (isXmlSpace(static_cast<char16_t>(c))) {
            scanner().skip();
            text_.append(static_cast<char16_t>(c));
        } else {
            topLevelError(describeCharacter(scanner().getCodePoint()));
        }
    }
}

// References.

/// Behind "&". With `expand`, the characters go into the text or the replacement onto the inputs;
/// without, the reference is left to the caller. False when there is no event.
bool XmlParserImpl::readReference(bool expand) {
    const bool inside = namespaces_.depth() > 0;
    core_.event = ENTITY_REF;
    if (scanner().accept(u'#')) {
        std::uint32_t c;
        if (!core_.readCharacterReference(c)) return false;
        if (inside)
            text_.appendCodePoint(static_cast<UChar32>(c));
        else
            topLevelError(describeCharacter(static_cast<UChar32>(c)));
        return inside;
    }
    if (char16_t character; inside && expand && core_.readPredefined(character)) {
        text_.append(character);
        return true;
    }
    RyName name;
    if (!core_.readEntityName(u'&', name)) return false;
    if (!inside) {
        topLevelError(UnicodeString(u'&').append(name.toString()).append(u';'));
        return false;
    }
    if (expand) {
        std::u16string_view characters;
        if (core_.expandGeneral(name, characters, true) == ParserCore::Expansion::TEXT)
            text_.append(characters);
        return true;
    }
    entityName_ = name;
    return true;
}

// Markup.

/// Behind "<?". False for the XML declaration, which is no event.
bool XmlParserImpl::readInstruction(TextBuffer* sink) {
    const EventType before = core_.event;
    if (scanner().peek() != Scanner::END && isXmlSpace(static_cast<char16_t>(scanner().peek()))) {
        core_.event = PROCESSING_INSTRUCTION;
        core_.error(PARSE_UNEXPECTED_SPACE, UnicodeString(u"<?"));
        scanner().skipSpace();
    }
    const Scanner::Name name = scanner().scanQName();
    const bool isDeclaration = ParserCore::keyword(name) == RN_xml;
    if (isDeclaration && before == START_DOCUMENT && !declarationSeen_) {
        declarationSeen_ = true;
        core_.event = before;
        core_.readXmlDeclaration(false);
        scanner().base().setStepping(false);
        return false;
    }
    core_.event = PROCESSING_INSTRUCTION;
    const UnicodeString target = name.toString();
    scanner().base().setStepping(false);
    if (isDeclaration)
        core_.error(PARSE_MISPLACED_XML_DECLARATION);
    else if (isXmlInAnyCase(name))
        core_.error(PARSE_XML_NOT_LOWER_CASE, target);
    const int c = scanner().peek();
    if (c != Scanner::END && !isXmlSpace(static_cast<char16_t>(c)))
        core_.error(PARSE_MISSING_PI_SPACE, target);
    if (sink != nullptr) {
        sink->clear();
        sink->append(target.getBuffer(), static_cast<std::size_t>(target.length()));
    }
    core_.readInstructionRest(sink);
    return true;
}

/// Behind "<!". False when there is no event.
bool XmlParserImpl::readMarkup(TextBuffer* sink) {
    if (scanner().accept(u'[')) return readCdata();
    if (scanner().accept(u'-')) {
        core_.event = COMMENT;
        if (!scanner().accept(u'-')) {
            core_.error(PARSE_BAD_COMMENT);
            return false;
        }
        core_.readCommentRest(sink);
        return true;
    }
    const Scanner::Name name = scanner().scanName();
    if (ParserCore::keyword(name) != RN_DOCTYPE) {
        core_.error(PARSE_BAD_MARKUP, name.toString());
        return false;
    }
    core_.event = DOCDECL;
    if (sink != nullptr) scanner().startCapture(*sink);
    readDoctype();
    if (sink == nullptr) return true;
    scanner().stopCapture();
    sink->dropLast(u'>');
    return true;
}

/// Behind "<![". The section goes into the text, at the top level nowhere.
bool XmlParserImpl::readCdata() {
    core_.event = CDSECT;
    if (ParserCore::keyword(scanner().scanName()) != RN_CDATA || !scanner().accept(u'[')) {
        core_.error(PARSE_BAD_CDATA);
        return false;
    }
    const bool inside = namespaces_.depth() > 0;
    if (!inside) topLevelError(UnicodeString(u"<![CDATA["));
    TextBuffer* const target = inside ? &text_ : nullptr;
    for (;;) {
        if (!core_.readUpTo(u']', target)) {
            core_.error(PARSE_UNENDED_CDATA);
            return inside;
        }
        std::int32_t brackets = core_.readRunOf(u']');
        const bool ended = brackets >= 2 && scanner().accept(u'>');
        if (ended) brackets -= 2;
        if (target != nullptr) target->append(u']', static_cast<std::size_t>(brackets));
        if (ended) return inside;
    }
}

}  // namespace RynCommon
