// Writes nodes through a serializer.
#include "xml/document/Saver.h"

#include <RynCommon/RyNamedValue.h>
#include <RynCommon/RyNodeIterator.h>

#include "core/ErrorLocations.h"
#include "core/MemoryCheck.h"

namespace RynCommon {

void Saver::saveTree(RyNode& root) {
    RyTreeIterator place(&root);
    do {
        if (place.atPreVisit())
            enter(*place.getCurrentNode());
        else
            leave(*place.getCurrentNode());
    } while (place.nextNode() != nullptr);
}

void Saver::enter(const RyNode& node) {
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

void Saver::leave(const RyNode& node) {
    if (node.getNodeType() == RyNode::ELEMENT_NODE)
        serializer_.endTag(node.getNamespaceUri(), node.getLocalName());
}

void Saver::startElement(const RyElement& element) {
    serializer_.startTag(element.getNamespaceUri(), element.getPrefix(), element.getLocalName(),
                         false);
    for (const RyAttr* attr = element.getFirstAttribute(); attr != nullptr;
         attr = attr->getNextAttribute())
        writeAttribute(*attr);
}

void Saver::writeAttribute(const RyAttr& attr) {
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
