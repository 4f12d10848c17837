// The attributes of one element.
#include "xml/tree/AttrNodeMap.h"

#include <utility>

#include "core/ErrorLocations.h"
#include "xml/tree/AttrIndex.h"
#include "xml/tree/ExactNodes.h"

namespace RynCommon {

unsigned int RyNamedNodeMap::getTypeID() const {
    return getStaticTypeID();
}

bool RyNamedNodeMap::isA(unsigned int id) const {
    return id == RyNamedNodeMap::getStaticTypeID() || RyRCObject::isA(id);
}

UnicodeString RyNamedNodeMap::getTypeName() const {
    return u"RyNamedNodeMap";
}

AttrNodeMap::~AttrNodeMap() {
    if (hasIndex()) delete index_;
    NodeLinks::takeApart(last_, [](RyNode& node) {
        RyAttr& attr = static_cast<RyAttr&>(node);
        if (ExactNodes::isUnshared(attr)) {
            ExactNodes::destroy(attr);
            return;
        }
        NodeLinks::free(attr);
        attr.map_ = nullptr;
        attr.release();
    });
}

template <class Test>
RyAttr* AttrNodeMap::search(Test matches) const {
    for (RyAttr* attr = first(); attr != nullptr; attr = next(*attr))
        if (matches(*attr)) return attr;
    return nullptr;
}

RyNode* AttrNodeMap::item(int index) const {
    if (index < 0 || index >= count_) return nullptr;
    RyAttr* attr = first();
    int position = 0;
    if (hasIndex() && index_->cursor != nullptr && index_->cursorPosition <= index) {
        attr = index_->cursor;
        position = index_->cursorPosition;
    }
    for (; position < index; ++position) attr = next(*attr);
    if (hasIndex()) {
        index_->cursor = attr;
        index_->cursorPosition = index;
    }
    return attr;
}

RyAttr* AttrNodeMap::find(RyName name) const {
    const auto matches = [&](const RyAttr& attr) { return attr.getNodeName() == name; };
    if (!hasIndex()) return search(matches);
    if (!index_->hasNames) {
        for (RyAttr* attr = first(); attr != nullptr; attr = next(*attr))
            index_->names.insert(AttrIndex::nameKey(attr->getNodeName()), attr);
        index_->hasNames = true;
    }
    const AttrTable::Entry* const entry = index_->names.find(AttrIndex::nameKey(name));
    if (entry == nullptr) return nullptr;
    return entry->attr != nullptr ? entry->attr : search(matches);
}

RyAttr* AttrNodeMap::findNS(RyName uri, RyName local) const {
    const auto matches = [&](const RyAttr& attr) {
        return attr.local_ == local && attr.uri_ == uri;
    };
    if (!hasIndex()) return (filter_ & filterBit(local)) != 0 ? search(matches) : nullptr;
    const AttrTable::Entry* const entry = index_->expanded.find(AttrIndex::expandedKey(uri, local));
    if (entry == nullptr) return nullptr;
    return entry->attr != nullptr ? entry->attr : search(matches);
}

std::unique_ptr<AttrIndex> AttrNodeMap::makeIndex() const {
    auto index = std::make_unique<AttrIndex>();
    for (RyAttr* attr = first(); attr != nullptr; attr = next(*attr)) index->insert(*attr);
    return index;
}

void AttrNodeMap::dropIndex() {
    delete index_;
    filter_ = 0;
    for (RyAttr* attr = first(); attr != nullptr; attr = next(*attr))
        filter_ |= filterBit(attr->local_);
}

/// Makes the index for the first attribute beyond FEW.
void AttrNodeMap::addToIndex(RyAttr& attr) {
    if (hasIndex()) {
        index_->insert(attr);
        return;
    }
    std::unique_ptr<AttrIndex> index = makeIndex();
    index->insert(attr);
    index_ = index.release();
}

RyPtr<RyAttr> AttrNodeMap::remove(RyAttr& attr) {
    if (hasIndex()) index_->erase(attr);
    NodeLinks::unlink(last_, attr);
    attr.map_ = nullptr;
    if (count_-- == FEW + 1) dropIndex();
    return RyPtr<RyAttr>::adopt(&attr);
}

void AttrNodeMap::nameChanged() {
    if (hasIndex()) index_->dropNames();
}

void AttrNodeMap::checkNewItem(const RyNode* node, int location) const {
    if (node == nullptr) throwSystemError(SYSTEM_ARG_IS_NULL, location, u"newAttr");
    if (!node->isA(RyAttr::getStaticTypeID()))
        throwSystemError(SYSTEM_NOT_AN_ATTR, location, u"newAttr");
    const AttrNodeMap* const map = static_cast<const RyAttr*>(node)->map_;
    if (map != nullptr && map != this) throwSystemError(SYSTEM_ATTR_IN_USE, location, u"newAttr");
    if (element_ != nullptr && node->getOwnerDocument() != element_->getOwnerDocument())
        throwSystemError(SYSTEM_WRONG_DOCUMENT, location, u"newAttr");
}

RyPtr<RyNode> AttrNodeMap::put(RyAttr& attr, RyAttr* old) {
    if (holds(attr)) return &attr;
    RyPtr<RyAttr> held(&attr);
    if (old == nullptr) {
        append(std::move(held));
        return nullptr;
    }
    if (hasIndex())
        index_->replace(attr, *old);
    else
        filter_ |= filterBit(attr.local_);
    NodeLinks::replace(last_, *held.detach(), *old);
    attr.map_ = this;
    old->map_ = nullptr;
    return RyPtr<RyNode>::adopt(old);
}

RyPtr<RyNode> AttrNodeMap::setNamedItem(RyNode* node) {
    checkNewItem(node, LOCATION_ATTRMAP_SET_NAMED_ITEM);
    RyAttr& attr = *static_cast<RyAttr*>(node);
    return put(attr, find(attr.getNodeName()));
}

RyPtr<RyNode> AttrNodeMap::setNamedItemNS(RyNode* node) {
    checkNewItem(node, LOCATION_ATTRMAP_SET_NAMED_ITEM_NS);
    RyAttr& attr = *static_cast<RyAttr*>(node);
    return put(attr, findNS(attr.uri_, attr.local_));
}

RyPtr<RyNode> AttrNodeMap::removeNamedItem(RyName name) {
    RyAttr* const attr = find(name);
    return attr != nullptr ? RyPtr<RyNode>::adopt(remove(*attr).detach()) : nullptr;
}

RyPtr<RyNode> AttrNodeMap::removeNamedItemNS(RyName uri, RyName local) {
    RyAttr* const attr = findNS(uri, local);
    return attr != nullptr ? RyPtr<RyNode>::adopt(remove(*attr).detach()) : nullptr;
}

}  // namespace RynCommon
