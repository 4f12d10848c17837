// Nodes: namespace look-ups by the rules of DOM Level 3, as climbs over the elements that enclose a
// node.
#include <RynCommon/RyDocument.h>

#include <unordered_set>

namespace RynCommon {

namespace {

/// Elements of this type do not count as declaring their own prefix.
constexpr unsigned int TYPE_WITHOUT_OWN_BINDING = 0xD27D366Cu;

const RyElement* asElement(const RyNode* node) {
    if (node == nullptr || node->getNodeType() != RyNode::ELEMENT_NODE) return nullptr;
    return static_cast<const RyElement*>(node);
}

/// The element that look-ups from `node` begin at, or null.
const RyElement* startOf(const RyNode& node) {
    switch (node.getNodeType()) {
        case RyNode::ELEMENT_NODE:
            return static_cast<const RyElement*>(&node);
        case RyNode::ATTRIBUTE_NODE:
            return static_cast<const RyAttr&>(node).getOwnerElement();
        case RyNode::DOCUMENT_NODE:
            return static_cast<const RyDocument&>(node).getDocumentElement();
        case RyNode::ENTITY_NODE:
        case RyNode::DOCUMENT_TYPE_NODE:
        case RyNode::DOCUMENT_FRAGMENT_NODE:
        case RyNode::NOTATION_NODE:
            return nullptr;
        default:
            return asElement(node.getParentNodeFast());
    }
}

const RyElement* parentElement(const RyElement& element) {
    return asElement(element.getParentNodeFast());
}

bool bindsOwnPrefix(const RyElement& element) {
    return !element.getNamespaceUri().isEmpty() && element.getTypeID() != TYPE_WITHOUT_OWN_BINDING;
}

bool declares(const RyAttr& attr, RyName prefix) {
    if (attr.getPrefix() == RN_xmlns) return attr.getLocalName() == prefix;
    return prefix.isEmpty() && attr.getLocalName() == RN_xmlns;
}

const RyAttr* findDeclaration(const RyElement& element, RyName prefix) {
    for (const RyAttr* attr = element.getFirstAttribute(); attr != nullptr;
         attr = attr->getNextAttribute())
        if (declares(*attr, prefix)) return attr;
    return nullptr;
}

RyName namespaceOf(const RyAttr& declaration) {
    return RyName(declaration.getText());
}

/// Looks for a prefix of one namespace on the way up. The first binding met of a prefix hides those
/// further up, so that each element is looked at once.
class PrefixSearch {
public:
    explicit PrefixSearch(const UnicodeString& uri) : uri_(uri) {}

    RyName find(const RyElement* element) {
        for (; element != nullptr && found_.isEmpty(); element = parentElement(*element))
            visit(*element);
        return found_;
    }

private:
    void visit(const RyElement& element) {
        if (bindsOwnPrefix(element)) bind(element.getPrefix(), element.getNamespaceUri());
        for (const RyAttr* attr = element.getFirstAttribute(); attr != nullptr;
             attr = attr->getNextAttribute()) {
            if (attr->getPrefix() == RN_xmlns) bind(attr->getLocalName(), *attr);
        }
    }
    static bool isUri(const UnicodeString& uri, const RyAttr& attr) {
        return attr.getText() == uri;
    }
    static bool isUri(const UnicodeString& uri, RyName name) { return name.toString() == uri; }
    template <class Uri>
    void bind(RyName prefix, const Uri& uri) {
        if (prefix.isEmpty() || !seen_.insert(RyNameEnum(prefix)).second) return;
        if (found_.isEmpty() && isUri(uri_, uri)) found_ = prefix;
    }

    const UnicodeString& uri_;
    std::unordered_set<std::int32_t> seen_;
    RyName found_;
};

}  // namespace

RyName RyNode::lookupNamespaceUri(RyName prefix) const {
    for (const RyElement* element = startOf(*this); element != nullptr;
         element = parentElement(*element)) {
        if (element->getPrefix() == prefix && bindsOwnPrefix(*element))
            return element->getNamespaceUri();
        if (const RyAttr* const attr = findDeclaration(*element, prefix)) return namespaceOf(*attr);
    }
    return {};
}

RyName RyNode::lookupPrefix(RyName uri) const {
    if (uri.isEmpty()) return {};
    return PrefixSearch(uri.toString()).find(startOf(*this));
}

bool RyNode::isDefaultNamespace(RyName uri) const {
    for (const RyElement* element = startOf(*this); element != nullptr;
         element = parentElement(*element)) {
        if (element->getPrefix().isEmpty()) return element->getNamespaceUri() == uri;
        if (const RyAttr* const attr = findDeclaration(*element, RyName()))
            return namespaceOf(*attr) == uri;
    }
    return false;
}

}  // namespace RynCommon
