// Fuzz target of the memory streams: operations read off the input, on a stream and on the string
// that it has to behave like. The first byte chooses the block size.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "tests/streams/MemStreamModel.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::uint64_t SIZES[] = {1, 2, 3, 4, 5, 7, 8, 16, 33, 64, 100, 256, 1024};
    if (size == 0) return 0;
    const std::uint64_t growBytes = SIZES[data[0] % std::size(SIZES)];
    const std::string_view bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
    const std::string error =
        RynCommon::MemStreamModel(growBytes).run(RynCommon::Operations(bytes));
    if (!error.empty()) {
        std::fprintf(stderr, "%s\n", error.c_str());
        std::abort();
    }
    return 0;
}
