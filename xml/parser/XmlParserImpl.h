// The pull parser: turns what the scanner reads into events.
#pragma once

#include <cstddef>
#include <memory>

#include <RynCommon/RyXmlParser.h>

#include "xml/parser/AttributeDefaults.h"
#include "xml/parser/AttributeList.h"
#include "xml/parser/NamespaceManager.h"
#include "xml/parser/ParserCore.h"

namespace RynCommon {

/// The library's own parser. An event without references in it allocates nothing once buffers have
/// grown.
class XmlParserImpl final : public RyXmlParser, private ParserCore::WindowUser {
public:
    XmlParserImpl();
    ~XmlParserImpl() override;

    static unsigned int getStaticTypeID() { return 0x7B21C9E4u; }
    unsigned int getTypeID() const override { return getStaticTypeID(); }
    bool isA(unsigned int id) const override;
    UnicodeString getTypeName() const override;

    void setFeature(Feature feature, bool on) override;
    bool getFeature(Feature feature) const override;
    void setStreamType(const UnicodeString& type, const UnicodeString& charset) override;
    void setCallbackError(ErrorCallback callback, void* user) override;
    void setInput(const UnicodeString& uri, const UnicodeString& encoding,
                  const UnicodeString& baseUri) override;
    void setInput(std::istream& in, const UnicodeString& encoding,
                  const UnicodeString& baseUri) override;
    void closeStream() override;
    const UnicodeString& getInputEncoding() const override;
    void defineEntityReplacementText(RyName name, const UnicodeString& text) override;
    int getNamespaceCount(int depth) const override;
    RyName getNamespacePrefix(int index) const override;
    RyName getNamespaceUri(int index) const override;
    RyName getNamespace() const override;
    RyName getNamespace(RyName prefix) const override;
    int getDepth() const override;
    UnicodeString getPositionDescription() const override;
    int getLineNumber() const override;
    int getColumnNumber() const override;
    bool isWhitespace() const override;
    const UnicodeString& getText() const override;
    RyName getName() const override;
    RyName getPrefix() const override;
    bool isEmptyElementTag() const override;
    int getAttributeCount() const override;
    RyName getAttributeNamespace(int index) const override;
    RyName getAttributeName(int index) const override;
    RyName getAttributePrefix(int index) const override;
    const UnicodeString& getAttributeValue(RyName ns, RyName name) const override;
    const UnicodeString& getAttributeValue(int index) const override;
    EventType getEventType() const override;
    EventType next() override;
    EventType nextToken() override;
    const UnicodeString& getBaseUri() const override;
    void addMathMLEntityMap() override;
    void setLimits(const RyXmlLimits& limits) override;
    const RyXmlLimits& getLimits() const override;
    void releaseBuffers() override;

    // The event's parts where they are, for the loader.
    const NamespaceManager::Element& openElement() const { return namespaces_.top(); }
    const AttributeList& attributes() const { return attributes_; }
    Scanner::Position position() const { return core_.scanner.position(); }
    std::u16string_view textUnits() const {
        if (hasPlainText()) return plain_;
        return text_.units();
    }

private:
    template <class Builder>
    friend class PlainContent;

    /// What the characters at the reading point begin; for all but TEXT and END they have been
    /// read.
    enum class Token : std::uint8_t {
        NONE,  // not looked at yet
        START_TAG,
        END_TAG,
        TEXT,
        REFERENCE,
        INSTRUCTION,
        MARKUP,
        END
    };

    // Events (XmlParserImpl.cpp).
    template <class Read>
    EventType guarded(Read read);
    bool prepare();
    bool enterPlainContent();
    void start();
    void openInput(const UnicodeString& uri, const UnicodeString& encoding,
                   const UnicodeString& baseUri);
    void checkStream();
    Token peekToken() {
        if (token_ != Token::NONE) return token_;
        // Nearly always the window tells.
        Scanner& in = scanner();
        const char16_t* const begin = in.cursor();
        if (in.limit() - begin < 2) return peekAnyToken();
        if (*begin != u'<' && *begin != u'&') {
            in.look(begin + 1);
            return token_ = Token::TEXT;
        }
        const char16_t kind = begin[1];
        if (*begin == u'&' || kind == u'!' || kind == u'?') return peekAnyToken();
        in.look(begin + 2);
        in.moveTo(kind == u'/' ? begin + 2 : begin + 1);
        return token_ = kind == u'/' ? Token::END_TAG : Token::START_TAG;
    }
    Token peekAnyToken();
    Token takeToken();
    bool takeTagStart();
    EventType mergedEvent();
    EventType singleEvent();
    bool readToken(Token token);
    void readEnd();
    void resetDocument();

