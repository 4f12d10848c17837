// Trees as texts that can be compared and shown.
#pragma once

#include <RynCommon/RyDocument.h>

#include <string>

namespace RynCommon {

/// A node by itself: kind, name, text, and attributes in their order.
std::string describeNode(const RyNode& node);

/// What XML readers have to agree on: elements, texts and processing instructions below `root`, a
/// line each. Attributes are sorted, and namespace declarations are left out: they are told by the
/// names that they serve.
std::string describeContent(RyNode& root);

/// A line of describeContent(): an element's or attribute's name.
std::string describeName(const std::string& uri, const std::string& prefix,
                         const std::string& local);

std::string toUtf8(const UnicodeString& text);

}  // namespace RynCommon
