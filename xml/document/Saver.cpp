// Writes nodes through a serializer.
//
// Classes of a formatter may answer for their names, values and children as they like, and so may a
// serializer that is not the library's. Where both are exactly the library's own, which a
// comparison of type information tells, the virtual calls are known: links and names are read where
// they lie, and texts reach the encoder as they are kept, without becoming strings. Together with
// the encoder's part (Latin1Runs.cpp, NameBytes.h) that saves documents with a third (attributes)
// to half (prose) of the instructions.
#include "xml/document/Saver.h"

#include <RynCommon/RyNamedValue.h>

#include "core/ErrorLocations.h"
#include "core/MemoryCheck.h"
#include "xml/tree/ExactNodes.h"

namespace RynCommon {

Saver::Saver(RyXmlSerializer& serializer)
    : serializer_(serializer), plain_(dynamic_cast<XmlSerializerImpl*>(&serializer)) {}

/// What a node is exactly, asked once on each visit.
enum class Saver::Kind { TEXT, ELEMENT, OTHER };

Saver::Kind Saver::kindOf(const RyNode& node) {
    if (ExactNodes::is<RyTextNode>(node)) return Kind::TEXT;
    return ExactNodes::is<RyElement>(node) ? Kind::ELEMENT : Kind::OTHER;
}

// Each node is entered before its children and left after them.
void Saver::saveTree(RyNode& root) {
    RyNode* node = &root;
    for (;;) {
        Kind kind = kindOf(*node);
        enter(*node, kind);
        if (RyNode* const child = firstChild(*node, kind)) {
            node = child;
            continue;
        }
        for (;;) {
            if (kind != Kind::TEXT) leave(*node, kind);
            if (node == &root) return;
            if (RyNode* const next = nextSibling(*node, kind)) {
                node = next;
                break;
            }
            node = node->getParentNodeFast();
            if (node == nullptr) return;
            kind = kindOf(*node);
        }
    }
}

RyNode* Saver::firstChild(const RyNode& node, Kind kind) {
    if (kind == Kind::OTHER || node.isLoading()) return node.getFirstChild();
    return node.hasChildNodesFast() ? node.getFirstChildFast() : nullptr;
}

RyNode* Saver::nextSibling(const RyNode& node, Kind kind) {
    if (kind != Kind::OTHER) {
        if (RyNode* const next = node.getNextSiblingFast()) return next;
        const RyNode* const parent = node.getParentNodeFast();
        if (parent == nullptr || !parent->isLoading()) return nullptr;
    }
    return node.getNextSibling();
}

void Saver::enter(const RyNode& node, Kind kind) {
    if (plain_ != nullptr && kind == Kind::TEXT)
        plain_->text(static_cast<const RyTextNode&>(node).getCompactData());
    else if (kind == Kind::ELEMENT)
        startElement(static_cast<const RyElement&>(node));
    else
        enterOther(node);
}

void Saver::enterOther(const RyNode& node) {
    switch (node.getNodeType()) {
        case RyNode::ELEMENT_NODE:
            startElement(static_cast<const RyElement&>(node));
            break;
        case RyNode::TEXT_NODE:
            if (node.getTypeID() == RyTextNode::getStaticTypeID())
                static_cast<const RyTextNode&>(node).copyTextTo(text_);
            else
                text_ = node.getText();
            serializer_.text(text_);
            break;
        case RyNode::PROCESSING_INSTRUCTION_NODE:
            serializer_.processingInstruction(node.getText());
            break;
        case RyNode::DOCUMENT_NODE:
        case RyNode::DOCUMENT_FRAGMENT_NODE:
            break;
        default:
            throwSystemError(SYSTEM_UNSUPPORTED_NODE, LOCATION_DOCUMENT_DO_SAVE);
    }
}

void Saver::leave(const RyNode& node, Kind kind) {
    if (kind == Kind::ELEMENT) {
        const RyElement& element = static_cast<const RyElement&>(node);
        if (plain_ != nullptr)
            plain_->endTag();
        else
            serializer_.endTag(element.RyElement::getNamespaceUri(),
                               element.RyElement::getLocalName());
    } else if (node.getNodeType() == RyNode::ELEMENT_NODE) {
        serializer_.endTag(node.getNamespaceUri(), node.getLocalName());
    }
}

void Saver::startElement(const RyElement& element) {
    if (plain_ != nullptr && ExactNodes::is<RyElement>(element))
        plain_->startTag(element.RyElement::getNamespaceUri(), element.RyElement::getPrefix(),
                         element.RyElement::getLocalName(), false);
    else
        serializer_.startTag(element.getNamespaceUri(), element.getPrefix(), element.getLocalName(),
                             false);
    for (const RyAttr* attr = element.getFirstAttribute(); attr != nullptr;
         attr = attr->getNextAttribute())
        writeAttribute(*attr);
}

void Saver::writeAttribute(const RyAttr& attr) {
    if (plain_ != nullptr && attr.holdsText() && ExactNodes::is<RyAttr>(attr)) {
        plain_->attribute(attr.RyAttr::getNamespaceUri(), attr.RyAttr::getPrefix(),
                          attr.RyAttr::getLocalName(), attr.getCompactText());
        return;
    }
    if (attr.holdsText()) {
        attr.copyTextTo(text_);
    } else {
        const RyValue value = attr.getNodeValue();
        if (value.isCompound()) {
            writeCompound(attr, *value.getNamedValueMap());
            return;
        }
        text_ = value.toString();
    }
    serializer_.attribute(attr.getNamespaceUri(), attr.getPrefix(), attr.getLocalName(), text_);
}

void Saver::writeCompound(const RyAttr& attr, const RyNamedValueMap& entries) {
    for (RyNamedValueMapIterator place(&entries); place.hasNext();) {
        const RyNamedValue& entry = place.next();
        const RyName local = takeWhole(UnicodeString(attr.getLocalName().toString())
                                           .append(u'.')
                                           .append(entry.getName().toString()));
        serializer_.attribute(attr.getNamespaceUri(), attr.getPrefix(), local, entry.toString());
    }
}

}  // namespace RynCommon
