// The short way into a tree of the library's own classes.
//
// A formatter derives its classes from the document and its nodes, and loading goes through their
// factories and hooks: five virtual calls and as many counted pointers a node. Where document and
// nodes are exactly the library's classes these calls are known to do nothing of their own, and
// the nodes are made and linked at once, with their first references counted before anybody else
// can see them. What comes out is the same tree. Documents of prose load in a fifth less time,
// those of tiny elements, where memory is what takes the time, in a fiftieth less.
#pragma once

#include <RynCommon/RyDocument.h>

namespace RynCommon {

class PlainTree {
public:
    /// Whether what is loaded under `target`, a node of `document` or itself, may take this way.
    static bool isPlain(const RyDocument& document, const RyNode& target);
    static RyPtr<RyElement> makeElement(RyDocument& document, RyName uri, RyName prefix,
                                        RyName local);
    /// As RyElement::setAttributeEx().
    static void setAttribute(RyElement& element, RyName uri, RyName prefix, RyName local,
                             const UnicodeString& value);
    /// Links an element from makeElement() as the last child.
    static void append(RyNode& parent, RyElement& element);
    static RyNode* appendText(RyDocument& document, RyNode& parent, const UnicodeString& text);
};

}  // namespace RynCommon
