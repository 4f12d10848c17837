// A parser that hands out events from a list: for orders that no document gives.
#pragma once

#include <RynCommon/RyXmlParser.h>

#include <vector>

namespace treetest {

class ScriptedParser : public RynCommon::RyXmlParser {
public:
    using RyName = RynCommon::RyName;
    using UnicodeString = RynCommon::UnicodeString;

    explicit ScriptedParser(std::vector<EventType> events) : events_(std::move(events)) {}

    unsigned int getTypeID() const override { return 1; }
    UnicodeString getTypeName() const override { return u"ScriptedParser"; }
    EventType getEventType() const override { return event_; }
    EventType next() override {
        if (event_ == END_TAG) --depth_;
        event_ = position_ < events_.size() ? events_[position_++] : END_DOCUMENT;
        if (event_ == START_TAG) ++depth_;
        return event_;
    }
    EventType nextToken() override { return next(); }
    int getDepth() const override { return depth_; }
    const UnicodeString& getText() const override { return text_; }
    RyName getName() const override { return RyName(u"e" + UnicodeString(u'0' + depth_)); }

    void setFeature(Feature, bool) override {}
    bool getFeature(Feature) const override { return false; }
    void setStreamType(const UnicodeString&, const UnicodeString&) override {}
    void setCallbackError(ErrorCallback, void*) override {}
    void setInput(const UnicodeString&, const UnicodeString&, const UnicodeString&) override {}
    void setInput(std::istream&, const UnicodeString&, const UnicodeString&) override {}
    void closeStream() override {}
    const UnicodeString& getInputEncoding() const override { return empty_; }
    void defineEntityReplacementText(RyName, const UnicodeString&) override {}
    int getNamespaceCount(int) const override { return 0; }
    RyName getNamespacePrefix(int) const override { return {}; }
    RyName getNamespaceUri(int) const override { return {}; }
    RyName getNamespace() const override { return {}; }
    RyName getNamespace(RyName) const override { return {}; }
    UnicodeString getPositionDescription() const override { return {}; }
    int getLineNumber() const override { return 7; }
    int getColumnNumber() const override { return 9; }
    bool isWhitespace() const override { return false; }
    RyName getPrefix() const override { return {}; }
    bool isEmptyElementTag() const override { return false; }
    int getAttributeCount() const override { return 0; }
    RyName getAttributeNamespace(int) const override { return {}; }
    RyName getAttributeName(int) const override { return {}; }
    RyName getAttributePrefix(int) const override { return {}; }
    const UnicodeString& getAttributeValue(RyName, RyName) const override { return empty_; }
    const UnicodeString& getAttributeValue(int) const override { return empty_; }
    const UnicodeString& getBaseUri() const override { return empty_; }
    void addMathMLEntityMap() override {}
    void setLimits(const RynCommon::RyXmlLimits&) override {}
    const RynCommon::RyXmlLimits& getLimits() const override { return limits_; }

private:
    std::vector<EventType> events_;
    std::size_t position_ = 0;
    EventType event_ = START_DOCUMENT;
    int depth_ = 0;
    UnicodeString text_{u"t"};
    UnicodeString empty_;
    RynCommon::RyXmlLimits limits_;
};

}  // namespace treetest
