// Copies of nodes.
#include "xml/tree/NodeCloner.h"

#include <RynCommon/RyDocument.h>

#include <utility>
#include <vector>

#include "xml/tree/AttrNodeMap.h"

namespace RynCommon {

namespace {

template <class T>
RyPtr<RyNode> asNode(RyPtr<T> node) {
    return RyPtr<RyNode>::adopt(node.detach());
}

RyPtr<RyNode> importNode(const RyNode& node, RyDocument& document) {
    switch (node.getNodeType()) {
        case RyNode::ELEMENT_NODE:
            return NodeCloner::copyElement(static_cast<const RyElement&>(node), document);
        case RyNode::TEXT_NODE:
            return asNode(document.createTextNode(node.getText()));
        case RyNode::PROCESSING_INSTRUCTION_NODE:
            return asNode(document.createProcessingInstruction(node.getText()));
        case RyNode::DOCUMENT_FRAGMENT_NODE:
            return asNode(document.createDocumentFragment());
        default:
            return nullptr;
    }
}

/// Walks the originals in document order beside a stack of the copies that are open. A copy that
/// its new parent does not take is dropped together with what would come below it.
template <class Copy>
void copyChildren(const RyNode& from, RyNode& to, Copy copy) {
    std::vector<RyNode*> open{&to};
    const RyNode* parent = &from;
    const RyNode* node = from.getFirstChild();
    for (;;) {
        if (node == nullptr) {
            if (parent == &from) return;
            node = parent->getNextSibling();
            parent = parent->getParentNodeFast();
            open.pop_back();
            continue;
        }
        const RyPtr<RyNode> made = copy(*node);
        if (made != nullptr) open.back()->appendChild(made);
        if (made != nullptr && made->getParentNodeFast() != nullptr && node->hasChildNodes()) {
            open.push_back(made);
            parent = node;
            node = node->getFirstChild();
        } else {
            node = node->getNextSibling();
        }
    }
}

}  // namespace

RyPtr<RyNode> NodeCloner::copyElement(const RyElement& element, RyDocument& document) {
    RyPtr<RyElement> copy = document.createElementNS(element.getNamespaceUri(), element.getPrefix(),
                                                     element.getLocalName());
    copy->setSourceLineNumber(element.getElementLineNumber());
    copy->setSourceColumnNumber(element.getElementColumnNumber());
    copy->setFlag(RyNode::FLAG_COMPLEMENTAL, element.getFlag(RyNode::FLAG_COMPLEMENTAL));
    for (const RyAttr* attr = element.getFirstAttribute(); attr != nullptr;
         attr = attr->getNextAttribute()) {
        RyPtr<RyAttr> made = document.createAttributeNS(attr->getNamespaceUri(), attr->getPrefix(),
                                                        attr->getLocalName());
        made->setNodeValue(attr->getNodeValue());
        copy->attributes().append(std::move(made));
    }
    return asNode(std::move(copy));
}

void NodeCloner::cloneChildren(const RyNode& from, RyNode& to) {
    copyChildren(from, to, [](const RyNode& node) { return node.cloneNode(false); });
}

void NodeCloner::importChildren(const RyNode& from, RyNode& to, RyDocument& document) {
    copyChildren(from, to, [&](const RyNode& node) { return importNode(node, document); });
}

}  // namespace RynCommon
