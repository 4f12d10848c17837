// The short way into a tree of the library's own classes.
#include "xml/tree/PlainTree.h"

#include <typeinfo>

#include "xml/tree/AttrNodeMap.h"
#include "xml/tree/NodeLinks.h"

namespace RynCommon {

bool PlainTree::isPlain(const RyDocument& document, const RyNode& target) {
    if (typeid(document) != typeid(RyDocument)) return false;
    return &target == &document ||
           (typeid(target) == typeid(RyElement) && target.getOwnerDocument() == &document);
}

RyPtr<RyElement> PlainTree::makeElement(RyDocument& document, RyName uri, RyName prefix,
                                        RyName local) {
    RyElement* const element = new RyElement(&document, uri, prefix, local);
    element->setRefCount(1);
    return RyPtr<RyElement>::adopt(element);
}

void PlainTree::setAttribute(RyElement& element, RyName uri, RyName prefix, RyName local,
                             const UnicodeString& value) {
    AttrNodeMap& map = element.attributes();
    if (map.findNS(uri, local) != nullptr) {
        element.setAttributeEx(uri, prefix, local, value);
        return;
    }
    RyAttr* const attr = new RyAttr(element.getOwnerDocument(), uri, prefix, local);
    attr->setRefCount(1);
    RyPtr<RyAttr> held = RyPtr<RyAttr>::adopt(attr);
    attr->setText(value);
    map.append(std::move(held));
}

void PlainTree::append(RyNode& parent, RyElement& element) {
    element.setRefCount(2);
    NodeLinks::linkLast(parent, element);
}

RyNode* PlainTree::appendText(RyDocument& document, RyNode& parent, const UnicodeString& text) {
    RyTextNode* const node = new RyTextNode(&document, text);
    node->setRefCount(1);
    NodeLinks::linkLast(parent, *node);
    return node;
}

}  // namespace RynCommon
