// What the tests of trees and documents share.
#include "tests/xml/tree/TreeFixture.h"

namespace treetest {

namespace {

std::string dumpChildren(const RyNode& node) {
    std::string text;
    for (const RyNode* child = node.getFirstChildFast(); child != nullptr;
         child = child->getNextSiblingFast())
        text += (text.empty() ? "" : ",") + dump(child);
    return text;
}

std::string dumpAttributes(const RyElement& element) {
    std::string text;
    for (const RyAttr* attr = element.getFirstAttribute(); attr != nullptr;
         attr = attr->getNextAttribute())
        text += (text.empty() ? "" : ",") + utf8(attr->getNodeName().toString()) + "=" +
                utf8(attr->getText());
    return text;
}

}  // namespace

std::string dump(const RyNode* node) {
    if (node == nullptr) return "null";
    const std::string children = dumpChildren(*node);
    switch (node->getNodeType()) {
        case RyNode::TEXT_NODE:
            return "\"" + utf8(node->getText()) + "\"";
        case RyNode::PROCESSING_INSTRUCTION_NODE:
            return "?" + utf8(node->getText()) + "?";
        case RyNode::DOCUMENT_NODE:
            return children;
        case RyNode::DOCUMENT_FRAGMENT_NODE:
            return "#(" + children + ")";
        default:
            break;
    }
    const std::string attributes = dumpAttributes(static_cast<const RyElement&>(*node));
    return utf8(node->getNodeName().toString()) +
           (attributes.empty() ? "" : "[" + attributes + "]") +
           (children.empty() ? "" : "(" + children + ")");
}

std::string brokenLinks(const RyNode& root) {
    if (!root.hasChildNodesFast())
        return root.getFirstChildFast() == nullptr ? "" : "first of none";
    const RyNode* previous = nullptr;
    const RyNode* child = root.getFirstChildFast();
    for (int count = 0; child != nullptr; child = child->getNextSiblingFast()) {
        if (child->getParentNodeFast() != &root) return "parent of " + dump(child);
        if (child->getPreviousSiblingFast() != previous) return "previous of " + dump(child);
        if (child->getRefCount() < 1) return "count of " + dump(child);
        if (++count > 1'000'000) return "a ring without end";
        if (std::string below = brokenLinks(*child); !below.empty()) return below;
        previous = child;
    }
    return previous == root.getLastChildFast() ? "" : "last of " + dump(&root);
}

std::string errorOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const RyError& error) {
        return std::to_string(error.getErrorCode()) + " " + utf8(error.getSource()) + ": " +
               utf8(error.getRawMessage());
    }
    return "none";
}

RyPtr<RyDocument> documentOf(const std::string& xml) {
    RyPtr<RyDocument> document = new RyDocument;
    document->loadXml(units(xml));
    return document;
}

std::string savedXml(RyDocument& document, RyNode* node) {
    document.getSerializer()->setGenerator(UnicodeString());
    const std::string xml = utf8(document.saveXml(node));
    return xml.substr(xml.find("?>") + 2);
}

std::string repeat(std::string_view piece, int times) {
    std::string text;
    text.reserve(piece.size() * static_cast<std::size_t>(times));
    for (int i = 0; i < times; ++i) text += piece;
    return text;
}

}  // namespace treetest
