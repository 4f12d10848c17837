// Document fragments.
#include <RynCommon/RyDocument.h>

#include "xml/tree/NodeCloner.h"

namespace RynCommon {

RyDocumentFragment::RyDocumentFragment(RyDocument* owner) : RyNode(owner) {}

RyDocumentFragment::~RyDocumentFragment() = default;

unsigned int RyDocumentFragment::getTypeID() const {
    return getStaticTypeID();
}

bool RyDocumentFragment::isA(unsigned int id) const {
    return id == RyDocumentFragment::getStaticTypeID() || RyNode::isA(id);
}

UnicodeString RyDocumentFragment::getTypeName() const {
    return u"RyDocumentFragment";
}

RyPtr<RyNode> RyDocumentFragment::cloneNode(bool deep) const {
    RyPtr<RyNode> copy =
        RyPtr<RyNode>::adopt(getOwnerDocument()->createDocumentFragment().detach());
    if (deep) NodeCloner::cloneChildren(*this, *copy);
    return copy;
}

}  // namespace RynCommon
