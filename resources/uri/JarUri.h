// Members of zip archives, named by `jar:` URIs.
//
// "jar:" + archive + "!/" + member. The archive is a URI again and may be a `jar:` URI itself, so
// the text is split at its last "!/": in `jar:jar:A!/B!/C` the outer archive is A. Every level
// costs one "jar:" in front, which bounds the recursion before it begins.
#pragma once

#include <cstdint>
#include <memory>

#include <RynCommon/RyMemStream.h>

#include "resources/uri/Fetch.h"

namespace RynCommon::uri {

/// Opens the member, within RyZipFile's default limits. The stream needs the archive no more.
Opened openJar(const RyUri& uri);

/// What `source` still has, in memory; null when that is more than `limit` bytes.
std::unique_ptr<RyMemStream> copyArchive(std::istream& source, std::uint64_t limit);

}  // namespace RynCommon::uri
