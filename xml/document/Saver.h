// Writes nodes through a serializer.
#pragma once

#include <RynCommon/RyDocument.h>

namespace RynCommon {

/// Writes a tree, or the start tag of its element alone. Texts pass through one buffer.
class Saver {
public:
    explicit Saver(RyXmlSerializer& serializer) : serializer_(serializer) {}

    void saveTree(RyNode& root);
    /// The start tag with its attributes, left open.
    void startElement(const RyElement& element);

private:
    void enter(const RyNode& node);
    void leave(const RyNode& node);
    void writeAttribute(const RyAttr& attr);
    void writeCompound(const RyAttr& attr, const RyNamedValueMap& entries);

    RyXmlSerializer& serializer_;
    UnicodeString text_;
};

}  // namespace RynCommon
