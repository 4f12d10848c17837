// Turns the events of a parser into the nodes of a document.
#include "xml/document/Loader.h"

#include <functional>
#include <typeinfo>

#include "core/ErrorLocations.h"
#include "core/MemoryCheck.h"
#include "xml/document/DocumentRep.h"
#include "xml/parser/PlainContent.h"
#include "xml/tree/PlainTree.h"

namespace RynCommon {

namespace {

constexpr char16_t SOURCE[] = u"RynCommon::RyDocument::load";

}  // namespace

/// Holds the lock, and marks the loader as reading where it was not.
class Loader::Reading {
public:
    explicit Reading(Loader& loader)
        : guard_(loader.lock_), loader_(loader), isNested_(loader.reading_) {
        loader.reading_ = true;
    }
    ~Reading() { loader_.reading_ = isNested_; }
    Reading(const Reading&) = delete;
    Reading& operator=(const Reading&) = delete;

    bool isNested() const { return isNested_; }

private:
    RyMutex guard_;
    Loader& loader_;
    bool isNested_;
};

/// Takes what PlainContent finds.
class Loader::PlainBuilder {
public:
    explicit PlainBuilder(Loader& loader)
        : loader_(loader), open_(loader.open_), before_(open_.size()) {}

    void startElement(const PlainTag& tag) {
        RyPtr<RyElement> element = PlainTree::makeElement(loader_.document_, tag);
        open_.push_back(element);
        PlainTree::append(*open_.end()[-2], *element.detach());
    }
    void text(std::u16string_view units, const char16_t* limit) {
        PlainTree::appendText(loader_.document_, *open_.back(),
                              CompactUnits::makeText(units, limit));
    }
    /// What ends the load is left to the loader.
    bool mayEndElement() const { return open_.size() > 1; }
    /// Nobody has seen an element yet that was opened here.
    void endElement() {
        if (open_.size() <= before_) {
            loader_.closeInnermost(Ending::COMPLETE);
            before_ = open_.size();
            return;
        }
        PlainTree::finish(*open_.back());
        open_.pop_back();
    }

private:
    Loader& loader_;
    std::vector<RyNode*>& open_;
    std::size_t before_;  // nodes that were open before
};

Loader::~Loader() {
    // Nodes that die now find that nothing more is to be read.
    reading_ = true;
    end(Ending::STOPPED);
    dropText();
}

void Loader::loadUntil(const RyNode& node, Known isKnown) {
    const RyDocument* document = node.getOwnerDocument();
    if (document == nullptr && node.getNodeType() == RyNode::DOCUMENT_NODE)
        document = static_cast<const RyDocument*>(&node);
    if (document == nullptr) return;
    document->rep_->loader.read([&](const RyNode*) { return isKnown(node); });
}

template <class Done>
void Loader::read(Done isDone) {
    const Reading reading(*this);
    if (reading.isNested()) return;
    try {
        const RyNode* added = nullptr;
        withMemoryError(SOURCE, [&] {
            while (!open_.empty() && !isDone(added)) added = takeEvent();
        });
    } catch (...) {
        fail();
        throw;
    }
}

RyNode* Loader::loadNextNode() {
    RyNode* result = nullptr;
    read([&](const RyNode* added) {
        result = const_cast<RyNode*>(added);
        return result != nullptr;
    });
    return result;
}

void Loader::load(RyNode& target, bool pull, const SetInput& setInput) {
    const RyMutex guard(lock_);
    requireNotReading();
    withMemoryError(SOURCE, [&] { begin(target); });
    dropText();
    {
        const Reading reading(*this);
        try {
            withMemoryError(SOURCE, [&] { setInput(*parser_); });
        } catch (...) {
            fail();
            throw;
        }
    }
    readOn(pull);
}

void Loader::loadText(RyNode& target, bool pull, const UnicodeString& text,
                      const UnicodeString& baseUri) {
    const bool hasMark = !text.isEmpty() && text[0] == u'\uFEFF';
    auto stream = withMemoryError(SOURCE, [&] {
        return std::make_unique<UnitsStream>(
            takeWhole(hasMark ? UnicodeString(text, 1) : UnicodeString(text)));
    });
    const auto setInput = [&](RyXmlParser& parser) {
        text_ = std::move(stream);
        parser.setInput(*text_, u"UTF-16LE", baseUri);
    };
    load(target, pull, std::cref(setInput));
}

void Loader::loadPresent(RyNode& target, bool pull) {
    const RyMutex guard(lock_);
    requireNotReading();
    withMemoryError(SOURCE, [&] { begin(target); });
    standsAtEvent_ = parser_->getEventType() == RyXmlParser::START_TAG;
    readOn(pull);
}

void Loader::requireNotReading() const {
    if (reading_) throwSystemError(SYSTEM_WRONG_STATE, LOCATION_DOCUMENT_LOAD_NEXT_NODE);
}

void Loader::begin(RyNode& target) {
    end(Ending::STOPPED);
    RyXmlParser* const parser = document_.getParser();
    // A parser that was given our text and is ours no more must not keep the stream.
    if (parser_ != nullptr && parser_ != parser) dropText();
    parser_ = parser;
    open_.push_back(&target);
    const RyXmlParser& reading = *parser;
    const bool isPlain =
        typeid(reading) == typeid(XmlParserImpl) && PlainTree::isPlain(document_, target);
    plain_ = isPlain ? static_cast<XmlParserImpl*>(parser) : nullptr;
    if (&target != &document_) target.addRef();
    target.setFlag(RyNode::FLAG_LOADING, true);
    target.setFlag(RyNode::FLAG_LOADED, false);
    target.removeAllChildNodes();
}

void Loader::readOn(bool pull) {
    isEager_ = !pull;
    if (!pull) read([](const RyNode*) { return false; });
}

RyNode* Loader::takeEvent() {
    RyNode* const added = plain_ != nullptr ? takePlainEvent() : takeAnyEvent();
    if (stop_) end(Ending::STOPPED);
    return added;
}

RyNode* Loader::takePlainEvent() {
    if (isEager_ && !standsAtEvent_) {
        PlainBuilder builder(*this);
        PlainContent(*plain_, builder).read();
    }
    const auto event = standsAtEvent_ ? plain_->getEventType() : plain_->next();
    standsAtEvent_ = false;
    switch (event) {
        case RyXmlParser::START_TAG:
            return startPlainElement();
        case RyXmlParser::END_TAG:
            endElement();
            return nullptr;
        case RyXmlParser::TEXT: {
            const std::u16string_view text = plain_->textUnits();
            return PlainTree::appendText(
                document_, *open_.back(),
                RyCompactText(text.data(), static_cast<std::int32_t>(text.size())));
        }
        case RyXmlParser::END_DOCUMENT:
            end(Ending::COMPLETE);
            return nullptr;
        default:
            throwSystemError(SYSTEM_WRONG_STATE, LOCATION_DOCUMENT_LOAD_NEXT_NODE);
    }
}

RyNode* Loader::takeAnyEvent() {
    switch (nextEvent()) {
        case RyXmlParser::START_TAG:
            return startElement();
        case RyXmlParser::END_TAG:
            endElement();
            return nullptr;
        case RyXmlParser::TEXT:
            return open_.back()->appendChildText(parser_->getText());
        case RyXmlParser::END_DOCUMENT:
            end(Ending::COMPLETE);
            return nullptr;
        default:
            throwSystemError(SYSTEM_WRONG_STATE, LOCATION_DOCUMENT_LOAD_NEXT_NODE);
    }
}

RyXmlParser::EventType Loader::nextEvent() {
    if (standsAtEvent_) {
        standsAtEvent_ = false;
        return parser_->getEventType();
    }
    RyXmlParser::EventType event = parser_->next();
    while (skipDepth_ != 0) {
        const bool isEnd = event == RyXmlParser::END_DOCUMENT;
        if (isEnd || (event == RyXmlParser::END_TAG && parser_->getDepth() == skipDepth_))
            skipDepth_ = 0;
        if (isEnd) break;
        event = parser_->next();
    }
    return event;
}

RyNode* Loader::startPlainElement() {
    RyPtr<RyElement> element = PlainTree::makeElement(document_, *plain_);
    RyNode& parent = *open_.back();
    open_.push_back(element);
    PlainTree::append(parent, *element);
    return element.detach();
}

RyNode* Loader::startElement() {
    RyPtr<RyElement> element = document_.createElementNS(parser_->getNamespace(),
                                                         parser_->getPrefix(), parser_->getName());
    RyElement* const node = element;
    if (node != nullptr) {
        fillElement(*node);
        node->finishAttributes();
    }
    if (node == nullptr || open_.back()->appendChildEx(node) != node) {
        if (node != nullptr) node->setFlag(RyNode::FLAG_LOADING, false);
        skipDepth_ = parser_->getDepth();
        return nullptr;
    }
    // The reference of creation becomes that of the open node.
    open_.push_back(node);
    element.detach();
    return node;
}

void Loader::fillElement(RyElement& element) const {
    const RyXmlParser& parser = *parser_;
    element.setFlag(RyNode::FLAG_LOADING, true);
    element.setSourceLineNumber(parser.getLineNumber());
    element.setSourceColumnNumber(parser.getColumnNumber());
    const int count = parser.getAttributeCount();
    for (int i = 0; i < count; ++i) {
        element.setAttributeEx(parser.getAttributeNamespace(i), parser.getAttributePrefix(i),
                               parser.getAttributeName(i), parser.getAttributeValue(i));
    }
}

void Loader::endElement() {
    closeInnermost(Ending::COMPLETE);
    if (open_.empty()) end(Ending::COMPLETE);
}

void Loader::closeInnermost(Ending ending) {
    RyNode* const node = open_.back();
    open_.pop_back();
    node->setFlag(RyNode::FLAG_LOADING, false);
    if (ending == Ending::COMPLETE) node->setFlag(RyNode::FLAG_LOADED, true);
    if (node != &document_) node->release();
}

void Loader::end(Ending ending) {
    while (!open_.empty()) closeInnermost(ending);
    skipDepth_ = 0;
    standsAtEvent_ = false;
    stop_ = false;
    if (ending == Ending::COMPLETE) {
        dropText();
        releaseBuffers();
    }
}

/// What a parser needs even for that is no reason to fail.
void Loader::releaseBuffers() {
    try {
        parser_->releaseBuffers();
    } catch (const std::bad_alloc&) {
    }
}

void Loader::fail() {
    end(Ending::STOPPED);
    parser_->closeStream();
    releaseBuffers();
    text_.reset();
}

void Loader::dropText() {
    if (text_ == nullptr) return;
    parser_->closeStream();
    text_.reset();
}

RyNode* Loader::lastLoadingNode() {
    const RyMutex guard(lock_);
    return open_.empty() || stop_ ? nullptr : open_.back();
}

void Loader::abort() {
    const RyMutex guard(lock_);
    if (reading_)
        stop_ = !open_.empty();
    else
        end(Ending::STOPPED);
}

}  // namespace RynCommon
