// Writes nodes through a serializer.
#pragma once

#include <RynCommon/RyDocument.h>

#include "xml/serializer/XmlSerializerImpl.h"

namespace RynCommon {

/// Writes a tree, or the start tag of its element alone.
class Saver {
public:
    explicit Saver(RyXmlSerializer& serializer);

    void saveTree(RyNode& root);
    /// The start tag with its attributes, left open.
    void startElement(const RyElement& element);

private:
    RyNode* firstChild(const RyNode& node) const;
    RyNode* nextSibling(const RyNode& node) const;
    void enter(const RyNode& node);
    void enterOther(const RyNode& node);
    void leave(const RyNode& node);
    void writeAttribute(const RyAttr& attr);
    void writeCompound(const RyAttr& attr, const RyNamedValueMap& entries);

    RyXmlSerializer& serializer_;
    XmlSerializerImpl* plain_;  // the same where it is the library's own
    UnicodeString text_;
};

}  // namespace RynCommon
