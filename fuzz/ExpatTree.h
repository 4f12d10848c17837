// A second reader, whose trees are compared with ours.
#pragma once

#include <string>

namespace RynCommon {

/// A document as expat reads it.
struct ExpatTree {
    explicit ExpatTree(const std::string& bytes);

    /// Whether expat takes the document, and what it says where it does not.
    bool accepted = false;
    std::string error;
    /// Whether there is something that the two readers treat differently on purpose: what lies
    /// outside of the document, vocabularies with namespaces of their own, and the line ends of
    /// XML 1.1.
    bool differs = false;
    /// In the form of describeContent().
    std::string content;
};

}  // namespace RynCommon
