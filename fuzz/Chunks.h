// Sizes of the pieces that an input arrives in.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "tests/streams/ByteSources.h"

namespace RynCommon {

/// Sizes from 1 to 13, chosen by the first bytes of an input.
inline std::vector<std::size_t> chunkSizes(std::string_view bytes) {
    std::vector<std::size_t> sizes{2};
    for (const char byte : bytes.substr(0, 16))
        sizes.push_back(static_cast<std::uint8_t>(byte) % 13u + 1);
    return sizes;
}

}  // namespace RynCommon
