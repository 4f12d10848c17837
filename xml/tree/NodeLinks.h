// The sibling ring and its operations: the only code that changes links between nodes.
//
// A ring is known by its last node. Previous links lead from there to the first node and end in
// null; next links lead forward, and the last node's leads back to the first. A single node's next
// link leads to itself. Children and attributes are kept in rings alike; children have a parent
// link besides. None of the operations touches a reference count, except for the two that take
// trees apart.
#pragma once

#include <RynCommon/RyNode.h>

#include <cstdint>
#include <utility>

namespace RynCommon {

class NodeLinks {
public:
    // Rings. `last` is the owner's slot; a node linked in must be free.
    static void linkLast(RyNode*& last, RyNode& node) {
        node.previous_ = last;
        node.next_ = &node;
        if (last != nullptr) {
            node.next_ = last->next_;
            last->next_ = &node;
        }
        last = &node;
    }
    static void linkBefore(RyNode*& last, RyNode& node, RyNode& reference);
    /// Puts `node` where `old` is and frees `old`.
    static void replace(RyNode*& last, RyNode& node, RyNode& old);
    static void unlink(RyNode*& last, RyNode& node);
    static RyNode* next(const RyNode& node) { return node.next_; }
    /// Gives all nodes of a ring to `take`, last to first, which destroys or frees them. The ring
    /// is empty before the first is given.
    template <class Take>
    static void takeApart(RyNode*& last, Take take) {
        RyNode* node = std::exchange(last, nullptr);
        while (node != nullptr) {
            RyNode* const previous = node->previous_;
            fetchBehind(node);
            take(*node);
            node = previous;
        }
    }
    /// Clears the links of a node that is in no ring any more.
    static void free(RyNode& node) { node.next_ = node.previous_ = nullptr; }

    // The same on the children of a parent.
    static void linkLast(RyNode& parent, RyNode& child) {
        linkLast(parent.last_, child);
        child.parent_ = &parent;
    }
    static void linkBefore(RyNode& parent, RyNode& child, RyNode& reference) {
        linkBefore(parent.last_, child, reference);
        child.parent_ = &parent;
    }
    static void replace(RyNode& parent, RyNode& child, RyNode& old) {
        replace(parent.last_, child, old);
        child.parent_ = &parent;
        old.parent_ = nullptr;
    }
    static void unlink(RyNode& parent, RyNode& child) {
        unlink(parent.last_, child);
        child.parent_ = nullptr;
    }
    /// `child` is the last.
    static void unlinkLast(RyNode& parent, RyNode& child) {
        parent.last_ = child.previous_;
        if (child.previous_ != nullptr) child.previous_->next_ = child.next_;
        child.next_ = child.previous_ = child.parent_ = nullptr;
    }

    /// Releases the children of a node that is being destroyed, and with each that dies all below
    /// it. Needs no memory, whatever the depth.
    static void releaseChildren(RyNode& top);
    /// Frees every node below `top`, also below those that others hold, and releases it. Returns
    /// the number destroyed.
    static int dismantle(RyNode& top);

private:
    static RyNode* destroyOrEnter(RyNode& at, RyNode& node);
    /// Asks for the memory that dies soon. A loaded tree lies in memory in document order and dies
    /// against it, and waiting for the next node is most of what that costs.
    static void fetchBehind([[maybe_unused]] const RyNode* node) {
#if defined(__GNUC__)
        constexpr std::uintptr_t DISTANCE = 4096, CACHE_LINE = 64;
        const auto behind = reinterpret_cast<std::uintptr_t>(node) - DISTANCE;
        __builtin_prefetch(reinterpret_cast<const void*>(behind));
        __builtin_prefetch(reinterpret_cast<const void*>(behind + CACHE_LINE));
#endif
    }
};

}  // namespace RynCommon
