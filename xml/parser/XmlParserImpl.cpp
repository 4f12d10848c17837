// The events of the parser; see the header.
//
// peekToken() says what comes next, reading just the characters that tell it ("<", "</", "<?", "<!"
// or "&"), and the token stays there until it is taken. nextToken() takes one token and gives its
// event; next() goes on through text, references, CDATA sections, comments and instructions,
// gathering the characters in one buffer, until a tag or the end comes, which it leaves for the
// next call when there is text to give first.
//
// core_.event is the event whose reading has begun: it is what an error shows, and what the
// accessors answer for.
#include "xml/parser/XmlParserImpl.h"

#include <RynCommon/RyString.h>
#include <RynCommon/RyUri.h>
#include <unicode/locid.h>

#include "core/ErrorLocations.h"
#include "core/MemoryCheck.h"

namespace RynCommon {

namespace {

constexpr char16_t SOURCE[] = u"RynCommon::XmlParserImpl";

}  // namespace

XmlParserImpl::XmlParserImpl() : core_(static_cast<ParserCore::WindowUser&>(*this)) {}
XmlParserImpl::~XmlParserImpl() = default;

bool XmlParserImpl::isA(unsigned int id) const {
    return id == getStaticTypeID() || RyXmlParser::isA(id);
}

UnicodeString XmlParserImpl::getTypeName() const {
    return UnicodeString(u"XmlParserImpl");
}

// Settings.

void XmlParserImpl::setFeature(Feature feature, bool on) {
    const auto index = static_cast<std::size_t>(feature);
    if (index < core_.features.size()) core_.features[index] = on;
}

bool XmlParserImpl::getFeature(Feature feature) const {
    const auto index = static_cast<std::size_t>(feature);
    return index < core_.features.size() && core_.features[index];
}

void XmlParserImpl::setStreamType(const UnicodeString& type, const UnicodeString& charset) {
    streamType_ = takeWhole(UnicodeString(type).toLower(icu::Locale::getRoot()));
    charset_ = takeWhole(UnicodeString(charset).toLower(icu::Locale::getRoot()));
}

void XmlParserImpl::setCallbackError(ErrorCallback callback, void* user) {
    core_.callback = callback;
    core_.callbackUser = user;
}

void XmlParserImpl::setLimits(const RyXmlLimits& limits) {
    core_.setLimits(limits);
}
const RyXmlLimits& XmlParserImpl::getLimits() const {
    return core_.limits;
}
void XmlParserImpl::addMathMLEntityMap() {
    core_.mathMLEntities = true;
}

void XmlParserImpl::defineEntityReplacementText(RyName name, const UnicodeString& text) {
    core_.generalEntities.define(name, text);
}

// Input.

void XmlParserImpl::resetDocument() {
    core_.reset();
    noName_.successor = nullptr;
    lastName_ = &noName_;
    namespaces_.reset();
    attributes_.clear();
    defaults_.clear();
    text_.clear();
    dropPlainText();
    entityName_ = RyName();
    token_ = Token::NONE;
    isPrepared_ = false;
    started_ = failed_ = declarationSeen_ = rootSeen_ = doctypeSeen_ = emptyTag_ = false;
}

void XmlParserImpl::setInput(const UnicodeString& uri, const UnicodeString& encoding,
                             const UnicodeString& baseUri) {
    withMemoryError(SOURCE, [&] { openInput(uri, encoding, baseUri); });
}

void XmlParserImpl::openInput(const UnicodeString& uri, const UnicodeString& encoding,
                              const UnicodeString& baseUri) {
    resetDocument();
    const RyUri source(uri);
    std::unique_ptr<std::istream> stream(source.getStream());
    if (stream == nullptr)
        throwIoError(IO_CANNOT_OPEN, LOCATION_PARSER_SET_INPUT, source.getLocalPath());
    core_.inputUri = source.toString();
    core_.baseUri = ownText(baseUri);
    if (baseUri.isEmpty() && source.isAbsolute() && !source.isDataScheme())
        core_.baseUri = source.getBaseString();
    scanner().base().open(std::move(stream));
    scanner().begin(core_.inputUri);
    core_.applyGivenEncoding(scanner().base(), encoding);
}

void XmlParserImpl::setInput(std::istream& in, const UnicodeString& encoding,
                             const UnicodeString& baseUri) {
    withMemoryError(SOURCE, [&] {
        resetDocument();
        core_.baseUri = ownText(baseUri);
        scanner().base().open(in);
        scanner().begin(UnicodeString());
        core_.applyGivenEncoding(scanner().base(), encoding);
    });
}

void XmlParserImpl::closeStream() {
    scanner().base().close();
}

void XmlParserImpl::releaseBuffers() {
    if (scanner().base().isOpen() && !failed_) return;
    namespaces_.release();  // elements that a failure left open point to names
    scanner().releaseBuffers();
    core_.names.reset();
    noName_.successor = nullptr;
    lastName_ = &noName_;
    attributes_ = AttributeList();
    text_.release();
    dropPlainText();
    token_ = Token::NONE;
    isPrepared_ = false;
    failed_ = true;  // until the next input
}

/// Raises what a missing or failed input is; reads its first byte.
void XmlParserImpl::checkStream() {
    const std::istream* const in = scanner().base().stream();
    if (in == nullptr) throwSystemError(SYSTEM_WRONG_STATE, LOCATION_PARSER_CHECK_STREAM);
    if (in->fail())
        throwIoError(in->eof() ? IO_UNEXPECTED_END : IO_INPUT_ERROR, LOCATION_PARSER_CHECK_STREAM);
    if (!scanner().base().hasByte()) {
        const bool broken = in->bad();
        throwIoError(broken ? IO_INPUT_ERROR : IO_UNEXPECTED_END, LOCATION_PARSER_CHECK_STREAM);
    }
}

/// Sniffs the encoding. Of an XML declaration nothing beyond its end is read, since it may change
/// the decoder.
void XmlParserImpl::start() {
    checkStream();
    started_ = true;
    TextInput& input = scanner().base();
    if (!input.start()) core_.error(PARSE_INVALID_CHARACTER);
    input.setStepping(true);
    if (peekToken() != Token::INSTRUCTION) input.setStepping(false);
}

// Events.

/// Runs `read`; whatever escapes from it ends the document, so that nothing reads on from a broken
/// state.
template <class Read>
RyXmlParser::EventType XmlParserImpl::guarded(Read read) {
    try {
        return read();
    } catch (const RyError&) {
        failed_ = true;
        throw;
    } catch (const std::bad_alloc& error) {
        failed_ = true;
        throw RyError(error, UnicodeString(SOURCE));
    } catch (const std::exception& error) {
        failed_ = true;
        throw RyError(error, UnicodeString(SOURCE));
    } catch (...) {
        failed_ = true;
        throw;
    }
}

RyXmlParser::EventType XmlParserImpl::next() {
    return guarded([this] {
        if (!prepare()) return core_.event;
        // Most events are a tag, or a text that a tag ends.
        switch (peekToken()) {
            case Token::START_TAG:
                token_ = Token::NONE;
                readStartTag();
                return core_.event;
            case Token::END_TAG:
                token_ = Token::NONE;
                if (readEndTag()) return core_.event;
                break;
            case Token::TEXT:
                if (namespaces_.depth() == 0) break;
                token_ = Token::NONE;
                core_.event = TEXT;
                readText();
                if (takeTagStart()) return core_.event;
                break;
            default:
                break;
        }
        return mergedEvent();
    });
}

RyXmlParser::EventType XmlParserImpl::nextToken() {
    return guarded([this] { return prepare() ? singleEvent() : core_.event; });
}

/// Leaves the event behind that was given last. False when its successor needs no reading.
bool XmlParserImpl::prepare() {
    if (failed_) {
        core_.event = END_DOCUMENT;
        return false;
    }
    if (isPrepared_) {
        isPrepared_ = false;
        return true;
    }
    switch (core_.event) {
        case END_TAG:
            namespaces_.pop();
            break;
        case START_TAG:
            attributes_.clear();
            if (!emptyTag_) break;
            emptyTag_ = false;
            core_.event = END_TAG;
            return false;
        case END_DOCUMENT:
            return false;
        default:
            break;
    }
    text_.clear();
    dropPlainText();
    entityName_ = RyName();
    if (!started_) start();
    return true;
}

/// Leaves the event behind that was given last, where content of the document itself may follow
/// that needs no more than PlainContent knows of.
bool XmlParserImpl::enterPlainContent() {
    const bool isBehindContent =
        core_.event == END_TAG || core_.event == TEXT || (core_.event == START_TAG && !emptyTag_);
    if (failed_ || isPrepared_ || !isBehindContent) return false;
    if (scanner().depth() != 1 || !defaults_.isEmpty()) return false;
    isPrepared_ = prepare();
    return isPrepared_ && namespaces_.depth() > 0;
}

XmlParserImpl::Token XmlParserImpl::peekAnyToken() {
    switch (scanner().peek()) {
        case Scanner::END:
            return token_ = Token::END;
        case u'&':
            scanner().skip();
            return token_ = Token::REFERENCE;
        case u'<':
            break;
        default:
            return token_ = Token::TEXT;
    }
    scanner().skip();
    switch (scanner().peek()) {
        case u'!':
            token_ = Token::MARKUP;
            break;
        case u'/':
            token_ = Token::END_TAG;
            break;
        case u'?':
            token_ = Token::INSTRUCTION;
            break;
        default:
            return token_ = Token::START_TAG;
    }
    scanner().skip();
    return token_;
}

/// Behind a text that stands in the window as it is, and that a tag ends, the tag's first
/// characters are there to be taken. False where that is not so.
bool XmlParserImpl::takeTagStart() {
    if (!hasPlainText()) return false;
    peekToken();
    return true;
}

XmlParserImpl::Token XmlParserImpl::takeToken() {
    const Token token = peekToken();
    token_ = Token::NONE;
    return token;
}

RyXmlParser::EventType XmlParserImpl::mergedEvent() {
    for (;;) {
        const Token token = peekToken();
        switch (token) {
            case Token::START_TAG:
            case Token::END_TAG:
            case Token::END:
                if (hasPlainText() || !text_.isEmpty()) return core_.event = TEXT;
                token_ = Token::NONE;
                if (readToken(token)) return core_.event;
                break;
            case Token::TEXT:
                token_ = Token::NONE;
                readTextOrSpace();
                if (core_.event == IGNORABLE_WHITESPACE) text_.clear();
                break;
            case Token::REFERENCE:
                token_ = Token::NONE;
                readReference(true);
                break;
            case Token::INSTRUCTION:
                token_ = Token::NONE;
                readInstruction(nullptr);
                break;
            default:
                token_ = Token::NONE;
                readMarkup(nullptr);
                break;
        }
    }
}

RyXmlParser::EventType XmlParserImpl::singleEvent() {
    while (!readToken(takeToken())) {
    }
    return core_.event;
}

/// Reads one token; false when it gives no event.
bool XmlParserImpl::readToken(Token token) {
    switch (token) {
        case Token::START_TAG:
            readStartTag();
            return true;
        case Token::END_TAG:
            return readEndTag();
        case Token::TEXT:
            readTextOrSpace();
            return true;
        case Token::REFERENCE:
            return readReference(false);
        case Token::INSTRUCTION:
            return readInstruction(&text_);
        case Token::MARKUP:
            return readMarkup(&text_);
        default:
            readEnd();
            return true;
    }
}

/// Values and text that point into the window become copies.
void XmlParserImpl::windowLeaves() {
    attributes_.ownValues();
    if (!hasPlainText()) return;
    text_.clear();
    text_.append(plain_);
    dropPlainText();
}

void XmlParserImpl::readEnd() {
    core_.event = END_DOCUMENT;
    if (namespaces_.depth() > 0) core_.error(PARSE_MISSING_END_TAG);
    while (namespaces_.depth() > 0) namespaces_.pop();
    closeStream();
}

// Accessors.

const UnicodeString& XmlParserImpl::getInputEncoding() const {
    return core_.scanner.topInput().encodingName();
}

int XmlParserImpl::getNamespaceCount(int depth) const {
    return static_cast<int>(namespaces_.bindingCount(depth));
}
RyName XmlParserImpl::getNamespacePrefix(int index) const {
    return namespaces_.bindingPrefix(index);
}
RyName XmlParserImpl::getNamespaceUri(int index) const {
    return namespaces_.bindingNamespace(index);
}

RyName XmlParserImpl::getNamespace() const {
    return namespaces_.depth() > 0 ? namespaces_.top().ns : RyName();
}
RyName XmlParserImpl::getNamespace(RyName prefix) const {
    return namespaces_.lookup(prefix);
}
int XmlParserImpl::getDepth() const {
    return namespaces_.depth();
}
UnicodeString XmlParserImpl::getPositionDescription() const {
    return core_.positionDescription();
}
int XmlParserImpl::getLineNumber() const {
    return core_.scanner.position().line;
}
int XmlParserImpl::getColumnNumber() const {
    return core_.scanner.position().column;
}

bool XmlParserImpl::isWhitespace() const {
    if (core_.event == IGNORABLE_WHITESPACE) return true;
    if (core_.event != TEXT && core_.event != CDSECT)
        throwSystemError(SYSTEM_WRONG_STATE, LOCATION_PARSER_IS_WHITESPACE);
    const UnicodeString& text = getText();
    for (std::int32_t i = 0; i < text.length(); ++i)
        if (!isXmlSpace(text[i])) return false;
    return true;
}

const UnicodeString& XmlParserImpl::getText() const {
    const std::u16string_view units = textUnits();
    const auto length = static_cast<std::int32_t>(units.size());
    if (alias_.length() != length || alias_.getBuffer() != units.data())
        alias_.setTo(false, units.data(), length);
    return alias_;
}

RyName XmlParserImpl::getName() const {
    if (core_.event == ENTITY_REF) return entityName_;
    return namespaces_.depth() > 0 ? namespaces_.top().name->local : RyName();
}

RyName XmlParserImpl::getPrefix() const {
    return namespaces_.depth() > 0 ? namespaces_.top().name->prefix : RyName();
}

bool XmlParserImpl::isEmptyElementTag() const {
    if (core_.event != START_TAG)
        throwSystemError(SYSTEM_WRONG_STATE, LOCATION_PARSER_IS_EMPTY_ELEMENT_TAG);
    return emptyTag_;
}

int XmlParserImpl::getAttributeCount() const {
    return static_cast<int>(attributes_.size());
}

const ParsedAttribute& XmlParserImpl::attributeAt(int index, int location) const {
    if (index < 0 || static_cast<std::size_t>(index) >= attributes_.size())
        throwSystemError(SYSTEM_INDEX_OUT_OF_RANGE, location);
    return attributes_[static_cast<std::size_t>(index)];
}

RyName XmlParserImpl::getAttributeNamespace(int index) const {
    return attributeAt(index, LOCATION_PARSER_GET_ATTRIBUTE_NAMESPACE).ns;
}
RyName XmlParserImpl::getAttributeName(int index) const {
    return attributeAt(index, LOCATION_PARSER_GET_ATTRIBUTE_NAME).local;
}
RyName XmlParserImpl::getAttributePrefix(int index) const {
    return attributeAt(index, LOCATION_PARSER_GET_ATTRIBUTE_PREFIX).prefix;
}
const UnicodeString& XmlParserImpl::getAttributeValue(int index) const {
    return attributeAt(index, LOCATION_PARSER_GET_ATTRIBUTE_VALUE).value();
}

const UnicodeString& XmlParserImpl::getAttributeValue(RyName ns, RyName name) const {
    const ParsedAttribute* const attribute = attributes_.find(ns, name);
    if (attribute == nullptr) return RyEmptyString::EMPTY_VALUE;
    return attribute->value();
}

RyXmlParser::EventType XmlParserImpl::getEventType() const {
    return core_.event;
}
const UnicodeString& XmlParserImpl::getBaseUri() const {
    return core_.baseUri;
}

}  // namespace RynCommon
