// Errors, limits and the markup that may stand anywhere; see the header.
#include "xml/parser/ParserCore.h"

#include <RynCommon/RyUtil.h>

#include "core/NameTable.h"

namespace RynCommon {

namespace {

constexpr const char16_t* EVENT_NAMES[] = {u"START_DOCUMENT",
                                           u"END_DOCUMENT",
                                           u"START_TAG",
                                           u"END_TAG",
                                           u"TEXT",
                                           u"CDSECT",
                                           u"ENTITY_REF",
                                           u"IGNORABLE_WHITESPACE",
                                           u"PROCESSING_INSTRUCTION",
                                           u"COMMENT",
                                           u"DOCDECL"};

/// Flag bits of a code, which no thrown error carries.
constexpr unsigned short FLAG_BITS = 0x0700;

}  // namespace

ParserCore::ParserCore(WindowUser& user)
    : scanner(static_cast<ScannerOwner&>(*this)), user_(user) {}

void ParserCore::reset() {
    if (names == nullptr || names->generation() != sharedNameGeneration()) names = takeNameCache();
    scanner.base().close();
    scanner.begin(UnicodeString());
    generalEntities.clear();
    parameterEntities.clear();
    mathMLEntities = false;
    event = RyXmlParser::START_DOCUMENT;
    inputUri.remove();
    baseUri.remove();
    expanded_ = 0;
}

void ParserCore::error(unsigned short code, const UnicodeString& arg0, const UnicodeString& arg1) {
    const UnicodeString message = parseErrorText(code, arg0, arg1);
    if (callback == nullptr) raise(code, message);
    callback(
        RyError(code, message, UnicodeString(u"RynCommon::XmlParserImpl"), -1, -1, UnicodeString()),
        callbackUser);
}

void ParserCore::raise(unsigned short code, const UnicodeString& message) {
    UnicodeString text(message);
    text.append(u'\n').append(positionDescription());
    throw RyError(static_cast<unsigned short>(code & ~FLAG_BITS), text,
                  UnicodeString(u"RynCommon::XmlParserImpl"), -1, -1, UnicodeString());
}

UnicodeString ParserCore::positionDescription() {
    UnicodeString text(EVENT_NAMES[event]);
    const UnicodeString& uri = inputUri.isEmpty() ? baseUri : inputUri;
    if (!uri.isEmpty()) text.append(u", '").append(uri).append(u'\'');
    const auto [line, column] = scanner.position();
    if (line != -1) text.append(u", Line ").append(RyUtil::toString(line));
    if (column != -1) text.append(u", Col ").append(RyUtil::toString(column));
    return text.append(u'.');
}

void ParserCore::invalidCharacterRead() {
    error(PARSE_INVALID_CHARACTER);
}

void ParserCore::exceedLimit() {
    raise(PARSE_LIMIT_EXCEEDED,
          parseErrorText(PARSE_LIMIT_EXCEEDED, UnicodeString(), UnicodeString()));
}

void ParserCore::countExpansion(std::int32_t units) {
    expanded_ += static_cast<std::uint64_t>(units) + 1;
    if (expanded_ <= limits.expansionThreshold) return;
    const std::uint64_t allowed = scanner.unitsRead() * limits.expansionFactor;
    if (expanded_ > allowed) exceedLimit();
}

/// Raises the limit's error when no further input may be opened.
void ParserCore::checkNesting() {
    if (scanner.depth() > limits.nestedInputs) exceedLimit();
}

RyNameEnum ParserCore::keyword(const Scanner::Name& name) {
    if (!name.complete || name.colon != -1) return RN_EMPTY;
    return findBuiltinName(name.text, static_cast<std::int32_t>(name.length));
}

// Markup.

bool ParserCore::readUpTo(char16_t unit, TextBuffer* sink) {
    for (;;) {
        if (scanner.cursor() == scanner.limit() && !scanner.more()) return false;
        const char16_t* const begin = scanner.cursor();
        const char16_t* const p = findUnit(begin, scanner.limit(), unit);
        if (sink != nullptr) sink->append(begin, static_cast<std::size_t>(p - begin));
        scanner.moveTo(p);
        if (p != scanner.limit()) return true;
    }
}

std::int32_t ParserCore::readRunOf(char16_t unit) {
    std::int32_t count = 0;
    while (scanner.accept(unit)) ++count;
    return count;
}

namespace {

void appendRun(TextBuffer* sink, char16_t unit, std::int32_t count) {
    if (sink != nullptr && count > 0) sink->append(unit, static_cast<std::size_t>(count));
}

}  // namespace

/// Up to "-->". Two hyphens before anything else are reported and belong to the text; of a longer
/// run the last two may still end the comment.
void ParserCore::readCommentRest(TextBuffer* sink) {
    while (readUpTo(u'-', sink)) {
        scanner.skip();
        if (!scanner.accept(u'-')) {
            appendRun(sink, u'-', 1);
            continue;
        }
        if (scanner.accept(u'>')) return;
        if (scanner.peek() != Scanner::END) error(PARSE_HYPHENS_IN_COMMENT);
        while (scanner.accept(u'-')) {
            appendRun(sink, u'-', 1);
            if (scanner.accept(u'>')) return;
        }
        appendRun(sink, u'-', 2);
    }
    error(PARSE_UNENDED_COMMENT);
}

void ParserCore::readInstructionRest(TextBuffer* sink) {
    while (readUpTo(u'?', sink)) {
        const std::int32_t marks = readRunOf(u'?');
        const bool ended = scanner.accept(u'>');
        appendRun(sink, u'?', ended ? marks - 1 : marks);
        if (ended) return;
    }
    error(PARSE_UNENDED_PI);
}

}  // namespace RynCommon
