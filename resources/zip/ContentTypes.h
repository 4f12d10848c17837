// The content types part of a package: which part is of which type (ECMA-376-2, 10.1.2).
#pragma once

#include <functional>

#include "resources/zip/RyZipFileImpl.h"

namespace RynCommon::zip {

/// Receives the name of a member and its content type.
using TypeOverride = std::function<void(const UnicodeString& name, const UnicodeString& type)>;

/// Enters the part's defaults by extension, with its leading dot; the first of equal ones wins. The
/// overrides are reported in their order.
void readContentTypes(RyZipFileEntry& part, const RyZipLimits& limits, TextMap& defaults,
                      const TypeOverride& report);

/// From the last "." of the name on; empty when there is none.
UnicodeString extensionOf(const UnicodeString& name);

}  // namespace RynCommon::zip
