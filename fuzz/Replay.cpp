// Runs a fuzz target over the files given, for compilers without libFuzzer: the seeds are part of
// the tests.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <memory>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int main(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        std::ifstream in(argv[i], std::ios::binary);
        if (!in) {
            std::fprintf(stderr, "cannot open %s\n", argv[i]);
            return 1;
        }
        const std::vector<char> bytes((std::istreambuf_iterator<char>(in)), {});
        // A block of exactly that size, so that a sanitizer sees the first byte read past its end.
        const auto block = std::make_unique<std::uint8_t[]>(bytes.size());
        std::copy(bytes.begin(), bytes.end(), block.get());
        std::printf("%s: %zu bytes\n", argv[i], bytes.size());
        LLVMFuzzerTestOneInput(block.get(), bytes.size());
    }
    return argc > 1 ? 0 : 1;
}
