// Counting a tree.
#include "TreeFacts.h"

#include <RynCommon/RyElement.h>
#include <RynCommon/RyTextNode.h>

#include <algorithm>

using namespace RynCommon;

namespace {

void countValue(const RyValue& value, TreeFacts& facts) {
    if (value.isColor())
        ++facts.colors;
    else if (value.isAbsoluteLength() || value.isRelativeLength())
        ++facts.lengths;
    else if (value.isPercentage())
        ++facts.percentages;
    else if (value.isNumeric())
        ++facts.otherNumbers;
    else if (value.isName())
        ++facts.names;
    else
        ++facts.otherTexts;
}

/// A colour keyword is a name to RyValue::parse(), and a colour where one is meant.
RyValue parseProperty(const UnicodeString& text) {
    RyValue color = RyValue::parseColor(text, false);
    return color.isColor() ? color : RyValue::parse(text);
}

void countNode(const RyNode& node, TreeFacts& facts) {
    if (node.getNodeType() == RyNode::ELEMENT_NODE) {
        ++facts.elements;
        const auto& element = static_cast<const RyElement&>(node);
        for (const RyAttr* attr = element.getFirstAttribute(); attr != nullptr;
             attr = attr->getNextAttribute()) {
            ++facts.attributes;
            countValue(parseProperty(attr->getText()), facts);
        }
    } else if (node.getNodeType() == RyNode::TEXT_NODE) {
        ++facts.texts;
        facts.characters +=
            static_cast<std::uint64_t>(static_cast<const RyTextNode&>(node).getLength());
    }
}

}  // namespace

// By the links alone, and by a loop: documents may be deeper than the stack.
TreeFacts countTree(const RyNode& root) {
    TreeFacts facts;
    std::uint64_t depth = 0;
    const RyNode* node = &root;
    for (;;) {
        if (node != &root) countNode(*node, facts);
        if (const RyNode* const child = node->getFirstChildFast()) {
            if (node != &root) ++depth;
            node = child;
        } else {
            while (node != &root && node->getNextSiblingFast() == nullptr) {
                node = node->getParentNodeFast();
                if (node != &root) --depth;
            }
            if (node == &root) return facts;
            node = node->getNextSiblingFast();
        }
        if (node->isElementNode()) facts.depth = std::max(facts.depth, depth + 1);
    }
}
