// The document as the factory of its nodes.
#include <RynCommon/RyDocument.h>
#include <RynCommon/RyXmlUtil.h>

#include "xml/tree/ExactNodes.h"

namespace RynCommon {

RyPtr<RyElement> RyDocument::createElement(RyName name) {
    return ExactNodes::make<RyElement>(*this, RyName(), RyName(), name);
}

RyPtr<RyElement> RyDocument::createElementNS(RyName uri, RyName qname) {
    return createElementNS(uri, RyXmlUtil::getPrefixFromQName(qname),
                           RyXmlUtil::getLocalPartFromQName(qname));
}

RyPtr<RyElement> RyDocument::createElementNS(RyName uri, RyName prefix, RyName local) {
    return ExactNodes::make<RyElement>(*this, uri, prefix, local);
}

RyPtr<RyAttr> RyDocument::createAttribute(RyName name) {
    return ExactNodes::make<RyAttr>(*this, RyName(), RyName(), name);
}

RyPtr<RyAttr> RyDocument::createAttributeNS(RyName uri, RyName qname) {
    return createAttributeNS(uri, RyXmlUtil::getPrefixFromQName(qname),
                             RyXmlUtil::getLocalPartFromQName(qname));
}

RyPtr<RyAttr> RyDocument::createAttributeNS(RyName uri, RyName prefix, RyName local) {
    return ExactNodes::make<RyAttr>(*this, uri, prefix, local);
}

RyPtr<RyTextNode> RyDocument::createTextNode(const UnicodeString& text) {
    return ExactNodes::make<RyTextNode>(*this, RyCompactText(text));
}

RyPtr<RyPINode> RyDocument::createProcessingInstruction(const UnicodeString& content) {
    return new RyPINode(this, content);
}

RyPtr<RyDocumentFragment> RyDocument::createDocumentFragment() {
    return new RyDocumentFragment(this);
}

RyPtr<RyNode> RyDocument::createTextNodeElement(const UnicodeString& text, RyNode*) {
    return RyPtr<RyNode>::adopt(createTextNode(text).detach());
}

}  // namespace RynCommon
