// The vector kernels against their scalar twins, over runs of the lengths that they meet: a name or
// short value, a line, a paragraph, a block. Bytes per second of what is read.
#include <benchmark/benchmark.h>

#include <memory>
#include <string>

#include "core/UnitScan.h"
#include "core/Utf8Units.h"

namespace RynCommon {
namespace {

constexpr PassingSet TEXT_SET{0x5F, '\n', {'&', '<', '>', '&', '&'}};

/// Runs in which nothing is found, so that all of each is looked at.
struct Runs {
    explicit Runs(std::size_t length)
        : units(length, u'a'),
          bytes(length, 'a'),
          unitsOut(length, u'\0'),
          bytesOut(length, '\0') {}

    const char16_t* begin() const { return units.data(); }
    const char16_t* end() const { return units.data() + units.size(); }
    const std::uint8_t* data() const { return reinterpret_cast<const std::uint8_t*>(bytes.data()); }
    std::uint8_t* room() { return reinterpret_cast<std::uint8_t*>(bytesOut.data()); }
    std::size_t size() const { return units.size(); }

    std::u16string units;
    std::string bytes;
    std::u16string unitsOut;
    std::string bytesOut;
    ColumnStops stops;
};

/// `call(runs)` reads `unitSize` bytes for each of the state's first argument.
template <class AnyRuns, class Call>
void measure(benchmark::State& state, std::size_t unitSize, Call call) {
    AnyRuns runs(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        benchmark::DoNotOptimize(call(runs));
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * runs.size() * unitSize));
}

#define KERNEL_OVER(Input, name, unitSize, ...)                                        \
    void name##Vector(benchmark::State& state) {                                       \
        measure<Input>(state, unitSize, [](Input& r) { return __VA_ARGS__; });         \
    }                                                                                  \
    void name##Scalar(benchmark::State& state) {                                       \
        measure<Input>(state, unitSize, [](Input& r) { return scalar::__VA_ARGS__; }); \
    }                                                                                  \
    BENCHMARK(name##Vector)->Arg(12)->Arg(80)->Arg(1000)->Arg(16384);                  \
    BENCHMARK(name##Scalar)->Arg(12)->Arg(80)->Arg(1000)->Arg(16384)
#define KERNEL(name, unitSize, ...) KERNEL_OVER(Runs, name, unitSize, __VA_ARGS__)

KERNEL(findTextStop, 2, findTextStop(r.begin(), r.end()));
KERNEL(findValueStop, 2, findValueStop(r.begin(), r.end(), u'"'));
KERNEL(findLineBreakUnit, 2, findLineBreakUnit(r.begin(), r.end()));
KERNEL(findColumnStops, 2, findColumnStops(r.begin(), r.end(), r.stops));
KERNEL(countLines, 2, countLines(r.begin(), r.end()).charactersAfterLast);
KERNEL(widenAscii, 1, widenAscii(r.data(), r.size(), r.unitsOut.data()));
KERNEL(isLatin1, 2, isLatin1(r.begin(), r.size()));
KERNEL(narrowLatin1, 2, narrowLatin1(r.begin(), r.size(), r.room()), 0);
KERNEL(widenLatin1, 1, widenLatin1(r.data(), r.size(), r.unitsOut.data()), 0);
KERNEL(copyPassing, 1, copyPassing(r.data(), r.size(), TEXT_SET, r.bytesOut.data()));
KERNEL(narrowPassing, 2, narrowPassing(r.begin(), r.size(), TEXT_SET, r.bytesOut.data()));

/// Ideographs in both forms, with room for either.
struct ThreeByteRuns : Runs {
    explicit ThreeByteRuns(std::size_t length) : Runs(length) {
        units.assign(length, u'\u65E5');
        bytes.clear();
        for (std::size_t i = 0; i < length; ++i) bytes += "\xE6\x97\xA5";
        bytesOut.resize(3 * length + 4);
    }
};

KERNEL_OVER(ThreeByteRuns, decodeThreeByteRun, 3,
            decodeThreeByteRun(r.data(), r.bytes.size(), r.unitsOut.data()));
KERNEL_OVER(ThreeByteRuns, encodeThreeByteRun, 2,
            encodeThreeByteRun(r.units.data(), r.size(), r.room()));

}  // namespace
}  // namespace RynCommon

BENCHMARK_MAIN();
