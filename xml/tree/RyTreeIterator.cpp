// The double visit of a tree.
#include <RynCommon/RyNodeIterator.h>

namespace RynCommon {

RyTreeIterator::RyTreeIterator(RyNode* root) : root_(root), current_(root) {}

bool RyTreeIterator::hasNextNode() const {
    return current_ != nullptr && !(current_ == root_ && atPostVisit());
}

RyNode* RyTreeIterator::nextNode() {
    if (!hasNextNode()) return nullptr;
    if (atPreVisit()) {
        RyNode* const child = current_->getFirstChild();
        if (child != nullptr)
            current_ = child;
        else
            order_ = POST_VISIT;
        return current_;
    }
    if (RyNode* const next = current_->getNextSibling()) {
        current_ = next;
        order_ = PRE_VISIT;
        return current_;
    }
    RyNode* const parent = current_->getParentNodeFast();
    if (parent != nullptr) current_ = parent;
    return parent;
}

bool RyTreeIterator::hasPreviousNode() const {
    return current_ != nullptr && !(current_ == root_ && atPreVisit());
}

RyNode* RyTreeIterator::previousNode() {
    if (!hasPreviousNode()) return nullptr;
    if (atPostVisit()) {
        RyNode* const child = current_->getLastChild();
        if (child != nullptr)
            current_ = child;
        else
            order_ = PRE_VISIT;
        return current_;
    }
    if (RyNode* const previous = current_->getPreviousSibling()) {
        current_ = previous;
        order_ = POST_VISIT;
        return current_;
    }
    RyNode* const parent = current_->getParentNodeFast();
    if (parent != nullptr) current_ = parent;
    return parent;
}

}  // namespace RynCommon
