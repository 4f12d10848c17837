// Elements.
#include <RynCommon/RyDocument.h>
#include <RynCommon/RyXmlUtil.h>

#include <utility>

#include "core/ErrorLocations.h"
#include "xml/tree/AttrNodeMap.h"
#include "xml/tree/NodeCloner.h"

namespace RynCommon {

namespace {

template <class To, class From>
RyPtr<To> castPtr(RyPtr<From> from) {
    return RyPtr<To>::adopt(static_cast<To*>(from.detach()));
}

}  // namespace

void RyElement::releaseAttributes() {
    attributes_->forgetElement();
    if (attributes_->removeRef() < 1) delete attributes_;
}

unsigned int RyElement::getTypeID() const {
    return getStaticTypeID();
}

bool RyElement::isA(unsigned int id) const {
    return id == RyElement::getStaticTypeID() || RyNode::isA(id);
}

UnicodeString RyElement::getTypeName() const {
    return u"RyElement";
}

RyName RyElement::getNodeName() const {
    if (prefix_.isEmpty()) return local_;
    if (qname_.isEmpty()) qname_ = RyXmlUtil::makeQName(prefix_, local_);
    return qname_;
}

void RyElement::setPrefix(RyName prefix) {
    prefix_ = prefix;
    qname_ = RyName();
}

RyPtr<RyNode> RyElement::cloneNode(bool deep) const {
    RyPtr<RyNode> copy = NodeCloner::copyElement(*this, *getOwnerDocument());
    if (deep) NodeCloner::cloneChildren(*this, *copy);
    return copy;
}

AttrNodeMap& RyElement::attributes() const {
    if (attributes_ == nullptr) attributes_ = AttrNodeMap::make(const_cast<RyElement*>(this));
    return *attributes_;
}

RyValue RyElement::getAttribute(RyName name) const {
    const RyAttr* const attr = getAttributeNode(name);
    return attr != nullptr ? attr->getNodeValue() : RyValue();
}

RyValue RyElement::getAttributeNS(RyName uri, RyName local) const {
    const RyAttr* const attr = getAttributeNodeNS(uri, local);
    return attr != nullptr ? attr->getNodeValue() : RyValue();
}

void RyElement::setAttribute(RyName name, const RyValue& value) {
    if (RyAttr* const attr = attributes().find(name)) {
        attr->setNodeValue(value);
        return;
    }
    RyPtr<RyAttr> attr = getOwnerDocument()->createAttribute(name);
    attr->setNodeValue(value);
    attributes().append(std::move(attr));
}

void RyElement::setAttributeNS(RyName uri, RyName qname, const RyValue& value) {
    setAttributeNS(uri, RyXmlUtil::getPrefixFromQName(qname),
                   RyXmlUtil::getLocalPartFromQName(qname), value);
}

void RyElement::setAttributeNS(RyName uri, RyName prefix, RyName local, const RyValue& value) {
    if (RyAttr* const attr = attributes().findNS(uri, local)) {
        if (attr->getPrefix() != prefix) attr->setPrefix(prefix);
        attr->setNodeValue(value);
        return;
    }
    RyPtr<RyAttr> attr = getOwnerDocument()->createAttributeNS(uri, prefix, local);
    attr->setNodeValue(value);
    attributes().append(std::move(attr));
}

void RyElement::setAttributeEx(RyName uri, RyName prefix, RyName local,
                               const UnicodeString& value) {
    if (RyAttr* const attr = attributes().findNS(uri, local)) {
        if (attr->getPrefix() != prefix) attr->setPrefix(prefix);
        attr->setText(value);
        return;
    }
    RyPtr<RyAttr> attr = getOwnerDocument()->createAttributeNS(uri, prefix, local);
    attr->setText(value);
    attributes().append(std::move(attr));
}

void RyElement::removeAttribute(RyName name) {
    if (attributes_ != nullptr) attributes_->removeNamedItem(name);
}

void RyElement::removeAttributeNS(RyName uri, RyName local) {
    if (attributes_ != nullptr) attributes_->removeNamedItemNS(uri, local);
}

bool RyElement::hasAttribute(RyName name) const {
    return getAttributeNode(name) != nullptr;
}

bool RyElement::hasAttributeNS(RyName uri, RyName local) const {
    return getAttributeNodeNS(uri, local) != nullptr;
}

bool RyElement::hasAttributeLocal(RyName local) const {
    const RyAttr* attr = getFirstAttribute();
    while (attr != nullptr && attr->getLocalName() != local) attr = attr->getNextAttribute();
    return attr != nullptr;
}

bool RyElement::hasAttributes() const {
    return attributes_ != nullptr && attributes_->getLength() > 0;
}

RyAttr* RyElement::getAttributeNode(RyName name) const {
    return attributes_ != nullptr ? attributes_->find(name) : nullptr;
}

RyAttr* RyElement::getAttributeNodeNS(RyName uri, RyName local) const {
    return attributes_ != nullptr ? attributes_->findNS(uri, local) : nullptr;
}

RyPtr<RyAttr> RyElement::setAttributeNode(RyAttr* attr) {
    return castPtr<RyAttr>(attributes().setNamedItem(attr));
}

RyPtr<RyAttr> RyElement::setAttributeNodeNS(RyAttr* attr) {
    return castPtr<RyAttr>(attributes().setNamedItemNS(attr));
}

RyPtr<RyAttr> RyElement::removeAttributeNode(RyAttr* attr) {
    if (attr == nullptr)
        throwSystemError(SYSTEM_ARG_IS_NULL, LOCATION_ELEMENT_REMOVE_ATTRIBUTE_NODE, u"oldAttr");
    if (attributes_ == nullptr || !attributes_->holds(*attr)) return nullptr;
    return attributes_->remove(*attr);
}

void RyElement::getAttributeLocal(RyName local, std::vector<RyValue>* values) const {
    for (const RyAttr* attr = getFirstAttribute(); attr != nullptr; attr = attr->getNextAttribute())
        if (attr->getLocalName() == local) values->push_back(attr->getNodeValue());
}

void RyElement::getAttributeNodeLocal(RyName local, std::vector<RyPtr<RyAttr>>* attrs) const {
    for (RyAttr* attr = getFirstAttribute(); attr != nullptr; attr = attr->getNextAttribute())
        if (attr->getLocalName() == local) attrs->emplace_back(attr);
}

RyNamedNodeMap* RyElement::getAttributes() const {
    return &attributes();
}

RyAttr* RyElement::firstOfAttributes() const {
    return attributes_->first();
}

}  // namespace RynCommon
