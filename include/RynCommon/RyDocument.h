// The document: owner and factory of nodes, loading and saving.
#pragma once

#include <istream>
#include <memory>
#include <ostream>

#include <RynCommon/RyElement.h>
#include <RynCommon/RyNode.h>
#include <RynCommon/RyTextNode.h>
#include <RynCommon/RyXmlParser.h>
#include <RynCommon/RyXmlSerializer.h>

namespace RynCommon {

/// A fragment: nodes without a document around them. Saving writes its children.
class RYNCOMMON_API RyDocumentFragment : public RyNode {
public:
    ~RyDocumentFragment() override;

    static unsigned int getStaticTypeID() { return 0x319C59B1u; }
    unsigned int getTypeID() const override;
    bool isA(unsigned int id) const override;
    UnicodeString getTypeName() const override;
    RyNodeType getNodeType() const override { return DOCUMENT_FRAGMENT_NODE; }
    RyName getNodeName() const override { return RN_hash_document_fragment; }
    RyPtr<RyNode> cloneNode(bool deep) const override;

protected:
    friend class RyDocument;
    explicit RyDocumentFragment(RyDocument* owner);
};

/// A document: the root of a tree, the factory of its nodes, and the way in and out of XML text.
/// Must outlive its nodes; like every counted object it lives on the heap, held by RyPtr.
///
/// In pull mode load() returns at once and the tree grows as callers navigate into it.
/// loadNextNode() takes a lock of the document, so that two threads reading one lazily loaded tree
/// do not mix up its events; nothing else is synchronised. An error of the parser ends loading and
/// keeps the tree as far as it was read.
class RYNCOMMON_API RyDocument : public RyNode {
public:
    RyDocument();
    ~RyDocument() override;

    static unsigned int getStaticTypeID() { return 0xF6B431AFu; }
    unsigned int getTypeID() const override;
    bool isA(unsigned int id) const override;
    UnicodeString getTypeName() const override;
    RyNodeType getNodeType() const override { return DOCUMENT_NODE; }
    RyName getNodeName() const override { return RN_hash_document; }
    /// A new document with copies of the children when `deep`.
    RyPtr<RyNode> cloneNode(bool deep) const override;

    // Factory.
    virtual RyPtr<RyElement> createElement(RyName name);
    virtual RyPtr<RyElement> createElementNS(RyName uri, RyName qname);
    virtual RyPtr<RyElement> createElementNS(RyName uri, RyName prefix, RyName local);
    virtual RyPtr<RyAttr> createAttribute(RyName name);
    virtual RyPtr<RyAttr> createAttributeNS(RyName uri, RyName qname);
    virtual RyPtr<RyAttr> createAttributeNS(RyName uri, RyName prefix, RyName local);
    virtual RyPtr<RyTextNode> createTextNode(const UnicodeString& text);
    virtual RyPtr<RyPINode> createProcessingInstruction(const UnicodeString& content);
    virtual RyPtr<RyDocumentFragment> createDocumentFragment();
    /// The node that stands for a text under `parent`: a text node here; documents of formatters
    /// may wrap it.
    virtual RyPtr<RyNode> createTextNodeElement(const UnicodeString& text, RyNode* parent);
    /// First child that is an element, or null.
    RyElement* getDocumentElement() const;

    // Parser and serializer; made on first use. A load that has begun keeps its parser when another
    // is set. Loads have the features and limits of the parser: getParser()->setLimits().
    RyXmlParser* getParser();
    void setParser(RyXmlParser* parser);
    RyXmlSerializer* getSerializer();
    void setSerializer(RyXmlSerializer* serializer);

    const UnicodeString& getDocumentUri() const;
    /// The base set, else the document's URI.
    const UnicodeString& getBaseUri() const;
    /// An empty text takes the base away again.
    void setBaseUri(const UnicodeString& uri);
    bool isBaseUriSpecified() const;

    // Loading into `parent`, whose children are removed first, or into the document when it is
    // null. Loading into the document sets its URI: to that given, or to the empty text. A load
    // that has not ended is stopped by the next; one begun from within itself, as by a factory, is
    // error 2059.
    bool getPullMode() const;
    void setPullMode(bool on);
    void load(const UnicodeString& uri, RyNode* parent = nullptr);
    /// In pull mode `in` must live until loading has ended.
    void load(std::istream& in, RyNode* parent = nullptr);
    /// Starts loading the document from the parser as it stands: for callers that gave it its
    /// input, or went some way into it. A start tag that the parser stands at is loaded, too. The
    /// document's URI stays.
    void load();
    /// A leading U+FEFF is taken off. The text need not outlive the call.
    void loadXml(const UnicodeString& xmlText, RyNode* parent = nullptr);
    /// Reads until one node has been added and returns it; null when the document is complete,
    /// loading was stopped, or for a call from within itself.
    RyNode* loadNextNode();
    /// The node under which the next one comes, null when nothing is loading.
    RyNode* getLastLoadingNode() const;
    /// Stops lazy loading; the tree stays as far as it was read. The parser keeps its input.
    void abort();

    // Saving; a null node is the whole document. Without an encoding none is declared and UTF-8 is
    // written. Any error drops the serializer and passes on. An attribute with a compound value is
    // written as one attribute an entry, "name.entry". Namespace declarations are written behind
    // the other attributes of their tag.
    void save(const UnicodeString& uri, RyNode* node = nullptr);
    void save(const UnicodeString& uri, RyNode* node, const UnicodeString& encoding);
    /// `docdecl`: text of a document type declaration, written when not empty.
    void save(const UnicodeString& uri, RyNode* node, const UnicodeString& encoding,
              const UnicodeString& docdecl);
    void save(std::ostream& out, RyNode* node, const UnicodeString& encoding);
    void save(std::ostream& out, RyNode* node, const UnicodeString& encoding,
              const UnicodeString& docdecl);
    /// With an encoding and a standalone text ("yes", "no" or empty) for the XML declaration.
    void save(const UnicodeString& declaredEncoding, const UnicodeString& standalone,
              std::ostream& out, RyNode* node, const UnicodeString& encoding);
    /// The XML text as a string. loadXml() takes it back.
    UnicodeString saveXml(RyNode* node = nullptr);

    // Saving piece by piece: the document element's start tag, then its children as they come, then
    // its end.
    /// Starts the output and writes the document element's start tag, left open. Error 2051 without
    /// such an element.
    void saveDocumentElement(const UnicodeString& uri);
    void saveDocumentElement(std::ostream& out);
    /// Writes `child` and all below it into the open document element.
    void saveChildElement(RyNode* child);
    /// Ends the document element and the output of saveDocumentElement().
    void closeDocumentElement();

protected:
    /// Writes `node` and all below it.
    virtual void doSave(RyXmlSerializer& serializer, RyNode* node);

private:
    friend class Loader;
    struct Rep;
    struct SaveOptions;
    template <class Output>
    void saveTo(Output&& output, RyNode* node, const SaveOptions& options);
    template <class Output>
    void startSaving(Output&& output);
    std::unique_ptr<Rep> rep_;
};

}  // namespace RynCommon
