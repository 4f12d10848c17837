// The cursor over a list or over the descendants of a node.
//
// In a tree the cursor is known by the node it stands behind. The root itself stands for the place
// before the first descendant.
#include <RynCommon/RyNodeIterator.h>

#include "xml/tree/DocumentOrder.h"

namespace RynCommon {

RyNodeIterator::RyNodeIterator(const RyNodeIterable* iterable) : iterable_(iterable) {}

RyNodeIterator::RyNodeIterator(const RyNode* root, const RyNode* start)
    : root_(const_cast<RyNode*>(root)), before_(root_) {
    if (start != nullptr && start->isDescendantOf(root)) before_ = previousInOrder(start);
}

RyNode* RyNodeIterator::following() const {
    if (iterable_ != nullptr) return iterable_->item(position_);
    return root_ != nullptr ? nextInOrder(before_, root_) : nullptr;
}

RyNode* RyNodeIterator::preceding() const {
    if (iterable_ != nullptr) return position_ > 0 ? iterable_->item(position_ - 1) : nullptr;
    return before_ != root_ ? before_ : nullptr;
}

bool RyNodeIterator::hasNextNode() const {
    return following() != nullptr;
}

RyNode* RyNodeIterator::nextNode() {
    RyNode* const node = following();
    if (node == nullptr) return nullptr;
    ++position_;
    before_ = node;
    return node;
}

bool RyNodeIterator::hasPreviousNode() const {
    return preceding() != nullptr;
}

RyNode* RyNodeIterator::previousNode() {
    RyNode* const node = preceding();
    if (node == nullptr) return nullptr;
    --position_;
    if (iterable_ != nullptr) return node;
    before_ = previousInOrder(node);
    // A node taken out of the tree leads nowhere.
    if (before_ == nullptr) before_ = root_;
    return node;
}

void RyNodeIterator::setToStart() {
    position_ = 0;
    before_ = root_;
}

void RyNodeIterator::setToEnd() {
    if (iterable_ != nullptr) position_ = iterable_->getLength();
    if (root_ != nullptr) before_ = lastInOrder(root_);
}

}  // namespace RynCommon