    void windowLeaves() override;
    bool hasPlainText() const { return plain_.data() != nullptr; }
    void dropPlainText() { plain_ = {}; }

    // Content (Content.cpp).
    void readText();
    void readTopLevelText();
    void readTextOrSpace();
    bool readReference(bool expand);
    bool readInstruction(TextBuffer* sink);
    bool readMarkup(TextBuffer* sink);
    bool readCdata();
    void readClosingBrackets();
    void topLevelError(const UnicodeString& text);

    // Tags (Tags.cpp).
    void readStartTag();
    bool readEndTag();
    bool readOtherEndTag(const CachedName& expected);
    /// Whether the window has room for the name and a delimiter.
    bool isInWindow(const CachedName& name) const {
        return scanner().limit() - scanner().cursor() > static_cast<std::ptrdiff_t>(name.length);
    }
    /// The name that came behind the last one before, when it stands at the reading point again.
    const CachedName* guessElementName() const {
        const CachedName* const guess = lastName_->successor;
        if (guess == nullptr || !isInWindow(*guess)) return nullptr;
        const char16_t* const begin = scanner().cursor();
        const char16_t behind = begin[guess->length];
        const bool isEnd = behind == u'>' || behind == u' ' || behind == u'/';
        const bool isIt =
            isEnd && equalUnits(begin, guess->text, guess->length) && core_.allows(*guess);
        return isIt ? guess : nullptr;
    }
    const CachedName& readElementName();
    const CachedName& readNewElementName();
    bool readPlainAttributes();
    void readAttributes();
    void readAttribute();
    void finishAttribute(const ParsedAttribute& attribute);
    ParsedAttribute& addAttribute(RyName prefix, RyName local) {
        if (attributes_.size() >= core_.limits.attributes) core_.exceedLimit();
        return attributes_.add(prefix, local);
    }
    void readBadAttributeName(const Scanner::Name& name);
    void applyDefaults(const CachedName& element);
    void addDefault(const AttributeDeclaration& declaration);
    void bindBuiltinVocabulary(const CachedName& root);
    void bindVocabulary(RyName ns);
    void resolveNamespaces();
    void resolveAttributes();
    void reportDuplicates();
    void skipToTagEnd();

    // Document type (DoctypeEvent.cpp).
    void readDoctype();
    void readExternalSubset(const UnicodeString& systemId);
    EntityTable readSubsetOf(const UnicodeString& uri);

    const ParsedAttribute& attributeAt(int index, int location) const;
    Scanner& scanner() const { return core_.scanner; }

    mutable ParserCore core_;  // positions are counted when they are asked for
    CachedName noName_{u"", 0, RyName(), RyName(), -1};
    const CachedName* lastName_ = &noName_;  // of the start tag before
    NamespaceManager namespaces_;
    AttributeList attributes_;
    AttributeDefaults defaults_;
    TextBuffer text_;              // gathered from several places
    std::u16string_view plain_;    // a text that stands in the window as it is; else without data
    mutable UnicodeString alias_;  // shows the units of the text
    RyName entityName_;
    Token token_ = Token::NONE;
    bool isPrepared_ = false;  // the event before has been left behind
    bool started_ = false;
    bool failed_ = false;
    bool declarationSeen_ = false;
    bool rootSeen_ = false;
    bool doctypeSeen_ = false;
    bool emptyTag_ = false;
    bool hasQualifiedAttribute_ = false;  // one with a prefix, or "xmlns"
    UnicodeString streamType_;
    UnicodeString charset_;
};

}  // namespace RynCommon
