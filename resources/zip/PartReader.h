// Reading the XML parts of a package.
#pragma once

#include <functional>

#include <RynCommon/RyZipFile.h>

namespace RynCommon::zip {

/// Called at a start tag; false ends the reading.
using ElementVisitor = std::function<bool(RyXmlParser& parser)>;

/// Visits the elements of a part in document order. Reading ends quietly where the part cannot be
/// read any further, or exceeds a limit. A RyError ends it, too, but for lack of memory, which is
/// thrown.
void readElements(RyZipFileEntry& part, const RyZipLimits& limits, const ElementVisitor& visit);

/// All text of the element at whose start tag the parser stands. For the last element that a visit
/// is interested in: the parser then stands at its end tag.
UnicodeString readText(RyXmlParser& parser);

}  // namespace RynCommon::zip
