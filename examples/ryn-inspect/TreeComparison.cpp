// Comparing two trees, both walked at once.
#include "TreeComparison.h"

#include <RynCommon/RyElement.h>
#include <RynCommon/RyNodeIterator.h>

using namespace RynCommon;

namespace {

UnicodeString pathOf(const RyNode& node) {
    UnicodeString path;
    for (const RyNode* n = &node; n->getParentNodeFast() != nullptr; n = n->getParentNodeFast())
        path = u"/" + n->getNodeName().toString() + path;
    return path.isEmpty() ? u"/" : path;
}

const RyAttr* skipDeclarations(const RyAttr* attr) {
    while (attr != nullptr && attr->getNamespaceUri() == RN_NS_xmlns)
        attr = attr->getNextAttribute();
    return attr;
}

bool haveEqualNames(const RyNode& a, const RyNode& b) {
    return a.getNodeType() == b.getNodeType() && a.getNamespaceUri() == b.getNamespaceUri() &&
           a.getNodeName() == b.getNodeName();
}

std::optional<UnicodeString> compareAttributes(const RyElement& a, const RyElement& b) {
    const RyAttr* x = skipDeclarations(a.getFirstAttribute());
    const RyAttr* y = skipDeclarations(b.getFirstAttribute());
    for (; x != nullptr && y != nullptr;
         x = skipDeclarations(x->getNextAttribute()), y = skipDeclarations(y->getNextAttribute())) {
        if (!haveEqualNames(*x, *y))
            return u"attribute " + x->getNodeName().toString() + u" against " +
                   y->getNodeName().toString();
        if (x->getText() != y->getText())
            return u"value of attribute " + x->getNodeName().toString();
    }
    if (x != nullptr || y != nullptr)
        return u"attribute " + (x != nullptr ? x : y)->getNodeName().toString() +
               u" on one side only";
    return std::nullopt;
}

std::optional<UnicodeString> compareNodes(const RyNode& a, const RyNode& b) {
    if (!haveEqualNames(a, b))
        return a.getNodeName().toString() + u" against " + b.getNodeName().toString();
    if (a.isElementNode())
        return compareAttributes(static_cast<const RyElement&>(a),
                                 static_cast<const RyElement&>(b));
    if (a.getText() != b.getText()) return UnicodeString(u"text");
    return std::nullopt;
}

}  // namespace

std::optional<UnicodeString> findDifference(RyNode& first, RyNode& second, Progress& progress) {
    RyTreeIterator x(&first), y(&second);
    for (;;) {
        progress.add();
        if (x.atPreVisit() != y.atPreVisit())
            return u"children of " + pathOf(*x.getCurrentNode()->getParentNodeFast());
        if (x.atPreVisit()) {
            if (auto difference = compareNodes(*x.getCurrentNode(), *y.getCurrentNode()))
                return pathOf(*x.getCurrentNode()) + u": " + *difference;
        }
        const bool more = x.nextNode() != nullptr;
        if (more != (y.nextNode() != nullptr)) return UnicodeString(u"one tree ends early");
        if (!more) return std::nullopt;
    }
}
