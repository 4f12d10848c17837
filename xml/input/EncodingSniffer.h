// The encoding that the first bytes of a document tell.
#pragma once

#include "xml/input/ByteInput.h"
#include "xml/input/Encodings.h"

namespace RynCommon {

/// What the first bytes told.
struct SniffedEncoding {
    EncodingKind kind = ENCODING_UNKNOWN;  ///< ENCODING_UNKNOWN: nothing
    bool fromMark = false;                 ///< told by a byte-order mark, which has been consumed
    bool broken = false;                   ///< began like a byte-order mark and was none
    /// The name to report for it.
    const char16_t* name() const;
};

/// Looks at the first bytes, reading no more of them than needed. Only a byte-order mark is
/// consumed. `given` is the kind that the caller asked for: a "<" in one byte decides only where
/// that leaves it open.
SniffedEncoding sniffEncoding(ByteInput& bytes, EncodingKind given);

}  // namespace RynCommon
