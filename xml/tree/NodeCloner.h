// Copies of nodes and of what lies below them.
#pragma once

#include <RynCommon/RyElement.h>

namespace RynCommon {

class NodeCloner {
public:
    /// A copy made by the factories of `document`, with the attributes and without children.
    static RyPtr<RyNode> copyElement(const RyElement& element, RyDocument& document);
    /// Appends copies of all that lies below `from`, each node's own cloneNode(), to `to`.
    static void cloneChildren(const RyNode& from, RyNode& to);
    /// The same with copies that belong to `document`.
    static void importChildren(const RyNode& from, RyNode& to, RyDocument& document);
};

}  // namespace RynCommon
