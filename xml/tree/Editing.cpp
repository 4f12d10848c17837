// Nodes: linking children in and out.
//
// Every call makes its checks before it changes anything. The tree's reference on a new child is
// taken before the child leaves its old place, so that it cannot die on the way.
#include <RynCommon/RyDocument.h>

#include "core/ErrorLocations.h"
#include "xml/tree/NodeLinks.h"

namespace RynCommon {

namespace {

void requireArgument(const RyNode* node, const char16_t* name, int location) {
    if (node == nullptr) throwSystemError(SYSTEM_ARG_IS_NULL, location, name);
}

void requireChild(const RyNode* node, const RyNode* parent, const char16_t* name, int location) {
    if (node->getParentNodeFast() != parent) throwSystemError(SYSTEM_NOT_A_CHILD, location, name);
}

/// Takes the tree's reference on `node` and takes the node out of its old place.
RyPtr<RyNode> takeOut(RyNode* node) {
    RyPtr<RyNode> held(node);
    if (RyNode* const parent = node->getParentNodeFast()) parent->removeChild(node);
    return held;
}

}  // namespace

void RyNode::checkNewChild(const RyNode* newChild, int location) const {
    // A document has no owner and belongs to no other; put under itself it is in the wrong place.
    const RyNode* const document = owner() != nullptr ? owner() : this;
    if (newChild->owner() != document && newChild != this)
        throwSystemError(SYSTEM_WRONG_DOCUMENT, location, u"newChild");
    // Only a node with something below it can be an ancestor, so that building stays linear.
    const bool isAbove =
        newChild == this || (newChild->last_ != nullptr && isDescendantOf(newChild));
    if (isAbove || newChild->getNodeType() == ATTRIBUTE_NODE)
        throwSystemError(SYSTEM_HIERARCHY, location, u"newChild");
}

RyNode* RyNode::appendChild(RyNode* newChild) {
    requireArgument(newChild, u"newChild", LOCATION_NODE_APPEND_CHILD);
    checkNewChild(newChild, LOCATION_NODE_APPEND_CHILD);
    if (newChild->parent_ == nullptr)
        newChild->addRef();
    else
        takeOut(newChild).detach();
    NodeLinks::linkLast(*this, *newChild);
    return newChild;
}

RyNode* RyNode::appendChildEx(RyNode* newChild) {
    return appendChild(newChild);
}

RyNode* RyNode::appendChildText(const UnicodeString& text) {
    const RyPtr<RyNode> node = factory()->createTextNodeElement(text, this);
    return node != nullptr ? appendChild(node) : nullptr;
}

RyNode* RyNode::insertBefore(RyNode* newChild, RyNode* refChild) {
    requireArgument(newChild, u"newChild", LOCATION_NODE_INSERT_BEFORE);
    if (refChild == nullptr) return appendChild(newChild);
    requireChild(refChild, this, u"refChild", LOCATION_NODE_INSERT_BEFORE);
    if (newChild == refChild) return newChild;
    checkNewChild(newChild, LOCATION_NODE_INSERT_BEFORE);
    takeOut(newChild).detach();
    NodeLinks::linkBefore(*this, *newChild, *refChild);
    return newChild;
}

RyPtr<RyNode> RyNode::replaceChild(RyNode* newChild, RyNode* oldChild) {
    requireArgument(newChild, u"newChild", LOCATION_NODE_REPLACE_CHILD);
    requireArgument(oldChild, u"oldChild", LOCATION_NODE_REPLACE_CHILD);
    requireChild(oldChild, this, u"oldChild", LOCATION_NODE_REPLACE_CHILD);
    if (newChild == oldChild) return oldChild;
    checkNewChild(newChild, LOCATION_NODE_REPLACE_CHILD);
    takeOut(newChild).detach();
    NodeLinks::replace(*this, *newChild, *oldChild);
    return RyPtr<RyNode>::adopt(oldChild);
}

RyPtr<RyNode> RyNode::removeChild(RyNode* oldChild) {
    requireArgument(oldChild, u"oldChild", LOCATION_NODE_REMOVE_CHILD);
    requireChild(oldChild, this, u"oldChild", LOCATION_NODE_REMOVE_CHILD);
    NodeLinks::unlink(*this, *oldChild);
    return RyPtr<RyNode>::adopt(oldChild);
}

void RyNode::removeAllChildNodes() {
    while (RyNode* const child = last_) {
        NodeLinks::unlink(*this, *child);
        child->release();
    }
}

int RyNode::deleteAllChildNodes() {
    return NodeLinks::dismantle(*this);
}

}  // namespace RynCommon
