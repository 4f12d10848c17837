// The short way into a tree of the library's own classes.
#include "xml/tree/PlainTree.h"

#include <typeinfo>

#include "core/MemoryCheck.h"
#include "core/SlabMemory.h"
#include "xml/parser/XmlParserImpl.h"
#include "xml/tree/AttrNodeMap.h"
#include "xml/tree/NodeLinks.h"

namespace RynCommon {

/// As a new-expression, with the size known where the room is cut. The constructors cannot fail.
template <class Node, class... Args>
Node* PlainTree::make(Args&&... args) {
    return ::new (SlabMemory::allocate(sizeof(Node))) Node(std::forward<Args>(args)...);
}

bool PlainTree::isPlain(const RyDocument& document, const RyNode& target) {
    if (typeid(document) != typeid(RyDocument)) return false;
    return &target == &document ||
           (typeid(target) == typeid(RyElement) && target.getOwnerDocument() == &document);
}

RyPtr<RyElement> PlainTree::makeElement(RyDocument& document, const XmlParserImpl& parser) {
    const NamespaceManager::Element& tag = parser.openElement();
    RyElement* const element =
        make<RyElement>(&document, tag.ns, tag.name->prefix, tag.name->local);
    element->setRefCount(1);
    RyPtr<RyElement> held = RyPtr<RyElement>::adopt(element);
    element->setFlag(RyNode::FLAG_LOADING, true);
    const Scanner::Position position = parser.position();
    element->setSourceLineNumber(position.line);
    element->setSourceColumnNumber(position.column);
    const AttributeList& attributes = parser.attributes();
    for (std::size_t i = 0; i < attributes.size(); ++i) {
        const ParsedAttribute& attribute = attributes[i];
        setAttribute(*element, attribute.ns, attribute.prefix, attribute.local, attribute.units());
    }
    return held;
}

void PlainTree::setAttribute(RyElement& element, RyName uri, RyName prefix, RyName local,
                             std::u16string_view value) {
    AttrNodeMap& map = element.attributes();
    const auto length = static_cast<std::int32_t>(value.size());
    if (map.findNS(uri, local) != nullptr) {
        element.setAttributeEx(uri, prefix, local, takeWhole(UnicodeString(value.data(), length)));
        return;
    }
    RyAttr* const attr = make<RyAttr>(element.getOwnerDocument(), uri, prefix, local);
    attr->setRefCount(1);
    RyPtr<RyAttr> held = RyPtr<RyAttr>::adopt(attr);
    attr->setUnits(value);
    map.append(std::move(held));
}

void PlainTree::append(RyNode& parent, RyElement& element) {
    element.setRefCount(2);
    NodeLinks::linkLast(parent, element);
}

RyNode* PlainTree::appendText(RyDocument& document, RyNode& parent, std::u16string_view text) {
    RyTextNode* const node = make<RyTextNode>(
        &document, RyCompactText(text.data(), static_cast<std::int32_t>(text.size())));
    node->setRefCount(1);
    NodeLinks::linkLast(parent, *node);
    return node;
}

}  // namespace RynCommon
