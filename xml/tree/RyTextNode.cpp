// Text nodes.
#include <RynCommon/RyDocument.h>
#include <RynCommon/RyTextNode.h>

#include "xml/tree/NodeCloner.h"

namespace RynCommon {

unsigned int RyTextNode::getTypeID() const {
    return getStaticTypeID();
}

bool RyTextNode::isA(unsigned int id) const {
    return id == RyTextNode::getStaticTypeID() || RyNode::isA(id);
}

UnicodeString RyTextNode::getTypeName() const {
    return u"RyTextNode";
}

RyValue RyTextNode::getNodeValue() const {
    return RyValue(getText());
}

void RyTextNode::setNodeValue(const RyValue& value) {
    setText(value.toString());
}

RyPtr<RyNode> RyTextNode::cloneNode(bool deep) const {
    RyPtr<RyNode> copy =
        RyPtr<RyNode>::adopt(getOwnerDocument()->createTextNode(getData()).detach());
    if (deep) NodeCloner::cloneChildren(*this, *copy);
    return copy;
}

}  // namespace RynCommon
