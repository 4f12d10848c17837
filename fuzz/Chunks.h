// Inputs that arrive in pieces.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <streambuf>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace RynCommon {

/// Hands out pieces of the sizes given, over and over again; no more is ready at a time.
class ChunkBuf : public std::streambuf {
public:
    ChunkBuf(std::string bytes, std::vector<std::size_t> sizes)
        : bytes_(std::move(bytes)), sizes_(std::move(sizes)) {}

protected:
    int_type underflow() override {
        const std::size_t size = sizes_[turn_++ % sizes_.size()];
        const std::size_t count = std::min(size, bytes_.size() - position_);
        if (count == 0) return traits_type::eof();
        char* const start = bytes_.data() + position_;
        setg(start, start, start + count);
        position_ += count;
        return traits_type::to_int_type(*start);
    }

private:
    std::string bytes_;
    std::vector<std::size_t> sizes_;
    std::size_t position_ = 0;
    std::size_t turn_ = 0;
};

/// Sizes from 1 to 13, chosen by the first bytes of an input.
inline std::vector<std::size_t> chunkSizes(std::string_view bytes) {
    std::vector<std::size_t> sizes{2};
    for (const char byte : bytes.substr(0, 16))
        sizes.push_back(static_cast<std::uint8_t>(byte) % 13u + 1);
    return sizes;
}

}  // namespace RynCommon
