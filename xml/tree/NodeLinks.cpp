// The sibling ring.
#include "xml/tree/NodeLinks.h"

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

void NodeLinks::releaseChildren(RyNode& top) {
    RyNode* at = &top;
    for (;;) {
        RyNode* const child = at->last_;
        if (child != nullptr) {
            fetchBehind(child);
            unlinkLast(*at, *child);
            if (child->removeRef() >= 1) continue;
            if (child->last_ == nullptr) {
                delete child;
                continue;
            }
            // A dying node's children go first; its parent link is the way back from them.
            child->parent_ = at;
            at = child;
            continue;
        }
        if (at == &top) return;
        RyNode* const dead = at;
        at = dead->parent_;
        dead->parent_ = nullptr;
        delete dead;
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
