// The sibling ring.
#include "xml/tree/NodeLinks.h"

#include "xml/tree/ExactNodes.h"

namespace RynCommon {

void NodeLinks::linkBefore(RyNode*& last, RyNode& node, RyNode& reference) {
    node.next_ = &reference;
    node.previous_ = reference.previous_;
    RyNode* const before = reference.previous_ != nullptr ? reference.previous_ : last;
    before->next_ = &node;
    reference.previous_ = &node;
}

void NodeLinks::replace(RyNode*& last, RyNode& node, RyNode& old) {
    node.previous_ = old.previous_;
    node.next_ = old.next_ == &old ? &node : old.next_;
    if (last != &old)
        old.next_->previous_ = &node;
    else
        last = &node;
    RyNode* const before = node.previous_ != nullptr ? node.previous_ : last;
    before->next_ = &node;
    old.next_ = nullptr;
    old.previous_ = nullptr;
}

void NodeLinks::unlink(RyNode*& last, RyNode& node) {
    RyNode* const before = node.previous_ != nullptr ? node.previous_ : last;
    before->next_ = node.next_;
    if (last != &node)
        node.next_->previous_ = node.previous_;
    else
        last = node.previous_;
    node.next_ = nullptr;
    node.previous_ = nullptr;
}

// A row of exact nodes without children and attributes dies without a write to any of them, since
// nobody can look: what it costs is the time until its memory has come past once. Before anything
// that another node holds dies, and before a node that is not exact dies or is freed for others,
// the ring that it is in is put in order: a formatter's destructors may look at nodes above them.
void NodeLinks::releaseChildren(RyNode& top) {
    RyNode* at = &top;
    RyNode* node = at->last_;  // the last one left of the children of `at`
    RyNode* first = node != nullptr ? node->next_ : nullptr;
    for (;;) {
        if (node == nullptr) {
            at->last_ = nullptr;
            if (at == &top) return;
            RyNode& dead = *at;
            at = dead.parent_;
            if (ExactNodes::isAny(dead)) {
                node = dead.previous_;
                first = dead.next_;
                ExactNodes::destroyChild(dead);
                continue;
            }
            dead.parent_ = nullptr;
            delete &dead;
        } else {
            fetchBehind(node);
            const bool isExact = ExactNodes::isUnshared(*node);
            if (!isExact || ExactNodes::holdsOthers(*node)) {
                at->last_ = node;
                node->next_ = first;
            }
            if (isExact && node->last_ == nullptr) {
                RyNode* const previous = node->previous_;
                ExactNodes::destroyChild(*node);
                node = previous;
                continue;
            }
            if (isExact) {
                // Its children go first; its parent link is the way back from them.
                at = node;
            } else {
                unlinkLast(*at, *node);
                if (node->removeRef() < 1) at = destroyOrEnter(*at, *node);
            }
        }
        node = at->last_;
        first = node != nullptr ? node->next_ : nullptr;
    }
}

/// Destroys a free node, or returns it when its children have to go first, with `at` as its parent
/// for the way back. Returns the node whose children are next.
RyNode* NodeLinks::destroyOrEnter(RyNode& at, RyNode& node) {
    if (node.last_ == nullptr) {
        delete &node;
        return &at;
    }
    // An exact one that another thread has just let go of is none any more.
    node.setNotes(RyNode::NOTE_EXACT, 0);
    node.parent_ = &at;
    return &node;
}

int NodeLinks::dismantle(RyNode& top) {
    int destroyed = 0;
    RyNode* at = &top;
    for (;;) {
        if (at->last_ != nullptr) {
            at = at->last_;
            continue;
        }
        if (at == &top) return destroyed;
        RyNode* const done = at;
        at = done->parent_;
        unlink(*at, *done);
        if (done->release() < 1) ++destroyed;
    }
}

}  // namespace RynCommon
