// Our own rows: the pull parser and the document tree, both fed through a std::istream over the
// memory block.
#include <RynCommon/RyDocument.h>
#include <RynCommon/RyError.h>
#include <RynCommon/RyXmlUtil.h>

#include <istream>
#include <ostream>
#include <stdexcept>
#include <streambuf>

#include "xmlbench.hpp"

namespace {

using namespace RynCommon;

/// A block of memory as a stream: all of it is ready at once, nothing is copied.
class BlockBuffer : public std::streambuf {
public:
    explicit BlockBuffer(const xb::Doc& doc) {
        char* begin = const_cast<char*>(doc.data);
        setg(begin, begin, begin + doc.size);
    }
};

class BlockStream : private BlockBuffer, public std::istream {
public:
    explicit BlockStream(const xb::Doc& doc)
        : BlockBuffer(doc), std::istream(static_cast<BlockBuffer*>(this)) {}
};

/// Counts what a document is saved as, after holding it in memory once, as an application would.
class MemoryBuffer : public std::streambuf {
public:
    std::size_t size() const { return bytes_.size(); }

protected:
    std::streamsize xsputn(const char* data, std::streamsize count) override {
        bytes_.append(data, static_cast<std::size_t>(count));
        return count;
    }
    int_type overflow(int_type unit) override {
        if (!traits_type::eq_int_type(unit, traits_type::eof()))
            bytes_.push_back(traits_type::to_char_type(unit));
        return traits_type::not_eof(unit);
    }

private:
    std::string bytes_;
};

std::u16string_view view(const UnicodeString& text) {
    return {text.getBuffer(), static_cast<std::size_t>(text.length())};
}

std::u16string_view view(RyName name) {
    return view(name.toString());
}

/// The harness reports standard exceptions.
[[noreturn]] void rethrow(const RyError& error) {
    std::string message;
    error.getMessage().toUTF8String(message);
    throw std::runtime_error(message);
}

template <class Sink>
void deliverEvents(RyXmlParser& parser, Sink& sink) {
    for (;;) {
        switch (parser.next()) {
            case RyXmlParser::START_TAG: {
                sink.start(view(parser.getNamespace()), view(parser.getName()));
                const int count = parser.getAttributeCount();
                for (int i = 0; i < count; ++i) {
                    const RyName ns = parser.getAttributeNamespace(i);
                    if (ns == RN_NS_xmlns) continue;
                    sink.attr(view(ns), view(parser.getAttributeName(i)),
                              view(parser.getAttributeValue(i)));
                }
                break;
            }
            case RyXmlParser::END_TAG:
                sink.end();
                break;
            case RyXmlParser::TEXT:
                sink.text(view(parser.getText()));
                break;
            case RyXmlParser::END_DOCUMENT:
                return;
            default:
                break;
        }
    }
}

template <bool Reuse>
struct Events : xb::EventAdapter<Events<Reuse>> {
    RyPtr<RyXmlParser> kept;

    const char* name() const override { return Reuse ? "ryn-events-reuse" : "ryn-events"; }
    const char* what() const override {
        return Reuse ? "as ryn-events, one parser kept for all documents"
                     : "RynCommon RyXmlParser::next, from a std::istream over the memory block, a "
                       "new parser per document";
    }
    template <class Sink>
    void parseDoc(const xb::Doc& doc, const xb::Input&, Sink& sink) try {
        BlockStream in(doc);
        RyPtr<RyXmlParser> parser = kept ? kept : RyXmlUtil::createXmlParser();
        if (Reuse) kept = parser;
        parser->setInput(in, UnicodeString(), UnicodeString());
        deliverEvents(*parser, sink);
    } catch (const RyError& error) {
        rethrow(error);
    }
};

/// Hands a tree out in document order, without recursion and without triggering loading.
template <class Sink>
class Walk {
public:
    explicit Walk(Sink& sink) : sink_(sink) {}

    void run(const RyNode& root) {
        const RyNode* node = root.getFirstChildFast();
        while (node != nullptr) {
            const bool element = enter(*node);
            if (element && node->hasChildNodesFast()) {
                node = node->getFirstChildFast();
                continue;
            }
            if (element) sink_.end();
            node = following(*node, root);
        }
    }

private:
    /// Whether the node is an element.
    bool enter(const RyNode& node) {
        switch (node.getNodeType()) {
            case RyNode::ELEMENT_NODE:
                enterElement(static_cast<const RyElement&>(node));
                return true;
            case RyNode::TEXT_NODE:
                sink_.text(static_cast<const RyTextNode&>(node).readText(text_));
                return false;
            default:
                return false;
        }
    }

    void enterElement(const RyElement& element) {
        // The document is the library's own, so that its classes' answers need no virtual call.
        sink_.start(namespaceText(element.RyElement::getNamespaceUri()),
                    view(element.RyElement::getLocalName()));
        for (const RyAttr* attr = element.getFirstAttribute(); attr != nullptr;
             attr = attr->getNextAttribute()) {
            const RyName ns = attr->RyAttr::getNamespaceUri();
            if (ns == RN_NS_xmlns) continue;
            sink_.attr(namespaceText(ns), view(attr->RyAttr::getLocalName()),
                       attr->readText(text_));
        }
    }

    /// Names compare by number: the namespace of most nodes is none or that of the node before.
    std::u16string_view namespaceText(RyName ns) {
        if (ns.isEmpty()) return {};
        if (ns != namespace_) {
            namespace_ = ns;
            namespaceText_ = view(ns);
        }
        return namespaceText_;
    }

    const RyNode* following(const RyNode& from, const RyNode& root) {
        const RyNode* node = &from;
        for (;;) {
            if (const RyNode* next = node->getNextSiblingFast()) return next;
            node = node->getParentNodeFast();
            if (node == nullptr || node == &root) return nullptr;
            sink_.end();
        }
    }

    Sink& sink_;
    RyTextBuffer text_;  // reused for every text and value
    RyName namespace_;
    std::u16string_view namespaceText_;
};

struct Tree : xb::TreeAdapter<Tree, RyPtr<RyDocument>> {
    const char* name() const override { return "ryn-dom"; }
    const char* what() const override {
        return "RynCommon RyDocument, eager load from a std::istream over the memory block; save: "
               "RyDocument::save to a std::ostream, UTF-8";
    }
    RyPtr<RyDocument> loadDoc(const xb::Doc& doc, const xb::Input&) try {
        BlockStream in(doc);
        RyPtr<RyDocument> document(new RyDocument);
        document->load(in);
        return document;
    } catch (const RyError& error) {
        rethrow(error);
    }
    template <class Sink>
    void walkDoc(const RyPtr<RyDocument>& document, Sink& sink) {
        Walk<Sink>(sink).run(*document);
    }
    std::size_t saveDoc(const RyPtr<RyDocument>& document) try {
        MemoryBuffer buffer;
        std::ostream out(&buffer);
        document->save(out, nullptr, "UTF-8");
        return buffer.size();
    } catch (const RyError& error) {
        rethrow(error);
    }
};

}  // namespace

XB_MODULE(registry) {
    registry.add(std::make_unique<Events<false>>());
    registry.add(std::make_unique<Events<true>>());
    registry.add(std::make_unique<Tree>());
}
