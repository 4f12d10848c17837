// Reading what a `data:` URI (RFC 2397) carries in its own text.
#pragma once

#include "resources/uri/Fetch.h"

namespace RynCommon::uri {

/// Opens the data: base64, in which white space and escapes may stand, or text, as UTF-8 bytes with
/// its escapes decoded. Everything behind the comma is data, "#" and "?" included.
Opened openData(const RyUri& uri);

}  // namespace RynCommon::uri
