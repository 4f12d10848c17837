// Lists of nodes.
#include <RynCommon/RyNodeIterator.h>

namespace RynCommon {

unsigned int RyNodeIterable::getTypeID() const {
    return getStaticTypeID();
}

bool RyNodeIterable::isA(unsigned int id) const {
    return id == RyNodeIterable::getStaticTypeID() || RyRCObject::isA(id);
}

UnicodeString RyNodeIterable::getTypeName() const {
    return u"RyNodeIterable";
}

RyNodeList::RyNodeList() = default;

RyNodeList::~RyNodeList() = default;

unsigned int RyNodeList::getTypeID() const {
    return getStaticTypeID();
}

bool RyNodeList::isA(unsigned int id) const {
    return id == RyNodeList::getStaticTypeID() || RyNodeIterable::isA(id);
}

UnicodeString RyNodeList::getTypeName() const {
    return u"RyNodeList";
}

RyNode* RyNodeList::item(int index) const {
    const auto position = static_cast<std::size_t>(index);
    return index >= 0 && position < nodes_.size() ? nodes_[position].get() : nullptr;
}

}  // namespace RynCommon
