// The serializer: order of calls, open elements, what is written when.
#pragma once

#include <string_view>
#include <vector>

#include <RynCommon/RyUri.h>
#include <RynCommon/RyXmlSerializer.h>

#include "xml/serializer/AttributeNames.h"
#include "xml/serializer/CharacterWriter.h"
#include "xml/serializer/NamespaceScopes.h"

namespace RynCommon {

/// The one implementation of RyXmlSerializer. A call first looks at the output, then at its own
/// conditions; only when all of them hold does it change or write anything.
class XmlSerializerImpl final : public RyXmlSerializer {
public:
    XmlSerializerImpl() { elements_.reserve(16); }
    ~XmlSerializerImpl() override;
    XmlSerializerImpl(const XmlSerializerImpl&) = delete;
    XmlSerializerImpl& operator=(const XmlSerializerImpl&) = delete;

    static unsigned int getStaticTypeID() { return 0x5695E1FBu; }
    unsigned int getTypeID() const override { return getStaticTypeID(); }
    bool isA(unsigned int id) const override;
    UnicodeString getTypeName() const override { return u"XmlSerializerImpl"; }

    void setConformant(bool on) override;
    bool isConformant() const override { return conformant_; }

    void setOutput(std::ostream* out, const UnicodeString& encoding) override;
    void setOutput(const UnicodeString& uri, const UnicodeString& encoding) override;
    void startDocument(const UnicodeString& encoding, const UnicodeString& standalone) override;
    void docdecl(const UnicodeString& text) override;
    void setPrefix(RyName prefix, RyName ns) override;
    void startTag(RyName ns, RyName prefix, RyName localName, bool generatePrefix) override;
    void attribute(RyName ns, RyName localName, const UnicodeString& value) override;
    void attribute(RyName ns, RyName prefix, RyName localName, const UnicodeString& value) override;
    void text(const UnicodeString& text) override;
    void text(const char16_t* buffer, int start, int length) override;
    /// As the same with the text's string.
    void text(const RyCompactText& text);
    void attribute(RyName ns, RyName prefix, RyName localName, const RyCompactText& value);
    /// Ends the innermost element, which is open.
    void endTag();
    void cdsect(const UnicodeString& text) override;
    void entityRef(const UnicodeString& name) override;
    void processingInstruction(const UnicodeString& text) override;
    void comment(const UnicodeString& text) override;
    void ignorableWhitespace(const UnicodeString& text) override;
    void endTag(RyName ns, RyName localName) override;
    void endDocument() override;
    void flush() override;

    int getDepth() const override { return static_cast<int>(elements_.size()); }
    RyName getNamespace() const override;
    RyName getName() const override;
    RyName getPrefix(RyName ns, bool generate) override;

private:
    /// Ordered as they come in a document where the order matters to nobody; the numbers are fixed.
    enum State {
        NEW = 0,
        OUTPUT_SET = 1,
        DOCUMENT_STARTED = 2,
        DOCUMENT_ENDED = 3,
        NO_OUTPUT = 4,
        PREFIXES_SET = 5,
        TAG_OPEN = 6,
        TAG_WITH_ATTRIBUTES = 7,
        TAG_CLOSED = 8,
        TAG_ENDED = 9,
        EMPTY_TAG_CLOSED = 10,
        TEXT_WRITTEN = 11
    };
    struct Element {
        RyName ns;
        RyName prefix;
        RyName localName;
    };

    // Output.
    void start(std::ostream* out, const UnicodeString& encoding);
    void dropOutput(bool drain);
    void leaveDocument();
    void checkStream() const;
    void requireWellFormed(bool condition, int location = -1) const;

    // Pieces of markup.
    bool isTagPending() const { return state_ == TAG_OPEN || state_ == TAG_WITH_ATTRIBUTES; }
    void closeStartTag(bool empty = false);
    void beginContent();
    void endContent();
    void writeDeclarations();
    void writeAttribute(RyName prefix, RyName localName, const UnicodeString& value);
    void requireTagPending() const;
    void writeMarkup(std::string_view before, const UnicodeString& text, std::string_view after);
    void endElement();
    unsigned textEscapes() const;
    unsigned valueEscapes() const;

    // Names.
    void openScope();
    RyName claimElementPrefix(RyName ns, RyName prefix, bool generate);
    void declareByAttribute(RyName localName, RyName ns);
    void attributeSub(RyName ns, RyName prefix, RyName localName, const UnicodeString& value);
    void checkElementName(RyName ns, RyName prefix, RyName localName) const;
    void checkAttribute(RyName ns, RyName prefix, RyName localName,
                        const UnicodeString& value) const;
    void checkDeclaration(RyName prefix, RyName ns, int location) const;

    // The XML declaration.
    UnicodeString takeDeclaredEncoding();

    State state_ = NEW;
    bool conformant_ = false;
    bool isScopeOpen_ = false;  // the next start tag's scope is there already
    std::ostream* out_ = nullptr;
    std::ostream* ownOut_ = nullptr;  // out_ when it was opened here
    RyUri files_;                     // opens and closes ownOut_
    UnicodeString encoding_;
    CharacterWriter writer_;
    NamespaceScopes scopes_;
    std::vector<Element> elements_;
    AttributeNames attributeNames_;  // of the pending tag, in conformant output
};

}  // namespace RynCommon
