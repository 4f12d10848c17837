// gunzip side by side with zlib's gzread(), into buffers of the same size, of text, of markup and
// of data that hardly compresses. The files are in the page cache.
#include <RynCommon/RyGzipStream.h>
#include <benchmark/benchmark.h>
#include <zlib.h>

#include <fstream>
#include <vector>

#include "BenchData.h"

namespace RynCommon {
namespace {

constexpr std::size_t SIZE = 32'000'000;

struct Files {
    BenchFile markup = makeGzip(makeMarkup(SIZE));
    BenchFile noise = makeGzip(makeNoise(SIZE));
};

const Files& getFiles() {
    static const Files files;
    return files;
}

using File = BenchFile Files::*;

const char* pathOf(File file) {
    return (getFiles().*file).getPath().c_str();
}

void finish(benchmark::State& state, std::uint64_t bytes) {
    if (bytes != SIZE * static_cast<std::uint64_t>(state.iterations()))
        state.SkipWithError("bytes are missing");
    state.SetBytesProcessed(static_cast<std::int64_t>(bytes));
}

std::uint64_t readToEnd(std::istream& in, std::vector<char>& buffer) {
    std::uint64_t bytes = 0;
    const auto size = static_cast<std::streamsize>(buffer.size());
    while (in.read(buffer.data(), size) || in.gcount() > 0) {
        bytes += static_cast<std::uint64_t>(in.gcount());
    }
    return bytes;
}

void readOurFile(benchmark::State& state, File file) {
    std::vector<char> buffer(static_cast<std::size_t>(state.range(0)));
    std::uint64_t bytes = 0;
    for (auto _ : state) {
        RyGzipStream in(pathOf(file));
        bytes += readToEnd(in, buffer);
    }
    finish(state, bytes);
}

void readOurStream(benchmark::State& state, File file) {
    std::vector<char> buffer(static_cast<std::size_t>(state.range(0)));
    std::uint64_t bytes = 0;
    for (auto _ : state) {
        std::ifstream source(pathOf(file), std::ios::binary);
        RyGzipStream in(source);
        bytes += readToEnd(in, buffer);
    }
    finish(state, bytes);
}

void readGzread(benchmark::State& state, File file) {
    std::vector<char> buffer(static_cast<std::size_t>(state.range(0)));
    std::uint64_t bytes = 0;
    for (auto _ : state) {
        const gzFile in = gzopen(pathOf(file), "rb");
        int got;
        while ((got = gzread(in, buffer.data(), static_cast<unsigned>(buffer.size()))) > 0) {
            bytes += static_cast<std::uint64_t>(got);
        }
        gzclose(in);
    }
    finish(state, bytes);
}

void setSizes(benchmark::internal::Benchmark* rows) {
    rows->Unit(benchmark::kMillisecond)->Arg(4096)->Arg(16'384)->Arg(65'536);
}

BENCHMARK_CAPTURE(readOurFile, markup, &Files::markup)->Apply(setSizes);
BENCHMARK_CAPTURE(readOurStream, markup, &Files::markup)->Apply(setSizes);
BENCHMARK_CAPTURE(readGzread, markup, &Files::markup)->Apply(setSizes);
BENCHMARK_CAPTURE(readOurFile, noise, &Files::noise)->Apply(setSizes);
BENCHMARK_CAPTURE(readOurStream, noise, &Files::noise)->Apply(setSizes);
BENCHMARK_CAPTURE(readGzread, noise, &Files::noise)->Apply(setSizes);

}  // namespace
}  // namespace RynCommon

BENCHMARK_MAIN();
