// Memory streams: a gigabyte written, read back, walked and searched. Side by side with it a
// std::stringstream that takes the same bytes by the same calls, and memmem() over the same bytes
// in one piece.
#include <RynCommon/RyMemStream.h>
#include <benchmark/benchmark.h>

#include <cstring>
#include <memory>
#include <sstream>
#include <string>

namespace RynCommon {
namespace {

constexpr std::size_t GIGABYTE = std::size_t{1} << 30;
constexpr std::size_t SEARCHED = std::size_t{256} << 20;

/// Text like the markup of an office document.
std::string makeText(std::size_t size) {
    std::string text;
    text.reserve(size + 256);
    for (std::uint32_t i = 0; text.size() < size; ++i) {
        const std::uint32_t number = i * 2654435761u >> 12;
        text += "<w:p w:rsidR=\"" + std::to_string(number) +
                "\"><w:r><w:t xml:space=\"preserve\">The quick brown fox </w:t></w:r></w:p>\r\n";
    }
    text.resize(size);
    return text;
}

template <class Stream>
void write(benchmark::State& state) {
    const std::string piece = makeText(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        Stream stream;
        for (std::size_t left = GIGABYTE; left > 0; left -= piece.size())
            stream.write(piece.data(), static_cast<std::streamsize>(piece.size()));
        benchmark::DoNotOptimize(stream.rdbuf());
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(GIGABYTE) * state.iterations());
}
BENCHMARK_TEMPLATE(write, RyMemStream)
    ->Arg(64)
    ->Arg(4096)
    ->Arg(65536)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(write, std::stringstream)
    ->Arg(64)
    ->Arg(4096)
    ->Arg(65536)
    ->Unit(benchmark::kMillisecond);

template <class Stream>
Stream& getFilled() {
    static const std::unique_ptr<Stream> stream = [] {
        auto made = std::make_unique<Stream>();
        const std::string text = makeText(SEARCHED);
        made->write(text.data(), static_cast<std::streamsize>(text.size()));
        return made;
    }();
    return *stream;
}

template <class Stream>
void read(benchmark::State& state) {
    Stream& stream = getFilled<Stream>();
    std::string piece(static_cast<std::size_t>(state.range(0)), '\0');
    for (auto _ : state) {
        stream.clear();
        stream.seekg(0);
        while (stream.read(piece.data(), static_cast<std::streamsize>(piece.size())))
            benchmark::DoNotOptimize(piece.data());
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(SEARCHED) * state.iterations());
}
BENCHMARK_TEMPLATE(read, RyMemStream)->Arg(64)->Arg(65536)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(read, std::stringstream)->Arg(64)->Arg(65536)->Unit(benchmark::kMillisecond);

/// All occurrences, from one to the next.
void search(benchmark::State& state, const std::string& pattern) {
    RyMemStream& stream = getFilled<RyMemStream>();
    std::size_t count = 0;
    for (auto _ : state) {
        stream.begin();
        count = 0;
        for (; stream.searchSeek(pattern.data(), pattern.size()); ++count)
            stream.skipSeek(pattern.data(), pattern.size());
    }
    state.counters["found"] = static_cast<double>(count);
    state.SetBytesProcessed(static_cast<std::int64_t>(SEARCHED) * state.iterations());
}

void searchWithLibrary(benchmark::State& state, const std::string& pattern) {
    static const std::string text = makeText(SEARCHED);
    std::size_t count = 0;
    for (auto _ : state) {
        const char* at = text.data();
        const char* const end = at + text.size();
        count = 0;
        while (const void* const found =
                   memmem(at, static_cast<std::size_t>(end - at), pattern.data(), pattern.size())) {
            at = static_cast<const char*>(found) + pattern.size();
            ++count;
        }
    }
    state.counters["found"] = static_cast<double>(count);
    state.SetBytesProcessed(static_cast<std::int64_t>(SEARCHED) * state.iterations());
}

const std::string LONG_PATTERN = makeText(4000).substr(100) + "!";

#define BENCHMARK_SEARCH(name, ...)                                              \
    BENCHMARK_CAPTURE(search, name, __VA_ARGS__)->Unit(benchmark::kMillisecond); \
    BENCHMARK_CAPTURE(searchWithLibrary, name, __VA_ARGS__)->Unit(benchmark::kMillisecond)

BENCHMARK_SEARCH(Byte, "\x01");
BENCHMARK_SEARCH(Missing, "/Encrypt");
BENCHMARK_SEARCH(CommonEnds, "</w:body>");
BENCHMARK_SEARCH(NearMisses, "ee quick brown foxee");
BENCHMARK_SEARCH(EveryLine, "</w:p>");
BENCHMARK_SEARCH(Sentence, "xml:space=\"preserve\">The quick brown fox jumps over the lazy dog");
BENCHMARK_SEARCH(Long1000, LONG_PATTERN.substr(2900));
BENCHMARK_SEARCH(Long3900, LONG_PATTERN);

void seekLines(benchmark::State& state) {
    RyMemStream& stream = getFilled<RyMemStream>();
    for (auto _ : state) {
        stream.begin();
        while (stream.rdbuf()->sgetc() != EOF) stream.seekEOL();
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(SEARCHED) * state.iterations());
}
BENCHMARK(seekLines)->Unit(benchmark::kMillisecond);

void checksum(benchmark::State& state) {
    RyMemStream& stream = getFilled<RyMemStream>();
    for (auto _ : state) benchmark::DoNotOptimize(stream.calcOTFTableChecksum());
    state.SetBytesProcessed(static_cast<std::int64_t>(SEARCHED) * state.iterations());
}
BENCHMARK(checksum)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace RynCommon

BENCHMARK_MAIN();
