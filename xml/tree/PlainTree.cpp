// The short way into a tree of the library's own classes.
#include "xml/tree/PlainTree.h"

#include <typeinfo>

#include "core/MemoryCheck.h"

namespace RynCommon {

bool PlainTree::isPlain(const RyDocument& document, const RyNode& target) {
    if (typeid(document) != typeid(RyDocument)) return false;
    return &target == &document ||
           (typeid(target) == typeid(RyElement) && target.getOwnerDocument() == &document);
}

RyPtr<RyElement> PlainTree::makeElement(RyDocument& document, const XmlParserImpl& parser) {
    const NamespaceManager::Element& tag = parser.openElement();
    RyPtr<RyElement> element =
        makeElement(document, tag.ns, tag.name->prefix, tag.name->local, parser.position());
    const AttributeList& attributes = parser.attributes();
    for (std::size_t i = 0; i < attributes.size(); ++i) setAttribute(*element, attributes[i]);
    return element;
}

void PlainTree::setAttribute(RyElement& element, const ParsedAttribute& attribute) {
    AttrNodeMap& map = element.attributes();
    const std::u16string_view value = attribute.units();
    if (map.findNS(attribute.ns, attribute.local) != nullptr) {
        element.setAttributeEx(
            attribute.ns, attribute.prefix, attribute.local,
            takeWhole(UnicodeString(value.data(), static_cast<std::int32_t>(value.size()))));
        return;
    }
    append(*element.getOwnerDocument(), map, attribute.ns, attribute.prefix, attribute.local,
           RyCompactText(value.data(), static_cast<std::int32_t>(value.size())));
}

}  // namespace RynCommon
