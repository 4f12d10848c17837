// Qualified names as the bytes of the output.
//
// A document is written with few names, each many times. Encoding "fo:block" anew each time means
// two look-ups of texts and three runs for the encoder; the bytes kept here are copied by one or
// two fixed moves.
#pragma once

#include <array>
#include <cstdint>
#include <cstring>

#include <RynCommon/RyName.h>

namespace RynCommon {

/// The latest encoded names, a cache that forgets. An entry is a cache line.
class NameBytes {
public:
    /// Longer names are not kept.
    static constexpr std::size_t MOST = 55;

    struct alignas(64) Entry {
        std::uint64_t key = 0;  // never that of a name that is kept: there is no empty local name
        std::uint8_t length = 0;
        char bytes[MOST];

        /// Copies the name, and some bytes after it; `out` has room for MOST.
        char* append(char* out) const {
            std::memcpy(out, bytes, FEW);
            if (length > FEW) std::memcpy(out + FEW, bytes + FEW, MOST - FEW);
            return out + length;
        }

    private:
        static constexpr std::size_t FEW = 16;
    };

    void clear() {
        for (Entry& entry : entries_) entry.key = 0;
    }

    /// The entry of the name; where it is not kept, one of key 0 or of another name that the
    /// caller fills.
    Entry& find(RyName prefix, RyName localName) {
        const std::uint64_t key = keyOf(prefix, localName);
        Entry* const pair = &entries_[2 * (key * 0x9E3779B97F4A7C15u >> (64 - PAIR_BITS))];
        if (pair[0].key == key) return pair[0];
        // The older of two names with the same hash makes way.
        if (pair[1].key != key && pair[0].key != 0) std::swap(pair[0], pair[1]);
        return pair[1].key == key ? pair[1] : pair[0];
    }

    static std::uint64_t keyOf(RyName prefix, RyName localName) {
        return static_cast<std::uint64_t>(RyNameEnum(prefix)) << 32 |
               static_cast<std::uint32_t>(RyNameEnum(localName));
    }

private:
    static constexpr int PAIR_BITS = 7;

    std::array<Entry, std::size_t{2} << PAIR_BITS> entries_;
};

}  // namespace RynCommon
