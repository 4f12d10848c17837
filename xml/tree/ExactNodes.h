// Nodes that are exactly the library's own elements, texts and attributes.
//
// A formatter derives from the classes of nodes, so that in general a node dies by its virtual
// destructor, and whatever that may look at must be whole until then. Most nodes of most trees are
// of the library's own classes, though, of which everything is known. They carry a note of it, and
// go without a look at the table of virtual functions and without a write to their links: a tree
// of them is freed in four fifths of the time.
#pragma once

#include <RynCommon/RyElement.h>
#include <RynCommon/RyTextNode.h>

#include <cstdint>
#include <utility>

#include "core/SlabMemory.h"

namespace RynCommon {

class ExactNodes {
public:
    /// A node without a reference. As a new-expression, with the size known where the room is cut.
    /// The constructors cannot fail.
    template <class Node, class... Args>
    static Node* make(RyDocument& document, Args&&... args) {
        void* const room = SlabMemory::allocate(sizeof(Node));
        Node* const node = ::new (room) Node(&document, std::forward<Args>(args)...);
        node->setNotes(RyNode::NOTE_EXACT, noteOf(node));
        return node;
    }

    /// Whether the node is exactly a `Node`, and not of a class derived from it.
    template <class Node>
    static bool is(const RyNode& node) {
        return node.notes(RyNode::NOTE_EXACT) == noteOf(static_cast<const Node*>(nullptr));
    }
    /// Whether it is exactly any of the three.
    static bool isAny(const RyNode& node) { return node.notes(RyNode::NOTE_EXACT) != 0; }
    /// Whether an exact node dies with the one reference that its owner holds.
    static bool isUnshared(const RyNode& node) { return isAny(node) && node.isHeldOnce(); }

    /// Whether nodes of other classes may die with an exact child: below it, or as attributes.
    static bool holdsOthers(const RyNode& child) {
        return child.last_ != nullptr ||
               (is<RyElement>(child) &&
                static_cast<const RyElement&>(child).attributes_ != nullptr);
    }

    // Destroy an unshared node, whose links are left as they are.
    static void destroyChild(RyNode& child) {
        if (is<RyTextNode>(child))
            destroy(static_cast<RyTextNode&>(child));
        else
            destroy(static_cast<RyElement&>(child));
    }
    template <class Node>
    static void destroy(Node& node) {
        node.last_ = nullptr;  // its children are gone
        node.Node::~Node();
        SlabMemory::release(&node, sizeof(Node));
    }

private:
    static constexpr std::uintptr_t noteOf(const RyElement*) { return 1; }
    static constexpr std::uintptr_t noteOf(const RyTextNode*) { return 2; }
    static constexpr std::uintptr_t noteOf(const RyAttr*) { return 3; }
};

}  // namespace RynCommon
