// What the tests of trees and documents share: one-line dumps, the check of links, errors as texts.
#pragma once

#include <RynCommon/RyDocument.h>
#include <RynCommon/RyNodeIterator.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "tests/Text.h"

namespace treetest {

using RynCommon::RyAttr;
using RynCommon::RyDocument;
using RynCommon::RyDocumentFragment;
using RynCommon::RyElement;
using RynCommon::RyError;
using RynCommon::RyName;
using RynCommon::RyNode;
using RynCommon::RyNodeIterator;
using RynCommon::RyNodeList;
using RynCommon::RyPtr;
using RynCommon::RyTextNode;
using RynCommon::RyTreeIterator;
using RynCommon::RyValue;
using RynCommon::UnicodeString;

inline std::string utf8(const UnicodeString& text) {
    return RynCommon::s(text);
}
inline UnicodeString units(const std::string& text) {
    return RynCommon::u(text);
}
inline RyName name(const std::string& text) {
    return RyName(units(text));
}

/// A tree as "a[x=1](b,"text",?pi?)"; a document or fragment as its children, a fragment in "#()".
/// Loads nothing.
std::string dump(const RyNode* node);
/// What is wrong with the links below and at `root`; empty when nothing is.
std::string brokenLinks(const RyNode& root);
/// "2057 RynCommon::RyNode::removeChild: <message>" of the error that `action` throws, or "none".
std::string errorOf(const std::function<void()>& action);

/// A document of that text.
RyPtr<RyDocument> documentOf(const std::string& xml);
/// Saved without declaration and generator comment.
std::string savedXml(RyDocument& document, RyNode* node = nullptr);
std::string repeat(std::string_view piece, int times);

}  // namespace treetest
