// Steps through a tree in document order, loading where the tree still loads.
#pragma once

#include <RynCommon/RyNode.h>

namespace RynCommon {

/// The node behind all that is in `node`, within `root`; null when there is none.
inline RyNode* nextOutside(const RyNode* node, const RyNode* root) {
    for (; node != nullptr && node != root; node = node->getParentNodeFast())
        if (RyNode* const next = node->getNextSibling()) return next;
    return nullptr;
}

/// The node after `node` in document order, within `root`; null at the end.
inline RyNode* nextInOrder(const RyNode* node, const RyNode* root) {
    if (RyNode* const child = node->getFirstChild()) return child;
    return nextOutside(node, root);
}

/// The last node of the tree below and at `node`.
inline RyNode* lastInOrder(RyNode* node) {
    while (RyNode* const child = node->getLastChild()) node = child;
    return node;
}

/// The node before `node` in document order; its parent when it is a first child.
inline RyNode* previousInOrder(const RyNode* node) {
    RyNode* const previous = node->getPreviousSibling();
    return previous != nullptr ? lastInOrder(previous) : node->getParentNodeFast();
}

}  // namespace RynCommon
