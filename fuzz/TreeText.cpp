// Texts of nodes and trees.
#include "fuzz/TreeText.h"

#include <RynCommon/RyNodeIterator.h>

#include <algorithm>
#include <vector>

namespace RynCommon {

namespace {

const RyElement* asElement(const RyNode& node) {
    return node.getNodeType() == RyNode::ELEMENT_NODE ? static_cast<const RyElement*>(&node)
                                                      : nullptr;
}

std::string nameOf(const RyNode& node) {
    return describeName(toUtf8(node.getNamespaceUri().toString()),
                        toUtf8(node.getPrefix().toString()),
                        toUtf8(node.getLocalName().toString()));
}

std::vector<std::string> attributesOf(const RyElement& element, bool withDeclarations) {
    std::vector<std::string> lines;
    for (const RyAttr* attr = element.getFirstAttribute(); attr != nullptr;
         attr = attr->getNextAttribute()) {
        const bool isDeclaration = attr->getPrefix() == RN_xmlns || attr->getNodeName() == RN_xmlns;
        if (withDeclarations || !isDeclaration)
            lines.push_back("@" + nameOf(*attr) + "=" + toUtf8(attr->getText()) + "\n");
    }
    return lines;
}

void appendContent(std::string& out, const RyNode& node) {
    const RyElement* const element = asElement(node);
    if (element == nullptr) {
        if (!node.getText().isEmpty())
            out += (node.isText() ? "\"" : "?") + toUtf8(node.getText()) + "\n";
        return;
    }
    out += "<" + nameOf(node) + "\n";
    std::vector<std::string> lines = attributesOf(*element, false);
    std::sort(lines.begin(), lines.end());
    for (const std::string& line : lines) out += line;
}

}  // namespace

std::string toUtf8(const UnicodeString& text) {
    std::string bytes;
    return text.toUTF8String(bytes);
}

std::string describeName(const std::string& uri, const std::string& prefix,
                         const std::string& local) {
    return "{" + uri + "}" + (prefix.empty() ? local : prefix + ":" + local);
}

std::string describeNode(const RyNode& node) {
    std::string out = std::to_string(node.getNodeType()) + " " + nameOf(node) + " \"" +
                      toUtf8(node.getText()) + "\" " + std::to_string(node.getSourceLineNumber()) +
                      ":" + std::to_string(node.getSourceColumnNumber()) + "\n";
    if (const RyElement* const element = asElement(node))
        for (const std::string& line : attributesOf(*element, true)) out += line;
    return out;
}

std::string describeContent(RyNode& root) {
    std::string out;
    RyTreeIterator place(&root);
    do {
        if (place.atPreVisit())
            appendContent(out, *place.getCurrentNode());
        else if (asElement(*place.getCurrentNode()) != nullptr)
            out += ">\n";
    } while (place.nextNode() != nullptr);
    return out;
}

}  // namespace RynCommon
