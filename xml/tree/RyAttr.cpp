// Attributes.
#include <RynCommon/RyDocument.h>
#include <RynCommon/RyXmlUtil.h>

#include "xml/tree/AttrNodeMap.h"

namespace RynCommon {

unsigned int RyAttr::getTypeID() const {
    return getStaticTypeID();
}

bool RyAttr::isA(unsigned int id) const {
    return id == RyAttr::getStaticTypeID() || RyNode::isA(id);
}

UnicodeString RyAttr::getTypeName() const {
    return u"RyAttr";
}

RyName RyAttr::getNodeName() const {
    if (prefix_.isEmpty()) return local_;
    if (qname_.isEmpty()) qname_ = RyXmlUtil::makeQName(prefix_, local_);
    return qname_;
}

void RyAttr::setPrefix(RyName prefix) {
    prefix_ = prefix;
    qname_ = RyName();
    if (map_ != nullptr) map_->nameChanged();
}

RyValue RyAttr::getNodeValue() const {
    return holdsText() ? RyValue(text_.toString()) : value_;
}

void RyAttr::setNodeValue(const RyValue& value) {
    if (value.isUnknownString()) {
        setText(value.getStringValue());
        return;
    }
    value_ = value;
    text_ = RyCompactText();
    setNotes(NOTE_TEXT_VALUE, 0);
}

UnicodeString RyAttr::getText() const {
    return holdsText() ? text_.toString() : value_.toString();
}

void RyAttr::setText(const UnicodeString& text) {
    setUnits({text.getBuffer(), static_cast<std::size_t>(text.length())});
}

void RyAttr::setUnits(std::u16string_view text) {
    text_ = RyCompactText(text.data(), static_cast<std::int32_t>(text.size()));
    if (!value_.isNull()) value_ = RyValue();
    setNotes(NOTE_TEXT_VALUE, NOTE_TEXT_VALUE);
}

void RyAttr::copyTextTo(UnicodeString& text) const {
    if (holdsText())
        text_.copyTo(text);
    else
        text = value_.toString();
}

RyPtr<RyNode> RyAttr::cloneNode(bool) const {
    RyPtr<RyAttr> copy = getOwnerDocument()->createAttributeNS(uri_, prefix_, local_);
    copy->setNodeValue(getNodeValue());
    return RyPtr<RyNode>::adopt(copy.detach());
}

RyElement* RyAttr::getOwnerElement() const {
    return map_ != nullptr ? map_->element() : nullptr;
}

RyAttr* RyAttr::getNextAttribute() const {
    fetchAhead();
    return map_ != nullptr ? map_->next(*this) : nullptr;
}

}  // namespace RynCommon
