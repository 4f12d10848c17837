// Whether two trees say the same.
#pragma once

#include <RynCommon/RyNode.h>

#include <optional>

#include "Progress.h"

/// Compares names, attributes and texts in document order and describes the first difference;
/// absent when there is none. Namespace declarations do not count: names are compared by their
/// namespaces, and a declaration may be implied in one document and written in the other.
std::optional<icu::UnicodeString> findDifference(RynCommon::RyNode& first,
                                                 RynCommon::RyNode& second, Progress& progress);
