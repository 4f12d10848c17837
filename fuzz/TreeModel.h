// What a tree of nodes has to be after edits: plain structs beside the nodes, and their comparison.
#pragma once

#include <RynCommon/RyDocument.h>

#include <memory>
#include <vector>

namespace RynCommon {

struct ModelAttr {
    RyName uri;
    RyName prefix;
    RyName local;
    UnicodeString value;

    RyName qname() const;
};

/// A node and what it should be. Holds one reference.
struct ModelNode {
    RyPtr<RyNode> node;
    ModelNode* parent = nullptr;
    std::vector<ModelNode*> children;
    std::vector<ModelAttr> attributes;
    RyName prefix;
    UnicodeString text;

    bool isElement() const { return node->getNodeType() == RyNode::ELEMENT_NODE; }
    RyElement& element() const { return static_cast<RyElement&>(*node); }
    bool isBelowOrSelf(const ModelNode& other) const;
    std::size_t placeAmongSiblings() const;

    void insert(ModelNode& child, std::size_t place);
    /// Takes this node out of its parent, if it has one.
    void takeOut();
};

/// A document, all nodes made for it, in the tree or not, and a node of another document.
class TreeModel {
public:
    TreeModel();
    TreeModel(const TreeModel&) = delete;
    TreeModel& operator=(const TreeModel&) = delete;

    RyDocument& document() { return *document_; }
    RyNode* stranger() const { return stranger_; }
    std::size_t size() const { return nodes_.size(); }
    /// The document is the first.
    ModelNode& at(std::size_t i) { return *nodes_[i]; }

    /// Enters a node, with the text, the prefix and the attributes that it has.
    ModelNode& add(RyPtr<RyNode> node);
    /// Enters the deep copy of a node, which has to have its form, and what is below it.
    void addCopy(const ModelNode& original, RyNode& copy);
    /// Gives up the reference on a node that is neither in a tree nor has children.
    void forget(ModelNode& node);

    /// Notes the element whose attributes an edit may change.
    void touch(ModelNode& element) { touched_ = &element; }
    /// That every link, count and text is as it should be, and the attributes of the element
    /// touched last.
    void check() const;
    /// The same of the attributes of all elements.
    void checkAllAttributes() const;
    /// The same of what asks for two nodes' places.
    void checkPair(const ModelNode& a, const ModelNode& b) const;
    /// The same of the lists, iterators and look-ups at one node.
    void checkBelow(const ModelNode& top) const;

private:
    // A document outlives its nodes.
    RyPtr<RyDocument> document_;
    RyPtr<RyDocument> otherDocument_;
    RyPtr<RyNode> stranger_;
    std::vector<std::unique_ptr<ModelNode>> nodes_;
    const ModelNode* touched_ = nullptr;
};

}  // namespace RynCommon
