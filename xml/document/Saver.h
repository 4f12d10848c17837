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
    enum class Kind;

    static Kind kindOf(const RyNode& node);
    static RyNode* firstChild(const RyNode& node, Kind kind);
    static RyNode* nextSibling(const RyNode& node, Kind kind);
    void enter(const RyNode& node, Kind kind);
    void enterOther(const RyNode& node);
    void leave(const RyNode& node, Kind kind);
    void writeAttribute(const RyAttr& attr);
    void writeCompound(const RyAttr& attr, const RyNamedValueMap& entries);

    RyXmlSerializer& serializer_;
    XmlSerializerImpl* plain_;  // the same where it is the library's own
    UnicodeString text_;
};

}  // namespace RynCommon
