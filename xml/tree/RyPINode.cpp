// Processing instructions.
#include <RynCommon/RyDocument.h>
#include <RynCommon/RyTextNode.h>

#include "xml/tree/NodeCloner.h"

namespace RynCommon {

RyPINode::RyPINode(RyDocument* owner, const UnicodeString& content)
    : RyNode(owner), content_(content) {}

RyPINode::~RyPINode() = default;

unsigned int RyPINode::getTypeID() const {
    return getStaticTypeID();
}

bool RyPINode::isA(unsigned int id) const {
    return id == RyPINode::getStaticTypeID() || RyNode::isA(id);
}

UnicodeString RyPINode::getTypeName() const {
    return u"RyPINode";
}

RyName RyPINode::getNodeName() const {
    std::int32_t end = 0;
    while (end < content_.length() && UnicodeString(u" \t\n\r").indexOf(content_[end]) < 0) ++end;
    return RyName(UnicodeString(content_, 0, end));
}

RyValue RyPINode::getNodeValue() const {
    return RyValue(getText());
}

void RyPINode::setNodeValue(const RyValue& value) {
    setText(value.toString());
}

RyPtr<RyNode> RyPINode::cloneNode(bool deep) const {
    RyDocument* const document = getOwnerDocument();
    if (document == nullptr) return new RyPINode(nullptr, content_);
    RyPtr<RyNode> copy =
        RyPtr<RyNode>::adopt(document->createProcessingInstruction(content_).detach());
    if (deep) NodeCloner::cloneChildren(*this, *copy);
    return copy;
}

}  // namespace RynCommon
