// What a URI names in the file system.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include <RynCommon/Forward.h>

namespace RynCommon::uri {

/// The path as text, each escaped byte one unit of its own: "C:\a b\c.xml", "\\srv\share\a.xml",
/// "/tmp/a". Another absolute URI as it is; a relative one without escapes.
UnicodeString toLocalPath(std::u16string_view uri);

/// The path as bytes for the file system: UTF-8, escapes decoded to bytes. None for what is no file
/// URI, for drive and UNC paths, which this system does not have, and for paths with a NUL in them.
std::optional<std::string> toSystemPath(std::u16string_view uri);

}  // namespace RynCommon::uri
