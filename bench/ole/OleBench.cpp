// Opening a compound file of 100 MB and reading all of its streams, side by side with libgsf (over
// its buffered file and over its mapped one) and with reading the file plainly from end to end.
// Everybody reads 64 KiB at a time into the same block. The file holds ten large streams, a
// thousand of 9 KB and a thousand small ones in the mini stream; in the scattered one no two
// sectors of a stream are neighbours.
#include <RynCommon/OleCompFile.h>
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#ifdef RYN_BENCH_LIBGSF
#include <gsf/gsf-infile-msole.h>
#include <gsf/gsf-infile.h>
#include <gsf/gsf-input-memory.h>
#include <gsf/gsf-input-stdio.h>
#include <gsf/gsf-utils.h>
#endif

#include "tests/resources/OleWriter.h"

namespace RynCommon {
namespace {

constexpr std::size_t BLOCK = 64 * 1024;
constexpr int LARGE_STREAMS = 10;
constexpr int SMALL_STREAMS = 1000;
constexpr std::size_t LARGE_SIZE = 9'000'000;
constexpr std::size_t MEDIUM_SIZE = 9'000;
constexpr std::size_t MINI_SIZE = 1'000;

struct Sample {
    explicit Sample(bool scattered);
    ~Sample() { std::remove(path.c_str()); }

    std::string path;
    std::vector<std::string> names;
    std::size_t content = 0;  ///< bytes of all streams
};

Sample::Sample(bool scattered) {
    test::OleWriter::Options options;
    options.scattered = scattered;
    test::OleWriter writer(options);
    const auto add = [&](const char* kind, int number, std::size_t size) {
        const std::string& name = names.emplace_back(kind + std::to_string(number));
        writer.addStream(0, std::u16string(name.begin(), name.end()), std::string(size, *kind));
        content += size;
    };
    for (int i = 0; i < LARGE_STREAMS; ++i) add("large", i, LARGE_SIZE);
    for (int i = 0; i < SMALL_STREAMS; ++i) add("medium", i, MEDIUM_SIZE);
    for (int i = 0; i < SMALL_STREAMS; ++i) add("mini", i, MINI_SIZE);
    const char* const directory = std::getenv("TMPDIR");
    path = std::string(directory == nullptr ? "/tmp" : directory) + "/ryn-olebench-XXXXXX";
    const int handle = mkstemp(path.data());
    if (handle >= 0) close(handle);
    std::ofstream(path, std::ios::binary) << writer.write().bytes();
}

const Sample& getSample(bool scattered) {
    static const Sample neighbours(false);
    static const Sample mixed(true);
    return scattered ? mixed : neighbours;
}

/// Runs `read(sample, block)`, which answers how many bytes it got.
template <class Read>
void run(benchmark::State& state, bool scattered, std::size_t expected, Read read) {
    const Sample& sample = getSample(scattered);
    std::vector<unsigned char> block(BLOCK);
    std::size_t got = 0;
    for (auto _ : state) {
        got = read(sample, block.data());
        benchmark::DoNotOptimize(block.data());
    }
    if (got < expected) state.SkipWithError("bytes are missing");
    state.SetBytesProcessed(static_cast<std::int64_t>(got) * state.iterations());
}

void readPlainly(benchmark::State& state, bool scattered) {
    const std::size_t content = getSample(scattered).content;
    run(state, scattered, content, [](const Sample& sample, unsigned char* block) {
        const int handle = open(sample.path.c_str(), O_RDONLY);
        std::size_t total = 0;
        for (ssize_t got = 0; (got = read(handle, block, BLOCK)) > 0;) total += got;
        close(handle);
        return total;
    });
}

std::size_t readStream(OleCompFile& file, const std::string& name, unsigned char* block) {
    const char* const names[] = {name.c_str()};
    const OleDirPath path{1, names};
    OleStream* const stream = file.OLEopenStream(&path);
    if (stream == nullptr) return 0;
    std::size_t total = 0;
    while (const std::uint32_t got = stream->OLEread(block, BLOCK)) total += got;
    file.OLEcloseStream(stream);
    return total;
}

void readOurs(benchmark::State& state, bool scattered) {
    const std::size_t content = getSample(scattered).content;
    run(state, scattered, content, [](const Sample& sample, unsigned char* block) {
        OleCompFile file;
        std::size_t total = 0;
        if (!file.OLEopen(sample.path.c_str())) return total;
        for (const std::string& name : sample.names) total += readStream(file, name, block);
        return total;
    });
}

void openOurs(benchmark::State& state, bool scattered) {
    run(state, scattered, 1, [](const Sample& sample, unsigned char*) {
        OleCompFile file;
        return std::size_t{file.OLEopen(sample.path.c_str())};
    });
}

#ifdef RYN_BENCH_LIBGSF

using OpenInput = GsfInput* (*)(const char*, GError**);

GsfInfile* openPeer(const Sample& sample, OpenInput open) {
    GsfInput* const input = open(sample.path.c_str(), nullptr);
    if (input == nullptr) return nullptr;
    GsfInfile* const file = gsf_infile_msole_new(input, nullptr);
    g_object_unref(input);
    return file;
}

std::size_t readPeerStream(GsfInfile* file, const std::string& name, unsigned char* block) {
    GsfInput* const stream = gsf_infile_child_by_name(file, name.c_str());
    if (stream == nullptr) return 0;
    std::size_t total = 0;
    for (gsf_off_t left = gsf_input_size(stream); left > 0;) {
        const auto piece = std::min<std::size_t>(BLOCK, static_cast<std::size_t>(left));
        if (gsf_input_read(stream, piece, block) == nullptr) break;
        total += piece;
        left -= static_cast<gsf_off_t>(piece);
    }
    g_object_unref(stream);
    return total;
}

void readPeer(benchmark::State& state, bool scattered, OpenInput open) {
    const std::size_t content = getSample(scattered).content;
    run(state, scattered, content, [open](const Sample& sample, unsigned char* block) {
        GsfInfile* const file = openPeer(sample, open);
        std::size_t total = 0;
        if (file == nullptr) return total;
        for (const std::string& name : sample.names) total += readPeerStream(file, name, block);
        g_object_unref(file);
        return total;
    });
}

void openPeerOnly(benchmark::State& state, bool scattered) {
    run(state, scattered, 1, [](const Sample& sample, unsigned char*) {
        GsfInfile* const file = openPeer(sample, gsf_input_stdio_new);
        if (file == nullptr) return std::size_t{0};
        g_object_unref(file);
        return std::size_t{1};
    });
}

BENCHMARK_CAPTURE(readPeer, NeighboursBuffered, false, gsf_input_stdio_new)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(readPeer, NeighboursMapped, false, gsf_input_mmap_new)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(readPeer, ScatteredBuffered, true, gsf_input_stdio_new)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(readPeer, ScatteredMapped, true, gsf_input_mmap_new)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(openPeerOnly, Open, false)->Unit(benchmark::kMicrosecond);

#endif

BENCHMARK_CAPTURE(readPlainly, Neighbours, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(readOurs, Neighbours, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(readOurs, Scattered, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(openOurs, Open, false)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace RynCommon

BENCHMARK_MAIN();
