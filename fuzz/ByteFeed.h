// An input read as a sequence of choices.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace RynCommon {

/// Gives out the bytes of an input one after the other, and zeros behind its end.
class ByteFeed {
public:
    explicit ByteFeed(std::string_view bytes) : rest_(bytes) {}
    ByteFeed(const std::uint8_t* data, std::size_t size)
        : rest_(reinterpret_cast<const char*>(data), size) {}

    bool isEmpty() const { return rest_.empty(); }
    std::string_view rest() const { return rest_; }

    std::uint8_t take() {
        if (rest_.empty()) return 0;
        const auto byte = static_cast<std::uint8_t>(rest_.front());
        rest_.remove_prefix(1);
        return byte;
    }
    /// A number below `bound`, which is 1 to 256.
    std::size_t takeBelow(std::size_t bound) { return take() % bound; }
    bool takeBool() { return (take() & 1) != 0; }

private:
    std::string_view rest_;
};

}  // namespace RynCommon
