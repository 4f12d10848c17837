// The model of trees, and how nodes are compared with it.
#include "fuzz/TreeModel.h"

#include <RynCommon/RyNodeIterator.h>
#include <RynCommon/RyXmlUtil.h>

#include <algorithm>

#include "fuzz/Require.h"

namespace RynCommon {

namespace {

RyNode* nodeOf(const ModelNode* node) {
    return node != nullptr ? node->node.get() : nullptr;
}

void appendDescendants(const ModelNode& top, std::vector<const ModelNode*>& list) {
    for (const ModelNode* child : top.children) {
        list.push_back(child);
        appendDescendants(*child, list);
    }
}

std::vector<const ModelNode*> descendantsOf(const ModelNode& top) {
    std::vector<const ModelNode*> list;
    appendDescendants(top, list);
    return list;
}

const ModelNode& rootOf(const ModelNode& node) {
    const ModelNode* root = &node;
    while (root->parent != nullptr) root = root->parent;
    return *root;
}

int depthOf(const ModelNode& node) {
    int depth = 0;
    for (const ModelNode* at = node.parent; at != nullptr; at = at->parent) ++depth;
    return depth;
}

void checkLinks(const ModelNode& model) {
    const RyNode& node = *model.node;
    const auto& children = model.children;
    RyNode* const first = children.empty() ? nullptr : nodeOf(children.front());
    RyNode* const last = children.empty() ? nullptr : nodeOf(children.back());
    require(node.getParentNode() == nodeOf(model.parent), "parent");
    require(node.getFirstChild() == first && node.getFirstChildFast() == first, "first child");
    require(node.getLastChild() == last && node.getLastChildFast() == last, "last child");
    require(node.hasChildNodes() == !children.empty(), "whether there are children");
    require(node.getChildNodeCount() == static_cast<int>(children.size()), "number of children");
    for (std::size_t i = 0; i < children.size(); ++i) {
        const RyNode& child = *children[i]->node;
        RyNode* const next = i + 1 < children.size() ? nodeOf(children[i + 1]) : nullptr;
        RyNode* const previous = i > 0 ? nodeOf(children[i - 1]) : nullptr;
        require(child.getNextSibling() == next && child.getNextSiblingFast() == next, "next");
        require(child.getPreviousSibling() == previous, "previous");
    }
    if (model.parent == nullptr)
        require(node.getNextSibling() == nullptr && node.getPreviousSibling() == nullptr,
                "siblings without a parent");
}

void checkAttribute(const ModelAttr& model, const RyAttr& attr, const RyNode& owner) {
    require(attr.getNamespaceUri() == model.uri && attr.getPrefix() == model.prefix &&
                attr.getLocalName() == model.local && attr.getNodeName() == model.qname(),
            "name of an attribute");
    require(attr.getText() == model.value, "value of an attribute");
    require(attr.getOwnerElement() == &owner, "owner of an attribute");
}

/// Finds the first attribute that `matches` in the model and compares it with `found`.
template <class Test>
void checkLookUp(const ModelNode& model, Test matches, const RyAttr* found, const char* what) {
    const auto at = std::find_if(model.attributes.begin(), model.attributes.end(), matches);
    const RyAttr* attr = model.element().getFirstAttribute();
    for (auto i = model.attributes.begin(); i != at; ++i) attr = attr->getNextAttribute();
    require(found == attr, what);
}

void checkAttributes(const ModelNode& model) {
    const RyElement& element = model.element();
    const RyAttr* attr = element.getFirstAttribute();
    for (const ModelAttr& expected : model.attributes) {
        require(attr != nullptr, "an attribute is lost");
        checkAttribute(expected, *attr, element);
        attr = attr->getNextAttribute();
    }
    require(attr == nullptr, "an attribute too many");
    const int count = static_cast<int>(model.attributes.size());
    require(element.getAttributes()->getLength() == count, "number of attributes");
    require(element.getAttributes()->item(count) == nullptr, "an attribute behind the last");
    for (const ModelAttr& wanted : model.attributes) {
        checkLookUp(
            model, [&](const ModelAttr& a) { return a.qname() == wanted.qname(); },
            element.getAttributeNode(wanted.qname()), "look-up by name");
        checkLookUp(
            model,
            [&](const ModelAttr& a) { return a.uri == wanted.uri && a.local == wanted.local; },
            element.getAttributeNodeNS(wanted.uri, wanted.local), "look-up by namespace");
    }
}

UnicodeString innerTextOf(const ModelNode& top) {
    if (top.children.empty() || top.node->isText()) return top.text;
    UnicodeString text;
    for (const ModelNode* node : descendantsOf(top))
        if (node->node->isText()) text += node->text;
    return text;
}

void checkIterator(const ModelNode& top, const std::vector<const ModelNode*>& expected) {
    RyNodeIterator place = top.node->getIterator();
    for (const ModelNode* node : expected) require(place.nextNode() == nodeOf(node), "iterator");
    require(!place.hasNextNode() && place.nextNode() == nullptr, "iterator's end");
    for (auto at = expected.rbegin(); at != expected.rend(); ++at)
        require(place.previousNode() == nodeOf(*at), "iterator, backwards");
    require(!place.hasPreviousNode(), "iterator's start");
}

void visit(const ModelNode& node, RyTreeIterator& place) {
    require(place.atPreVisit() && place.getCurrentNode() == nodeOf(&node), "visit before");
    for (const ModelNode* child : node.children) {
        place.nextNode();
        visit(*child, place);
    }
    place.nextNode();
    require(place.atPostVisit() && place.getCurrentNode() == nodeOf(&node), "visit after");
}

const ModelAttr* declarationOn(const ModelNode& element, RyName prefix) {
    for (const ModelAttr& attr : element.attributes) {
        const bool isMeant = attr.prefix == RN_xmlns ? attr.local == prefix
                                                     : prefix.isEmpty() && attr.local == RN_xmlns;
        if (isMeant) return &attr;
    }
    return nullptr;
}

/// The element that a namespace look-up starts at.
const ModelNode* scopeOf(const ModelNode& node) {
    if (node.isElement()) return &node;
    if (node.node->getNodeType() == RyNode::DOCUMENT_FRAGMENT_NODE) return nullptr;
    if (node.node->getNodeType() != RyNode::DOCUMENT_NODE) return node.parent;
    for (const ModelNode* child : node.children)
        if (child->isElement()) return child;
    return nullptr;
}

RyName namespaceAt(const ModelNode& node, RyName prefix) {
    for (const ModelNode* at = scopeOf(node); at != nullptr && at->isElement(); at = at->parent) {
        const RyName uri = at->node->getNamespaceUri();
        if (!uri.isEmpty() && at->prefix == prefix) return uri;
        if (const ModelAttr* const attr = declarationOn(*at, prefix)) return RyName(attr->value);
    }
    return {};
}

}  // namespace

RyName ModelAttr::qname() const {
    return RyXmlUtil::makeQName(prefix, local);
}

bool ModelNode::isBelowOrSelf(const ModelNode& other) const {
    const ModelNode* at = this;
    while (at != nullptr && at != &other) at = at->parent;
    return at != nullptr;
}

std::size_t ModelNode::placeAmongSiblings() const {
    return static_cast<std::size_t>(
        std::find(parent->children.begin(), parent->children.end(), this) -
        parent->children.begin());
}

void ModelNode::insert(ModelNode& child, std::size_t place) {
    children.insert(children.begin() + static_cast<std::ptrdiff_t>(place), &child);
    child.parent = this;
}

void ModelNode::takeOut() {
    if (parent == nullptr) return;
    parent->children.erase(parent->children.begin() +
                           static_cast<std::ptrdiff_t>(placeAmongSiblings()));
    parent = nullptr;
}

TreeModel::TreeModel() : document_(new RyDocument), otherDocument_(new RyDocument) {
    stranger_ = otherDocument_->createElement(RyName(u"stranger")).get();
    add(RyPtr<RyNode>(document_.get()));
}

ModelNode& TreeModel::add(RyPtr<RyNode> node) {
    auto model = std::make_unique<ModelNode>();
    model->node = std::move(node);
    model->prefix = model->node->getPrefix();
    model->text = model->node->getText();
    if (model->isElement())
        for (const RyAttr* attr = model->element().getFirstAttribute(); attr != nullptr;
             attr = attr->getNextAttribute())
            model->attributes.push_back({attr->getNamespaceUri(), attr->getPrefix(),
                                         attr->getLocalName(), attr->getText()});
    nodes_.push_back(std::move(model));
    return *nodes_.back();
}

void TreeModel::addCopy(const ModelNode& original, RyNode& copy) {
    ModelNode& model = add(RyPtr<RyNode>(&copy));
    require(copy.getNodeType() == original.node->getNodeType() && &copy != original.node.get() &&
                copy.getNodeName() == original.node->getNodeName() &&
                copy.getNamespaceUri() == original.node->getNamespaceUri(),
            "another kind of node is copied");
    // Compared as the original has to be; check() does it.
    model.text = original.text;
    model.prefix = original.prefix;
    model.attributes = original.attributes;
    RyNode* child = copy.getFirstChild();
    for (const ModelNode* from : std::vector<ModelNode*>(original.children)) {
        require(child != nullptr, "a child is not copied");
        const std::size_t place = size();
        addCopy(*from, *child);
        at(place).parent = &model;
        model.children.push_back(&at(place));
        child = child->getNextSibling();
    }
    require(child == nullptr, "a child too many is copied");
}

void TreeModel::forget(ModelNode& node) {
    if (touched_ == &node) touched_ = nullptr;
    std::erase_if(nodes_, [&](const auto& held) { return held.get() == &node; });
}

void TreeModel::check() const {
    for (const auto& model : nodes_) {
        const RyNode& node = *model->node;
        checkLinks(*model);
        require(node.getPrefix() == model->prefix, "prefix");
        require(node.getText() == model->text, "text");
        const bool isDocument = model == nodes_.front();
        require(node.getOwnerDocument() == (isDocument ? nullptr : document_.get()), "owner");
        const int holders = (model->parent != nullptr ? 2 : 1) + (isDocument ? 1 : 0);
        require(node.getRefCount() == holders, "number of references");
    }
    if (touched_ != nullptr) checkAttributes(*touched_);
}

void TreeModel::checkAllAttributes() const {
    for (const auto& model : nodes_)
        if (model->isElement()) checkAttributes(*model);
}

void TreeModel::checkPair(const ModelNode& a, const ModelNode& b) const {
    const bool isBelow = a.isBelowOrSelf(b);
    const bool isAbove = b.isBelowOrSelf(a);
    require(a.node->isDescendantOrSelfOf(b.node) == isBelow, "descendant or self");
    require(a.node->isDescendantOf(b.node) == (isBelow && &a != &b), "descendant");

    const std::vector<const ModelNode*> order = descendantsOf(rootOf(a));
    const auto placeA = std::find(order.begin(), order.end(), &a);
    const auto placeB = std::find(order.begin(), order.end(), &b);
    const bool areParted = &rootOf(a) == &rootOf(b) && !isBelow && !isAbove;
    require(a.node->isPrecedingOf(b.node) == (areParted && placeA < placeB), "preceding");
    require(a.node->isFollowingOf(b.node) == (areParted && placeB < placeA), "following");

    const ModelNode* common = &a;
    while (common != nullptr && !b.isBelowOrSelf(*common)) common = common->parent;
    require(a.node->getCommonAncestorOrSelf(b.node) == nodeOf(common), "common ancestor or self");
    const ModelNode* above = a.parent;
    while (above != nullptr && (above == &b || !b.isBelowOrSelf(*above))) above = above->parent;
    require(a.node->getCommonAncestor(b.node) == nodeOf(above), "common ancestor");
}

void TreeModel::checkBelow(const ModelNode& top) const {
    const RyNode& node = *top.node;
    const std::vector<const ModelNode*> expected = descendantsOf(top);
    const RyPtr<RyNodeList> list = node.getDescendantNodes();
    require(list->getLength() == static_cast<int>(expected.size()), "number of descendants");
    for (std::size_t i = 0; i < expected.size(); ++i)
        require(list->item(static_cast<int>(i)) == nodeOf(expected[i]), "descendants");
    checkIterator(top, expected);
    RyTreeIterator place(top.node);
    visit(top, place);
    require(!place.hasNextNode() && place.nextNode() == nullptr, "end of the visits");

    require(node.getInnerText() == innerTextOf(top), "inner text");
    require(node.getNodeDepth() == depthOf(top), "depth");
    if (top.parent != nullptr) {
        const std::size_t before = top.placeAmongSiblings();
        const std::size_t after = top.parent->children.size() - before - 1;
        require(node.countPrecedingSiblings() == static_cast<int>(before), "siblings before");
        require(node.countFollowingSiblings() == static_cast<int>(after), "siblings behind");
    }
    for (const RyName prefix : {RyName(), RyName(u"p"), RyName(u"q")})
        require(node.lookupNamespaceUri(prefix) == namespaceAt(top, prefix), "namespace");
}

}  // namespace RynCommon
