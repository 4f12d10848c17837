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

// Exact nodes die without a write to them or to their ring, since nobody can look: what a tree of
// them costs is the time until its memory has come past once. Before a node that is not exact dies,
// and before one that others hold is freed, its ring is put in order.
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
                first = at->last_;
                ExactNodes::destroyChild(dead);
                continue;
            }
            dead.parent_ = nullptr;
            delete &dead;
        } else if (ExactNodes::isUnshared(*node)) {
            fetchBehind(node);
            if (node->last_ == nullptr) {
                RyNode* const previous = node->previous_;
                ExactNodes::destroyChild(*node);
                node = previous;
                continue;
            }
            // Its children go first. The way back is its parent link, where the first of its
            // siblings is kept meanwhile.
            at->last_ = first;
            at = node;
        } else {
            fetchBehind(node);
            at->last_ = node;
            node->next_ = first;
            unlinkLast(*at, *node);
            if (node->removeRef() < 1) {
                if (node->last_ == nullptr) {
                    delete node;
                } else {
                    // An exact one that another thread has just let go of is none any more.
                    node->setNotes(RyNode::NOTE_EXACT, 0);
                    node->parent_ = at;
                    at = node;
                }
            }
        }
        node = at->last_;
        first = node != nullptr ? node->next_ : nullptr;
    }
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
