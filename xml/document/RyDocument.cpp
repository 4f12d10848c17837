// The document: what it holds, and its way in and out of XML text.
#include <RynCommon/RyDocument.h>
#include <RynCommon/RyXmlUtil.h>

#include <limits>
#include <new>
#include <sstream>
#include <string_view>

#include "core/ErrorLocations.h"
#include "core/MemoryCheck.h"
#include "xml/document/DocumentRep.h"
#include "xml/document/Saver.h"
#include "xml/tree/NodeCloner.h"

namespace RynCommon {

RyDocument::RyDocument() : RyNode(nullptr), rep_(std::make_unique<Rep>(*this)) {}

RyDocument::~RyDocument() = default;

unsigned int RyDocument::getTypeID() const {
    return getStaticTypeID();
}

bool RyDocument::isA(unsigned int id) const {
    return id == RyDocument::getStaticTypeID() || RyNode::isA(id);
}

UnicodeString RyDocument::getTypeName() const {
    return u"RyDocument";
}

RyPtr<RyNode> RyDocument::cloneNode(bool deep) const {
    RyPtr<RyDocument> copy = new RyDocument;
    copy->rep_->documentUri = rep_->documentUri;
    copy->rep_->baseUri = rep_->baseUri;
    if (deep) NodeCloner::importChildren(*this, *copy, *copy);
    return RyPtr<RyNode>::adopt(copy.detach());
}

RyElement* RyDocument::getDocumentElement() const {
    RyNode* node = getFirstChild();
    while (node != nullptr && node->getNodeType() != ELEMENT_NODE) node = node->getNextSibling();
    return static_cast<RyElement*>(node);
}

RyXmlParser* RyDocument::getParser() {
    if (rep_->parser == nullptr) rep_->parser = RyXmlUtil::createXmlParser();
    return rep_->parser;
}

void RyDocument::setParser(RyXmlParser* parser) {
    rep_->parser = parser;
}

RyXmlSerializer* RyDocument::getSerializer() {
    if (rep_->serializer == nullptr) rep_->serializer = RyXmlUtil::createXmlSerializer();
    return rep_->serializer;
}

void RyDocument::setSerializer(RyXmlSerializer* serializer) {
    rep_->serializer = serializer;
}

const UnicodeString& RyDocument::getDocumentUri() const {
    return rep_->documentUri;
}

const UnicodeString& RyDocument::getBaseUri() const {
    return isBaseUriSpecified() ? rep_->baseUri : rep_->documentUri;
}

void RyDocument::setBaseUri(const UnicodeString& uri) {
    rep_->baseUri = uri;
}

bool RyDocument::isBaseUriSpecified() const {
    return !rep_->baseUri.isEmpty();
}

// Loading.

bool RyDocument::getPullMode() const {
    return rep_->pullMode;
}

void RyDocument::setPullMode(bool on) {
    rep_->pullMode = on;
}

void RyDocument::load(const UnicodeString& uri, RyNode* parent) {
    RyNode& target = rep_->targetOf(parent, *this, uri);
    // Without a base of its own the document is the base of what it refers to.
    rep_->loader.load(target, rep_->pullMode, [&](RyXmlParser& parser) {
        parser.setInput(uri, UnicodeString(), rep_->baseUri);
    });
}

void RyDocument::load(std::istream& in, RyNode* parent) {
    RyNode& target = rep_->targetOf(parent, *this, UnicodeString());
    rep_->loader.load(target, rep_->pullMode, [&](RyXmlParser& parser) {
        parser.setInput(in, UnicodeString(), getBaseUri());
    });
}

void RyDocument::load() {
    rep_->loader.loadPresent(*this, rep_->pullMode);
}

void RyDocument::loadXml(const UnicodeString& xmlText, RyNode* parent) {
    RyNode& target = rep_->targetOf(parent, *this, UnicodeString());
    rep_->loader.loadText(target, rep_->pullMode, xmlText, getBaseUri());
}

RyNode* RyDocument::loadNextNode() {
    return rep_->loader.loadNextNode();
}

RyNode* RyDocument::getLastLoadingNode() const {
    return rep_->loader.lastLoadingNode();
}

void RyDocument::abort() {
    rep_->loader.abort();
}

// Saving.

namespace {

/// Runs `save`; an error drops the document's serializer, whose state nobody knows then.
template <class Save>
void guardSerializer(RyDocument& document, Save save) {
    try {
        withMemoryError(u"RynCommon::RyDocument::save", [&] { save(*document.getSerializer()); });
    } catch (...) {
        document.setSerializer(nullptr);
        throw;
    }
}

UnicodeString decodeUtf8(std::string_view bytes) {
    if (bytes.size() > std::numeric_limits<std::int32_t>::max()) throw std::bad_alloc();
    return takeWhole(UnicodeString::fromUTF8(
        icu::StringPiece(bytes.data(), static_cast<std::int32_t>(bytes.size()))));
}

}  // namespace

template <class Output>
void RyDocument::saveTo(Output&& output, RyNode* node, const SaveOptions& options) {
    guardSerializer(*this, [&](RyXmlSerializer& serializer) {
        serializer.setOutput(output, options.encoding);
        serializer.startDocument(options.declaredEncoding, options.standalone);
        if (!options.docdecl.isEmpty()) serializer.docdecl(options.docdecl);
        doSave(serializer, node != nullptr ? node : this);
        serializer.endDocument();
    });
}

void RyDocument::save(const UnicodeString& uri, RyNode* node) {
    saveTo(uri, node, {});
}

void RyDocument::save(const UnicodeString& uri, RyNode* node, const UnicodeString& encoding) {
    saveTo(uri, node, {.encoding = encoding});
}

void RyDocument::save(const UnicodeString& uri, RyNode* node, const UnicodeString& encoding,
                      const UnicodeString& docdecl) {
    saveTo(uri, node, {.encoding = encoding, .docdecl = docdecl});
}

void RyDocument::save(std::ostream& out, RyNode* node, const UnicodeString& encoding) {
    saveTo(&out, node, {.encoding = encoding});
}

void RyDocument::save(std::ostream& out, RyNode* node, const UnicodeString& encoding,
                      const UnicodeString& docdecl) {
    saveTo(&out, node, {.encoding = encoding, .docdecl = docdecl});
}

void RyDocument::save(const UnicodeString& declaredEncoding, const UnicodeString& standalone,
                      std::ostream& out, RyNode* node, const UnicodeString& encoding) {
    saveTo(&out, node,
           {.encoding = encoding, .declaredEncoding = declaredEncoding, .standalone = standalone});
}

UnicodeString RyDocument::saveXml(RyNode* node) {
    return withMemoryError(u"RynCommon::RyDocument::save", [&] {
        std::ostringstream out;
        out.exceptions(std::ios::badbit);  // so that its lack of memory is not called a bad stream
        save(out, node, u"UTF-8");
        return decodeUtf8(out.view());
    });
}

template <class Output>
void RyDocument::startSaving(Output&& output) {
    guardSerializer(*this, [&](RyXmlSerializer& serializer) {
        serializer.setOutput(output, UnicodeString());
        serializer.startDocument(UnicodeString(), UnicodeString());
        const RyElement* const element = getDocumentElement();
        if (element == nullptr)
            throwSystemError(SYSTEM_ARG_IS_NULL, LOCATION_DOCUMENT_DO_SAVE, u"documentElement");
        Saver(serializer).startElement(*element);
    });
}

void RyDocument::saveDocumentElement(const UnicodeString& uri) {
    startSaving(uri);
}

void RyDocument::saveDocumentElement(std::ostream& out) {
    startSaving(&out);
}

void RyDocument::saveChildElement(RyNode* child) {
    guardSerializer(*this, [&](RyXmlSerializer& serializer) {
        if (child == nullptr)
            throwSystemError(SYSTEM_ARG_IS_NULL, LOCATION_DOCUMENT_DO_SAVE, u"child");
        doSave(serializer, child);
    });
}

void RyDocument::closeDocumentElement() {
    guardSerializer(*this, [](RyXmlSerializer& serializer) { serializer.endDocument(); });
}

void RyDocument::doSave(RyXmlSerializer& serializer, RyNode* node) {
    Saver(serializer).saveTree(*node);
}

}  // namespace RynCommon
