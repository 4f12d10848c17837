// Nodes: counting, searching and comparing along the axes of the tree.
#include <RynCommon/RyDocument.h>
#include <RynCommon/RyNodeIterator.h>
#include <RynCommon/RyXmlUtil.h>

#include "core/MemoryCheck.h"
#include "xml/tree/DocumentOrder.h"

namespace RynCommon {

namespace {

/// Tests elements for a qualified name without making the name of each.
class QNameTest {
public:
    explicit QNameTest(RyName name)
        : name_(name),
          prefix_(RyXmlUtil::getPrefixFromQName(name)),
          local_(RyXmlUtil::getLocalPartFromQName(name)) {}

    bool operator()(const RyNode& element) const {
        const RyName prefix = element.getPrefix();
        if (prefix.isEmpty()) return element.getLocalName() == name_;
        return prefix == prefix_ && element.getLocalName() == local_;
    }

private:
    RyName name_;
    RyName prefix_;
    RyName local_;
};

bool hasNameNS(const RyNode& node, RyName uri, RyName local) {
    return node.getLocalName() == local && node.getNamespaceUri() == uri;
}

template <class Test>
RyNode* findChild(const RyNode& parent, Test matches) {
    for (RyNode* node = parent.getFirstChild(); node != nullptr; node = node->getNextSibling())
        if (matches(*node)) return node;
    return nullptr;
}

template <class Test>
RyNode* findUpward(const RyNode* from, Test matches) {
    for (const RyNode* node = from; node != nullptr; node = node->getParentNodeFast())
        if (matches(*node)) return const_cast<RyNode*>(node);
    return nullptr;
}

template <class Test>
RyPtr<RyNodeList> listDescendants(const RyNode& root, Test matches) {
    RyPtr<RyNodeList> list = new RyNodeList;
    for (RyNode* node = root.getFirstChild(); node != nullptr; node = nextInOrder(node, &root))
        if (matches(*node)) list->append(node);
    return list;
}

const RyNode* climb(const RyNode* node, int levels) {
    for (; levels > 0; --levels) node = node->getParentNodeFast();
    return node;
}

/// The nodes' ancestors or selves that lie equally deep.
struct Level {
    const RyNode* first;
    const RyNode* second;
};

Level levelOf(const RyNode& a, const RyNode& b) {
    const int depthA = a.getNodeDepth();
    const int depthB = b.getNodeDepth();
    return {climb(&a, depthA - depthB), climb(&b, depthB - depthA)};
}

/// Whether `b` comes after its sibling `a`. Costs no more than the way between them, or to the end.
bool isSiblingBefore(const RyNode* a, const RyNode* b) {
    const RyNode* fromA = a;
    const RyNode* fromB = b;
    for (;;) {
        fromA = fromA->getNextSiblingFast();
        fromB = fromB->getNextSiblingFast();
        if (fromA == b || fromB == nullptr) return true;
        if (fromB == a || fromA == nullptr) return false;
    }
}

}  // namespace

RyPtr<RyNodeList> RyNode::getChildNodes() const {
    RyPtr<RyNodeList> list = new RyNodeList;
    for (RyNode* node = getFirstChild(); node != nullptr; node = node->getNextSibling())
        list->append(node);
    return list;
}

RyPtr<RyNodeList> RyNode::getDescendantNodes() const {
    return listDescendants(*this, [](const RyNode&) { return true; });
}

RyPtr<RyNodeList> RyNode::getElementsByTagName(RyName name) const {
    const QNameTest hasName(name);
    return listDescendants(
        *this, [&](const RyNode& node) { return node.isElementNode() && hasName(node); });
}

RyPtr<RyNodeList> RyNode::getElementsByTagNameNS(RyName uri, RyName local) const {
    return listDescendants(*this, [&](const RyNode& node) {
        return node.isElementNode() && hasNameNS(node, uri, local);
    });
}

int RyNode::getChildNodeCount() const {
    int count = 0;
    for (const RyNode* node = getFirstChild(); node != nullptr; node = node->getNextSibling())
        ++count;
    return count;
}

int RyNode::countPrecedingSiblings() const {
    int count = 0;
    for (const RyNode* node = previous_; node != nullptr; node = node->previous_) ++count;
    return count;
}

int RyNode::countFollowingSiblings() const {
    int count = 0;
    for (const RyNode* node = getNextSibling(); node != nullptr; node = node->getNextSibling())
        ++count;
    return count;
}

int RyNode::getNodeDepth() const {
    int depth = 0;
    for (const RyNode* node = parent_; node != nullptr; node = node->parent_) ++depth;
    return depth;
}

RyNode* RyNode::getChildNodeByName(RyName name) const {
    return findChild(*this, [&](const RyNode& node) { return node.getNodeName() == name; });
}

RyNode* RyNode::getChildNodeByNameNS(RyName uri, RyName local) const {
    return findChild(*this, [&](const RyNode& node) { return hasNameNS(node, uri, local); });
}

RyNode* RyNode::getChildNodeByTypeID(unsigned int id) const {
    return findChild(*this, [&](const RyNode& node) { return node.getTypeID() == id; });
}

RyNode* RyNode::getAncestorByName(RyName name) const {
    return findUpward(parent_, [&](const RyNode& node) { return node.getNodeName() == name; });
}

RyNode* RyNode::getAncestorOrSelfByName(RyName name) const {
    return findUpward(this, [&](const RyNode& node) { return node.getNodeName() == name; });
}

RyNode* RyNode::getAncestorByNameNS(RyName uri, RyName local) const {
    return findUpward(parent_, [&](const RyNode& node) { return hasNameNS(node, uri, local); });
}

RyNode* RyNode::getAncestorByTypeID(unsigned int id) const {
    return findUpward(parent_, [&](const RyNode& node) { return node.getTypeID() == id; });
}

RyNode* RyNode::getCommonAncestor(const RyNode* other) const {
    if (other == nullptr || parent_ == nullptr) return nullptr;
    return parent_->getCommonAncestorOrSelf(other->parent_);
}

RyNode* RyNode::getCommonAncestorOrSelf(const RyNode* other) const {
    if (other == nullptr) return nullptr;
    Level at = levelOf(*this, *other);
    while (at.first != at.second) at = {at.first->parent_, at.second->parent_};
    return const_cast<RyNode*>(at.first);
}

bool RyNode::isDescendantOf(const RyNode* other) const {
    return other != nullptr &&
           findUpward(parent_, [&](const RyNode& node) { return &node == other; }) != nullptr;
}

bool RyNode::isDescendantOrSelfOf(const RyNode* other) const {
    return this == other || isDescendantOf(other);
}

bool RyNode::isPrecedingOf(const RyNode* other) const {
    if (other == nullptr) return false;
    Level at = levelOf(*this, *other);
    // One of the nodes is, or contains, the other.
    if (at.first == at.second) return false;
    while (at.first->parent_ != at.second->parent_) at = {at.first->parent_, at.second->parent_};
    return at.first->parent_ != nullptr && isSiblingBefore(at.first, at.second);
}

bool RyNode::isFollowingOf(const RyNode* other) const {
    return other != nullptr && other->isPrecedingOf(this);
}

UnicodeString RyNode::getInnerText() const {
    if (getNodeType() == TEXT_NODE || !hasChildNodes()) return getText();
    UnicodeString text;
    for (const RyNode* node = getFirstChild(); node != nullptr; node = nextInOrder(node, this)) {
        if (node->getTypeID() == RyTextNode::getStaticTypeID())
            static_cast<const RyTextNode*>(node)->getCompactData().appendTo(text);
        else if (node->getNodeType() == TEXT_NODE)
            text.append(node->getText());
    }
    requireWhole(text);
    return text;
}

}  // namespace RynCommon
