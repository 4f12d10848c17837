// The relationships parts of a package: what a part, or the package itself, points to (ECMA-376-2,
// 9.3).
#pragma once

#include <functional>

#include "resources/zip/RyZipFileImpl.h"

namespace RynCommon::zip {

/// Turns the target of an internal relationship, as written, into the one that is kept.
using TargetResolver = std::function<UnicodeString(const UnicodeString& target)>;

/// Name of the member with the relationships of the part `name`; of the package, when it is empty.
UnicodeString relationshipsPartName(const UnicodeString& name);

/// Enters the relationships of a relationships part; the first of equal Ids, and of equal types,
/// wins.
void readRelationships(RyZipFileEntry& part, const RyZipLimits& limits,
                       const TargetResolver& resolve, Relationships& into);

/// The member that a reference in the part `source` means, resolved against the root of the
/// package. A reference with a scheme comes back as it is.
UnicodeString resolveTarget(const UnicodeString& source, const UnicodeString& target);

/// The strict conformance class's form of a transitional relationship type; empty when `type` is
/// none.
UnicodeString toStrictType(const UnicodeString& type);

}  // namespace RynCommon::zip
