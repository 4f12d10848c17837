// Member headers of gzip data (RFC 1952).
#pragma once

#include <cstddef>
#include <streambuf>

namespace RynCommon::streams {

constexpr unsigned char GZIP_MAGIC[2] = {0x1F, 0x8B};

/// What was found where a member header may stand.
struct GzipHeader {
    /// Whether it was one; the source then stands behind it, or at its end if that comes first.
    bool accepted = false;
    /// The bytes taken from the source when it was none.
    char taken[4] = {};
    std::size_t takenCount = 0;
};

/// Reads a member header. The deflate method is accepted, with no flag set that the format
/// reserves. The header's own checksum is skipped. A source that throws has ended.
GzipHeader readGzipHeader(std::streambuf& source);

}  // namespace RynCommon::streams
