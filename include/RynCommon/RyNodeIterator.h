// Lists of nodes and the ways through a tree.
#pragma once

#include <cstddef>
#include <vector>

#include <RynCommon/RyNode.h>

namespace RynCommon {

/// Something whose nodes an iterator can go through by position.
class RYNCOMMON_API RyNodeIterable : public RyRCObject {
public:
    static unsigned int getStaticTypeID() { return 0x548EE986u; }
    unsigned int getTypeID() const override;
    bool isA(unsigned int id) const override;
    UnicodeString getTypeName() const override;

    virtual int getLength() const = 0;
    /// The node at `index`, or null.
    virtual RyNode* item(int index) const = 0;
};

/// A list of nodes as they stood when it was made. Holds a reference on each.
class RYNCOMMON_API RyNodeList : public RyNodeIterable {
public:
    RyNodeList();
    ~RyNodeList() override;

    static unsigned int getStaticTypeID() { return 0x316E063Eu; }
    unsigned int getTypeID() const override;
    bool isA(unsigned int id) const override;
    UnicodeString getTypeName() const override;

    int getLength() const override { return static_cast<int>(nodes_.size()); }
    RyNode* item(int index) const override;
    void append(RyNode* node) { nodes_.emplace_back(node); }

private:
    std::vector<RyPtr<RyNode>> nodes_;
};

/// A cursor between nodes: over an iterable by position, or over the descendants of a root in
/// document order, loading lazily where the tree does. The node that next or previous gave last may
/// be removed only after moving on. What it goes through must outlive it.
class RYNCOMMON_API RyNodeIterator {
public:
    explicit RyNodeIterator(const RyNodeIterable* iterable);
    /// The descendants of `root`; stands before `start` (null: before the first descendant).
    RyNodeIterator(const RyNode* root, const RyNode* start);

    bool hasNextNode() const;
    /// The node after the cursor, which then moves past it; null at the end.
    RyNode* nextNode();
    bool hasPreviousNode() const;
    RyNode* previousNode();
    void setToStart();
    void setToEnd();

private:
    RyNode* following() const;
    RyNode* preceding() const;

    const RyNodeIterable* iterable_ = nullptr;
    int position_ = 0;
    RyNode* root_ = nullptr;
    RyNode* before_ = nullptr;  // last node passed in document order; the root itself at the start
};

/// Visits each node of a tree twice: before its children and after them. Starts at the root's
/// pre-visit and ends at its post-visit. Loads lazily where the tree does.
class RYNCOMMON_API RyTreeIterator {
public:
    enum TraversalOrder : std::int32_t { PRE_VISIT = 0, POST_VISIT = 1 };

    explicit RyTreeIterator(RyNode* root);

    RyNode* getRootNode() const { return root_; }
    RyNode* getCurrentNode() const { return current_; }
    /// Which visit of the current node this is.
    TraversalOrder getTraversalOrder() const { return order_; }
    bool atPreVisit() const { return order_ == PRE_VISIT; }
    bool atPostVisit() const { return order_ == POST_VISIT; }
    bool hasNextNode() const;
    /// Moves to the next visit and gives its node; null, unmoved, at the end.
    RyNode* nextNode();
    bool hasPreviousNode() const;
    RyNode* previousNode();

    friend bool operator==(const RyTreeIterator& a, const RyTreeIterator& b) {
        return a.current_ == b.current_ && a.order_ == b.order_;
    }
    friend bool operator!=(const RyTreeIterator& a, const RyTreeIterator& b) { return !(a == b); }

private:
    RyNode* root_;
    RyNode* current_;
    TraversalOrder order_ = PRE_VISIT;
};

}  // namespace RynCommon
