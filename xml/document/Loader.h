// Turns the events of a parser into the nodes of a document, all at once or as far as asked.
//
// The loader keeps the nodes that are open, from the target of the load down to the innermost
// element, and holds a reference on each (the document excepted, which would hold itself). It puts
// what comes under the innermost and never looks at parent links, so that callers may move or
// remove any node meanwhile, also an open one, which then goes on growing where it is.
//
// One lock guards all of it. The thread that holds it may come back from within, through an
// override of a document or element class, an error callback or a resolver hook; it then finds the
// tree as it stands: nothing is read, and a wish to stop is kept until the event is done.
#pragma once

#include <RynCommon/RyDocument.h>
#include <RynCommon/RyLock.h>

#include <functional>
#include <memory>
#include <vector>

#include "xml/document/UnitsStream.h"

namespace RynCommon {

class XmlParserImpl;

class Loader {
public:
    explicit Loader(RyDocument& document) : document_(document) {}
    ~Loader();
    Loader(const Loader&) = delete;
    Loader& operator=(const Loader&) = delete;

    using Known = bool (*)(const RyNode&);
    /// Has the document of `node` read on until `isKnown(node)`, or until nothing is loading.
    static void loadUntil(const RyNode& node, Known isKnown);

    using SetInput = std::function<void(RyXmlParser&)>;
    /// Starts a load into `target`, with a parser that `setInput` gives its input; reads it all
    /// unless `pull`.
    void load(RyNode& target, bool pull, const SetInput& setInput);
    /// The same with a text.
    void loadText(RyNode& target, bool pull, const UnicodeString& text,
                  const UnicodeString& baseUri);
    /// The same with the parser's present input; the event it stands at counts if it is a start
    /// tag.
    void loadPresent(RyNode& target, bool pull);

    RyNode* loadNextNode();
    RyNode* lastLoadingNode();
    void abort();

private:
    class Reading;
    class PlainBuilder;

    void begin(RyNode& target);
    void readOn(bool pull);
    void requireNotReading() const;

    template <class Done>
    void read(Done isDone);
    /// Takes one event; the node that it added, if any.
    RyNode* takeEvent();
    RyNode* takePlainEvent();
    RyNode* takeAnyEvent();
    RyXmlParser::EventType nextEvent();
    RyNode* startPlainElement();
    RyNode* startElement();
    void fillElement(RyElement& element) const;
    void endElement();

    enum class Ending { COMPLETE, STOPPED };
    void end(Ending ending);
    void closeInnermost(Ending ending);
    void fail();
    void releaseBuffers();
    void dropText();

    RyDocument& document_;
    RyLock lock_;
    RyPtr<RyXmlParser> parser_;          // of the load that is on, or was last
    XmlParserImpl* plain_ = nullptr;     // the same where the short way serves, see PlainTree
    std::unique_ptr<UnitsStream> text_;  // its input when that is a text
    std::vector<RyNode*> open_;          // outermost first; empty when nothing is loading
    bool isEager_ = false;               // nobody waits for single nodes
    int skipDepth_ = 0;                  // of the element whose content is discarded, or 0
    bool standsAtEvent_ = false;         // the parser's present event has still to be taken
    bool reading_ = false;
    bool stop_ = false;  // asked for while reading
};

}  // namespace RynCommon
