// A generated unique identifier.
#pragma once

#include <array>

#include <RynCommon/Forward.h>

namespace RynCommon {

/// Sixteen bytes that are new in the world (RFC 4122, version 4: random).
class RYNCOMMON_API RyUUID {
public:
    /// A new identifier.
    RyUUID();
    RyUUID(const RyUUID&) = default;
    RyUUID& operator=(const RyUUID&) = default;

    /// The bytes in memory order as 32 upper-case hexadecimal digits, without separators.
    UnicodeString toString() const;

    friend bool operator==(const RyUUID& a, const RyUUID& b) { return a.bytes_ == b.bytes_; }
    friend bool operator!=(const RyUUID& a, const RyUUID& b) { return a.bytes_ != b.bytes_; }

private:
    std::array<std::uint8_t, 16> bytes_{};
};

}  // namespace RynCommon
