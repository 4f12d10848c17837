// Reading from a stream without its exceptions.
#pragma once

#include <cstdint>
#include <istream>

namespace RynCommon {

/// Reads at most `count` bytes and returns how many came. A stream that is set to throw has its
/// trouble in its state, too.
inline std::uint64_t readBytes(std::istream& source, char* to, std::uint64_t count) {
    try {
        source.read(to, static_cast<std::streamsize>(count));
    } catch (...) {
        return static_cast<std::uint64_t>(source.gcount());
    }
    return static_cast<std::uint64_t>(source.gcount());
}

}  // namespace RynCommon
