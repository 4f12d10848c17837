// Nodes: identity, navigation, names and values.
//
// Navigation over a node that is still being read asks the loader for more, one event at a time,
// until the question is answered: what comes may belong elsewhere in the tree, and the answer may
// also be that nothing comes here.
#include <RynCommon/RyDocument.h>
#include <RynCommon/RyNodeIterator.h>

#include "core/ErrorLocations.h"
#include "core/SlabMemory.h"
#include "xml/document/Loader.h"
#include "xml/tree/NodeLinks.h"

namespace RynCommon {

namespace {

bool isFirstChildKnown(const RyNode& node) {
    return node.hasChildNodesFast() || !node.isLoading();
}

bool isLastChildKnown(const RyNode& node) {
    return !node.isLoading();
}

bool isNextSiblingKnown(const RyNode& node) {
    const RyNode* const parent = node.getParentNodeFast();
    return parent == nullptr || !parent->isLoading() || parent->getLastChildFast() != &node;
}

using Known = bool (*)(const RyNode&);

inline void loadUntil(const RyNode& node, Known isKnown) {
    if (!isKnown(node)) Loader::loadUntil(node, isKnown);
}

}  // namespace

void RyNode::releaseChildren() {
    static_assert(alignof(RyDocument) > NOTES, "addresses of documents leave room for the notes");
    NodeLinks::releaseChildren(*this);
}

void* RyNode::operator new(std::size_t size) {
    return SlabMemory::allocate(size);
}

void RyNode::operator delete(void* node, std::size_t size) noexcept {
    SlabMemory::release(node, size);
}

unsigned int RyNode::getTypeID() const {
    return getStaticTypeID();
}

bool RyNode::isA(unsigned int id) const {
    return id == RyNode::getStaticTypeID() || RyRCObject::isA(id);
}

UnicodeString RyNode::getTypeName() const {
    return u"RyNode";
}

RyNode* RyNode::getParentNode() const {
    return parent_;
}

RyNode* RyNode::getFirstChild() const {
    loadUntil(*this, isFirstChildKnown);
    return getFirstChildFast();
}

RyNode* RyNode::getLastChild() const {
    loadUntil(*this, isLastChildKnown);
    return last_;
}

RyNode* RyNode::getPreviousSibling() const {
    return previous_;
}

RyNode* RyNode::getNextSibling() const {
    loadUntil(*this, isNextSiblingKnown);
    return getNextSiblingFast();
}

bool RyNode::hasChildNodes() const {
    loadUntil(*this, isFirstChildKnown);
    return last_ != nullptr;
}

RyNodeIterator RyNode::getIterator() const {
    return RyNodeIterator(this, nullptr);
}

RyNode* RyNode::getParentNodeUncomplemental() const {
    RyNode* node = parent_;
    while (node != nullptr && node->getFlag(FLAG_COMPLEMENTAL)) node = node->parent_;
    return node;
}

RyName RyNode::getNodeName() const {
    return {};
}
RyName RyNode::getLocalName() const {
    return {};
}
RyName RyNode::getPrefix() const {
    return {};
}
void RyNode::setPrefix(RyName) {}
RyName RyNode::getNamespaceUri() const {
    return {};
}
RyValue RyNode::getNodeValue() const {
    return {};
}

void RyNode::setNodeValue(const RyValue&) {
    throwSystemError(SYSTEM_WRONG_STATE, LOCATION_NODE_SET_NODE_VALUE, getTypeName());
}

UnicodeString RyNode::getText() const {
    return {};
}
void RyNode::setText(const UnicodeString& text) {
    setNodeValue(RyValue(text));
}
RyDocument* RyNode::getOwnerDocument() const {
    return owner();
}

RyDocument* RyNode::factory() const {
    if (owner() != nullptr || getNodeType() != DOCUMENT_NODE) return owner();
    return static_cast<RyDocument*>(const_cast<RyNode*>(this));
}

bool RyNode::isElementNode() const {
    return false;
}
bool RyNode::isText() const {
    return false;
}
bool RyNode::isFO() const {
    return false;
}
bool RyNode::isRYXO() const {
    return false;
}
bool RyNode::isArea() const {
    return false;
}
bool RyNode::isBlock() const {
    return false;
}
bool RyNode::isInline() const {
    return false;
}
bool RyNode::isInlineBlock() const {
    return false;
}
bool RyNode::isNeutral() const {
    return false;
}
bool RyNode::isOutOfLine() const {
    return false;
}

int RyNode::getSourceLineNumber() const {
    if (getNodeType() != ELEMENT_NODE) return -1;
    return static_cast<const RyElement*>(this)->getElementLineNumber();
}

int RyNode::getSourceColumnNumber() const {
    if (getNodeType() != ELEMENT_NODE) return -1;
    return static_cast<const RyElement*>(this)->getElementColumnNumber();
}

RyPtr<RyNode> RyNode::cloneNode(bool) const {
    return nullptr;
}

void RyNode::finishAttributes() {}

}  // namespace RynCommon
