// Raw deflate data (RFC 1951) into a stream.
#pragma once

#include <cstddef>
#include <ostream>

namespace RynCommon {

/// Inflates `size` bytes. True when the data's end was reached and all of it was written; what was
/// produced before an error has been written. Nothing is thrown.
bool inflateRaw(std::ostream& out, const unsigned char* data, std::size_t size);

}  // namespace RynCommon
