// The serializer's calls.
//
// Namespace declarations are written when a start tag closes, after its attributes: until then an
// attribute may still need one. An element's or attribute's own prefix is written at once, so it is
// claimed in NamespaceScopes and nothing that follows in the tag can bind it to another namespace.
//
// Output is collected in CharacterWriter. It goes to the stream when the buffer is full, in flush()
// and endDocument(), when another output is set, and after every call that ends outside of all
// elements.
#include "xml/serializer/XmlSerializerImpl.h"

#include <unicode/locid.h>

#include <new>

#include <RynCommon/RyNameTable.h>
#include <RynCommon/RyXmlUtil.h>

#include "core/ErrorLocations.h"
#include "xml/serializer/WellFormedness.h"

namespace RynCommon {

namespace {

/// What the XML declaration names by custom: one character whose code is the number of the label's
/// name.
constexpr char16_t DECLARED_SHIFT_JIS = RN_SHIFT_JIS;
constexpr char16_t DECLARED_UTF_8 = RN_UTF_8;

bool isDeclaration(RyName ns, RyName prefix, RyName localName) {
    return ns == RN_NS_xmlns || localName == RN_xmlns || prefix == RN_xmlns;
}

// "xml:lang" and its like, given as one local name.
bool isXmlAttributeName(const UnicodeString& name) {
    return name.startsWith(u"xml:", 4) && isNcName(name.tempSubString(4));
}

}  // namespace

// Output.

// The caller's stream may be gone already, so it is not touched: what an unfinished element left in
// the buffer is lost.
XmlSerializerImpl::~XmlSerializerImpl() {
    dropOutput(ownOut_ != nullptr);
}

bool XmlSerializerImpl::isA(unsigned int id) const {
    return id == getStaticTypeID() || RyXmlSerializer::isA(id);
}

void XmlSerializerImpl::setConformant(bool on) {
    conformant_ = on;
    scopes_.setPlainPrefixes(on);
}

void XmlSerializerImpl::dropOutput(bool drain) {
    if (out_ != nullptr && drain) {
        try {
            writer_.flush();
        } catch (const std::bad_alloc&) {
            // The stream has marked itself as bad; there is no call to report it to.
        }
    }
    if (ownOut_ != nullptr) files_.releaseOStream(ownOut_);
    ownOut_ = nullptr;
    out_ = nullptr;
    writer_.open(nullptr);
    state_ = NO_OUTPUT;
}

void XmlSerializerImpl::start(std::ostream* out, const UnicodeString& encoding) {
    out_ = out;
    writer_.open(out);
    writer_.setShiftJis(RyNameTable::getBuiltinNameEnum(encoding) == RN_SHIFT_JIS);
    scopes_.clear();
    elements_.clear();
    isScopeOpen_ = false;
    encoding_ = encoding;
    if (out != nullptr) state_ = OUTPUT_SET;
}

void XmlSerializerImpl::setOutput(std::ostream* out, const UnicodeString& encoding) {
    dropOutput(true);
    start(out, encoding);
}

void XmlSerializerImpl::setOutput(const UnicodeString& uri, const UnicodeString& encoding) {
    dropOutput(true);
    start(nullptr, encoding);
    std::ostream* const out = files_.createOStream(uri);
    if (out == nullptr) throwIoError(IO_CANNOT_OPEN, LOCATION_SERIALIZER_SET_OUTPUT, uri);
    ownOut_ = out;
    start(out, encoding);
}

void XmlSerializerImpl::checkStream() const {
    if (out_ == nullptr) throwIoError(IO_OUTPUT_NOT_SET, LOCATION_SERIALIZER_CHECK_STREAM);
    if (out_->fail()) throwIoError(IO_OUTPUT_ERROR, LOCATION_SERIALIZER_CHECK_STREAM);
}

void XmlSerializerImpl::requireWellFormed(bool condition, int location) const {
    if (!condition) throwSystemError(SYSTEM_NOT_WELL_FORMED, location);
}

void XmlSerializerImpl::flush() {
    checkStream();
    closeStartTag();
    writer_.flush();
    checkStream();
}

// The document.

// The text for the XML declaration; leaves in encoding_ what the content is written in.
UnicodeString XmlSerializerImpl::takeDeclaredEncoding() {
    encoding_.trim().toUpper(icu::Locale::getRoot());
    switch (RyNameTable::getBuiltinNameEnum(encoding_)) {
        case RN_SHIFT_JIS_138:
            // This spelling has always been written as UTF-8; conformant output means what it says.
            if (conformant_) encoding_ = u"SHIFT_JIS";
            [[fallthrough]];
        case RN_SHIFT_JIS:
            return conformant_ ? UnicodeString(u"Shift_JIS") : UnicodeString(DECLARED_SHIFT_JIS);
        case RN_UTF_8:
            return conformant_ ? UnicodeString(u"UTF-8") : UnicodeString(DECLARED_UTF_8);
        default:
            encoding_.remove();
            return UnicodeString();
    }
}

void XmlSerializerImpl::startDocument(const UnicodeString& encoding,
                                      const UnicodeString& standalone) {
    checkStream();
    if (state_ != OUTPUT_SET)
        throwSystemError(SYSTEM_START_DOCUMENT_MISPLACED, LOCATION_SERIALIZER_START_DOCUMENT);
    if (conformant_) {
        requireWellFormed(standalone.isEmpty() || standalone == u"yes" || standalone == u"no",
                          LOCATION_SERIALIZER_START_DOCUMENT);
        requireWellFormed(isCommentText(generator_), LOCATION_SERIALIZER_START_DOCUMENT);
    }
    if (!encoding.isEmpty()) encoding_ = encoding;
    const UnicodeString declared = takeDeclaredEncoding();
    writer_.setShiftJis(encoding_ == u"SHIFT_JIS");
    writer_.writeAscii("<?xml version=\"1.0\"");
    if (!declared.isEmpty()) writeMarkup(" encoding=\"", declared, "\"");
    if (!standalone.isEmpty()) writeMarkup(" standalone=\"", standalone, "\"");
    writer_.writeAscii("?>");
    if (!generator_.isEmpty()) writeMarkup("<!-- ", generator_, " -->");
    state_ = DOCUMENT_STARTED;
    endContent();
}

void XmlSerializerImpl::docdecl(const UnicodeString& text) {
    checkStream();
    if (state_ != DOCUMENT_STARTED)
        throwSystemError(SYSTEM_DOCDECL_UNEXPECTED, LOCATION_SERIALIZER_DOCDECL);
    if (conformant_) requireWellFormed(isCharacterData(text) && writer_.canEncode(text));
    const bool spaced = !text.isEmpty() && isWhiteSpace(text.tempSubString(0, 1));
    writeMarkup(spaced ? "<!DOCTYPE" : "<!DOCTYPE ", text, ">");
    endContent();
}

void XmlSerializerImpl::endDocument() {
    checkStream();
    try {
        while (!elements_.empty()) endElement();
        // A stream of our own is closed by the drop, which flushes it; its failure has to be seen
        // before.
        writer_.flush();
        checkStream();
    } catch (...) {
        leaveDocument();
        throw;
    }
    leaveDocument();
}

void XmlSerializerImpl::leaveDocument() {
    dropOutput(false);
    state_ = DOCUMENT_ENDED;
}

// Tags.

void XmlSerializerImpl::openScope() {
    if (!isScopeOpen_) scopes_.openScope();
    isScopeOpen_ = true;
}

void XmlSerializerImpl::setPrefix(RyName prefix, RyName ns) {
    checkStream();
    if (conformant_) checkDeclaration(prefix, ns, LOCATION_NONE);
    closeStartTag();
    openScope();
    // Claims belong to the tag before.
    scopes_.beginTag();
    scopes_.declare(prefix, ns);
    state_ = PREFIXES_SET;
}

void XmlSerializerImpl::startTag(RyName ns, RyName prefix, RyName localName, bool generatePrefix) {
    checkStream();
    const bool generate = generatePrefix && !ns.isEmpty();
    if (conformant_) checkElementName(ns, generate ? RyName() : prefix, localName);
    closeStartTag();
    if (!isScopeOpen_) scopes_.openScope();
    isScopeOpen_ = false;
    scopes_.beginTag();
    if (conformant_) attributeNames_.clear();
    const RyName written = claimElementPrefix(ns, prefix, generate);
    elements_.push_back({ns, written, localName});
    writer_.writeName("<", written, localName, "");
    state_ = TAG_OPEN;
}

RyName XmlSerializerImpl::claimElementPrefix(RyName ns, RyName prefix, bool generate) {
    if (!ns.isEmpty())
        return generate ? scopes_.claimAnyForElement(ns) : scopes_.claimForElement(ns, prefix);
    // A name without a namespace is written as it is, and does not object to a default that its own
    // tag declares, unless it has to be read back as what it is.
    if (prefix.isEmpty() && (conformant_ || !scopes_.getInheritedDefault().isEmpty()))
        scopes_.claimForElement(ns, prefix);
    return prefix;
}

void XmlSerializerImpl::attribute(RyName ns, RyName localName, const UnicodeString& value) {
    attributeSub(ns, RN_EMPTY, localName, value);
}

void XmlSerializerImpl::attribute(RyName ns, RyName prefix, RyName localName,
                                  const UnicodeString& value) {
    attributeSub(ns, prefix, localName, value);
}

void XmlSerializerImpl::attribute(RyName ns, RyName prefix, RyName localName,
                                  const RyCompactText& value) {
    if (conformant_ || isDeclaration(ns, prefix, localName))
        return attributeSub(ns, prefix, localName, value.toString());
    checkStream();
    requireTagPending();
    const RyName written = ns.isEmpty() ? prefix : scopes_.claimForAttribute(ns, prefix);
    writer_.writeName(" ", written, localName, "=\"");
    writer_.write(value, CharacterWriter::VALUE_ESCAPES);
    writer_.writeAscii("\"");
    state_ = TAG_WITH_ATTRIBUTES;
}

void XmlSerializerImpl::requireTagPending() const {
    if (!isTagPending())
        throwSystemError(SYSTEM_ATTRIBUTE_MISPLACED, LOCATION_SERIALIZER_ATTRIBUTE);
}

void XmlSerializerImpl::attributeSub(RyName ns, RyName prefix, RyName localName,
                                     const UnicodeString& value) {
    checkStream();
    requireTagPending();
    if (isDeclaration(ns, prefix, localName)) {
        declareByAttribute(localName, value);
    } else {
        if (conformant_) {
            checkAttribute(ns, prefix, localName, value);
            attributeNames_.insert(ns, localName);
        }
        const RyName written = ns.isEmpty() ? prefix : scopes_.claimForAttribute(ns, prefix);
        writeAttribute(written, localName, value);
    }
    state_ = TAG_WITH_ATTRIBUTES;
}

void XmlSerializerImpl::declareByAttribute(RyName localName, RyName ns) {
    const RyName prefix = localName == RN_xmlns ? RN_EMPTY : RyNameEnum(localName);
    if (conformant_) checkDeclaration(prefix, ns, LOCATION_SERIALIZER_ATTRIBUTE);
    scopes_.declareExplicitly(prefix, ns);
}

void XmlSerializerImpl::closeStartTag(bool empty) {
    if (!isTagPending()) return;
    writeDeclarations();
    if (empty)
        writer_.writeAscii("/>");
    else
        writer_.writeAscii(">");
    state_ = empty ? EMPTY_TAG_CLOSED : TAG_CLOSED;
}

void XmlSerializerImpl::writeDeclarations() {
    scopes_.visitDeclarations([this](RyName prefix, RyName ns) {
        writer_.writeAscii(prefix.isEmpty() ? " xmlns" : " xmlns:");
        writer_.write(prefix.toString(), ESCAPE_NONE);
        writer_.writeAscii("=\"");
        writer_.write(ns.toString(), valueEscapes());
        writer_.writeAscii("\"");
    });
}

void XmlSerializerImpl::endTag(RyName ns, RyName localName) {
    checkStream();
    if (elements_.empty()) throwSystemError(SYSTEM_END_TAG_UNEXPECTED, LOCATION_SERIALIZER_END_TAG);
    const Element& open = elements_.back();
    if (open.ns != ns || open.localName != localName) {
        const UnicodeString given =
            open.ns == ns ? RyXmlUtil::makeQNameStr(open.prefix.toString(), localName.toString())
                          : RyXmlUtil::makeNSQNameStr(ns.toString(), localName.toString());
        throwSystemError(
            SYSTEM_END_TAG_MISMATCH, LOCATION_SERIALIZER_END_TAG, given,
            RyXmlUtil::makeQNameStr(open.prefix.toString(), open.localName.toString()));
    }
    endElement();
    endContent();
}

void XmlSerializerImpl::endTag() {
    checkStream();
    endElement();
    endContent();
}

void XmlSerializerImpl::endElement() {
    if (isScopeOpen_) scopes_.closeScope();
    isScopeOpen_ = false;
    if (isTagPending()) {
        closeStartTag(true);
    } else {
        writer_.writeName("</", elements_.back().prefix, elements_.back().localName, ">");
    }
    elements_.pop_back();
    scopes_.closeScope();
    state_ = TAG_ENDED;
}

// Content.

void XmlSerializerImpl::beginContent() {
    closeStartTag();
}

// Outside of all elements the output is complete as it stands, so the stream gets it.
void XmlSerializerImpl::endContent() {
    if (elements_.empty()) writer_.drain();
}

unsigned XmlSerializerImpl::textEscapes() const {
    return conformant_ ? ESCAPE_MARKUP | ESCAPE_LINE_ENDS : ESCAPE_MARKUP;
}

// Readers turn white space in values into blanks, references excepted.
unsigned XmlSerializerImpl::valueEscapes() const {
    const unsigned plain = ESCAPE_MARKUP | ESCAPE_QUOTE;
    return conformant_ ? plain | ESCAPE_CONTROLS | ESCAPE_LINE_ENDS : plain;
}

void XmlSerializerImpl::text(const UnicodeString& text) {
    this->text(text.getBuffer(), 0, text.length());
}

void XmlSerializerImpl::text(const char16_t* buffer, int start, int length) {
    checkStream();
    const std::size_t count =
        buffer != nullptr && length > 0 ? static_cast<std::size_t>(length) : 0;
    const char16_t* const first = count > 0 ? buffer + start : nullptr;
    if (conformant_) requireWellFormed(isCharacterData(first, count));
    beginContent();
    writer_.write(first, count, textEscapes());
    state_ = TEXT_WRITTEN;
    endContent();
}

void XmlSerializerImpl::text(const RyCompactText& text) {
    if (conformant_) return this->text(text.toString());
    checkStream();
    beginContent();
    writer_.write(text, CharacterWriter::TEXT_ESCAPES);
    state_ = TEXT_WRITTEN;
    endContent();
}

void XmlSerializerImpl::cdsect(const UnicodeString& text) {
    checkStream();
    if (conformant_) {
        requireWellFormed(isCharacterData(text));
        // What a section cannot hold is the same text outside of one.
        const bool fits = text.indexOf(u"]]>", 3, 0) < 0 && text.indexOf(u'\r') < 0 &&
                          text.indexOf(u'\u0085') < 0 && text.indexOf(u'\u2028') < 0 &&
                          writer_.canEncode(text);
        if (!fits) return this->text(text);
    }
    beginContent();
    writeMarkup("<![CDATA[", text, "]]>");
    endContent();
}

void XmlSerializerImpl::entityRef(const UnicodeString& name) {
    checkStream();
    if (conformant_) requireWellFormed(isNcName(name) && writer_.canEncode(name));
    beginContent();
    writeMarkup("&", name, ";");
    endContent();
}

void XmlSerializerImpl::processingInstruction(const UnicodeString& text) {
    checkStream();
    if (conformant_)
        requireWellFormed(isProcessingInstructionText(text) && writer_.canEncode(text));
    beginContent();
    // This library's own parser asks for white space after a target, even where nothing follows.
    const bool bare = conformant_ && isNcName(text);
    writeMarkup("<?", text, bare ? " ?>" : "?>");
    endContent();
}

void XmlSerializerImpl::comment(const UnicodeString& text) {
    checkStream();
    if (conformant_) requireWellFormed(isCommentText(text) && writer_.canEncode(text));
    beginContent();
    writeMarkup("<!--", text, "-->");
    endContent();
}

void XmlSerializerImpl::ignorableWhitespace(const UnicodeString& text) {
    checkStream();
    if (conformant_) requireWellFormed(isWhiteSpace(text));
    beginContent();
    writer_.write(text, ESCAPE_NONE);
    endContent();
}

// Pieces.

void XmlSerializerImpl::writeMarkup(std::string_view before, const UnicodeString& text,
                                    std::string_view after) {
    writer_.writeAscii(before);
    writer_.write(text, ESCAPE_NONE);
    writer_.writeAscii(after);
}

void XmlSerializerImpl::writeAttribute(RyName prefix, RyName localName,
                                       const UnicodeString& value) {
    writer_.writeName(" ", prefix, localName, "=\"");
    writer_.write(value, valueEscapes());
    writer_.writeAscii("\"");
}

// What conformant output refuses.

void XmlSerializerImpl::checkElementName(RyName ns, RyName prefix, RyName localName) const {
    const bool named = isNcName(localName.toString()) && writer_.canEncode(localName.toString());
    requireWellFormed(named && ns != RN_NS_xmlns && prefix != RN_xmlns);
    if (ns.isEmpty())
        requireWellFormed(prefix.isEmpty());
    else
        checkDeclaration(prefix, ns, LOCATION_NONE);
}

void XmlSerializerImpl::checkAttribute(RyName ns, RyName prefix, RyName localName,
                                       const UnicodeString& value) const {
    const UnicodeString& name = localName.toString();
    const bool named = isNcName(name) || (ns.isEmpty() && isXmlAttributeName(name));
    requireWellFormed(named && writer_.canEncode(name), LOCATION_SERIALIZER_ATTRIBUTE);
    requireWellFormed(isCharacterData(value), LOCATION_SERIALIZER_ATTRIBUTE);
    requireWellFormed(!attributeNames_.contains(ns, localName), LOCATION_SERIALIZER_ATTRIBUTE);
    if (ns.isEmpty())
        requireWellFormed(prefix.isEmpty(), LOCATION_SERIALIZER_ATTRIBUTE);
    else
        checkDeclaration(prefix, ns, LOCATION_SERIALIZER_ATTRIBUTE);
}

// The constraints of Namespaces in XML 1.0 on a binding, wherever it comes from.
void XmlSerializerImpl::checkDeclaration(RyName prefix, RyName ns, int location) const {
    if (prefix == RN_xml || ns == RN_NS_xml) {
        // Never written; anything but the one binding there is would be lost or wrong.
        requireWellFormed(ns == RN_NS_xml && (prefix == RN_xml || prefix.isEmpty()), location);
        return;
    }
    const UnicodeString& text = prefix.toString();
    requireWellFormed(prefix.isEmpty() || (isNcName(text) && writer_.canEncode(text)), location);
    requireWellFormed(prefix.isEmpty() || !ns.isEmpty(), location);
    requireWellFormed(prefix != RN_xmlns && ns != RN_NS_xmlns && isCharacterData(ns.toString()),
                      location);
}

// Queries.

RyName XmlSerializerImpl::getNamespace() const {
    return elements_.empty() ? RyName() : elements_.back().ns;
}

RyName XmlSerializerImpl::getName() const {
    return elements_.empty() ? RyName() : elements_.back().localName;
}

// Outside of a pending tag, a new prefix is declared on the next one.
RyName XmlSerializerImpl::getPrefix(RyName ns, bool generate) {
    if (ns.isEmpty()) return RyName();
    if (const std::optional<RyName> found = scopes_.findPrefix(ns)) return *found;
    if (!generate) return RyName();
    checkStream();
    if (!isTagPending()) openScope();
    return scopes_.declareGenerated(ns);
}

}  // namespace RynCommon
