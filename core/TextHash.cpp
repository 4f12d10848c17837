// The seed of the text hash.
#include "core/TextHash.h"

#include <chrono>
#include <exception>
#include <random>

namespace RynCommon {

namespace {

std::uint64_t makeSeed() noexcept {
    // Where the process lies in memory and when it started stand in for a random device that cannot
    // be read.
    static const char anchor = 0;
    std::uint64_t seed = reinterpret_cast<std::uintptr_t>(&anchor);
    seed ^= static_cast<std::uint64_t>(std::chrono::steady_clock::now().time_since_epoch().count());
    try {
        std::random_device device;
        seed ^= std::uint64_t{device()} << 32 | device();
    } catch (const std::exception&) {
        seed = detail::mixText(seed, detail::TEXT_HASH_STEP);
    }
    return seed;
}

}  // namespace

std::uint64_t textHashSeed() noexcept {
    static const std::uint64_t seed = makeSeed();
    return seed;
}

}  // namespace RynCommon
