// Names: look-up of known ones, interning of new ones and reading of texts, by one and by two
// threads; and what a parser costs besides the bytes that it reads.
#include <RynCommon/RyNameTable.h>
#include <RynCommon/RyXmlUtil.h>
#include <benchmark/benchmark.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "SmallDocument.h"

namespace RynCommon {
namespace {

constexpr int MANY = 100000;
constexpr int FEW = 1000;
constexpr int STEP = 7919;  // a prime, so that every name has its turn

using Texts = std::vector<UnicodeString>;
using Clock = std::chrono::steady_clock;

double seconds(Clock::duration time) {
    return std::chrono::duration<double>(time).count();
}

Texts makeTexts(const std::string& stem) {
    Texts texts;
    texts.reserve(MANY);
    for (int i = 0; i < MANY; ++i)
        texts.push_back(UnicodeString::fromUTF8(stem + std::to_string(i)));
    return texts;
}

/// Runs `work` with each number below `count` in a thread of its own, all at once, and returns the
/// seconds from the first one's start to the last one's end. `warmUp` comes first in each thread.
/// Each thread has a copy of both, so that none reads what lies beside another one's variables.
template <class WarmUp, class Work>
double race(int count, WarmUp warmUp, Work work) {
    std::atomic<int> missing{count};
    std::vector<Clock::time_point> starts(count);
    std::vector<Clock::time_point> ends(count);
    const auto run = [&](int i) {
        const WarmUp ownWarmUp(warmUp);
        const Work own(work);
        ownWarmUp(i);
        --missing;
        while (missing != 0) {
        }
        starts[i] = Clock::now();
        own(i);
        ends[i] = Clock::now();
    };
    std::vector<std::thread> threads;
    for (int i = 1; i < count; ++i) threads.emplace_back(run, i);
    run(0);
    for (std::thread& thread : threads) thread.join();
    return seconds(*std::max_element(ends.begin(), ends.end()) -
                   *std::min_element(starts.begin(), starts.end()));
}

/// As many threads as the benchmark's first argument says do `work` with `each` names. On a busy
/// machine the best race is the one that nobody interrupted: "best_ns" is its time for a name.
template <class Prepare, class WarmUp, class Work>
void measureRaces(benchmark::State& state, int each, Prepare prepare, WarmUp warmUp, Work work) {
    const auto count = static_cast<int>(state.range(0));
    double least = 1e9;
    for (auto _ : state) {
        prepare();
        const double time = race(count, warmUp, work);
        least = std::min(least, time);
        state.SetIterationTime(time);
    }
    state.SetItemsProcessed(state.iterations() * count * each);
    state.counters["best_ns"] = 1e9 * least / (count * each);
}

/// Walks through `count` positions, each thread from another one on, and does `work` with a part
/// of them.
template <class Work>
void measureWalks(benchmark::State& state, int count, Work work) {
    constexpr int EACH = 10000;
    const auto walk = [count, work](int thread) {
        int at = thread * count / 2;
        for (int i = 0; i < EACH; ++i) {
            at += STEP % count;
            if (at >= count) at -= count;
            work(at);
        }
    };
    measureRaces(
        state, EACH, [] {}, walk, walk);
}

/// The shared table as before the first name, then filled with known names.
const Texts& fillTable(int count) {
    static const Texts texts = makeTexts("known-name-");
    RyNameTable::cleanup();
    for (int i = 0; i < count; ++i) RyNameTable::getSharedNameEnum(texts[i]);
    return texts;
}

void lookUpKnown(benchmark::State& state) {
    const auto count = static_cast<int>(state.range(1));
    const Texts& texts = fillTable(count);
    measureWalks(state, count, [texts = texts.data()](int i) {
        benchmark::DoNotOptimize(RyNameTable::getSharedNameEnum(texts[i]));
    });
}
BENCHMARK(lookUpKnown)->ArgsProduct({{1, 2}, {FEW, MANY}})->UseManualTime();

void lookUpBuiltin(benchmark::State& state) {
    Texts texts;
    for (int i = 1; i <= RYNAME_BUILTIN_LAST; ++i)
        texts.push_back(RyNameTable::getBuiltinNameString(static_cast<RyNameEnum>(i)));
    measureWalks(state, RYNAME_BUILTIN_LAST, [texts = texts.data()](int i) {
        benchmark::DoNotOptimize(RyNameTable::getSharedNameEnum(texts[i]));
    });
}
BENCHMARK(lookUpBuiltin)->Arg(1)->Arg(2)->UseManualTime();

void readText(benchmark::State& state) {
    const auto count = static_cast<int>(state.range(1));
    fillTable(count);
    measureWalks(state, count, [](int i) {
        const RyName name(RYNAME_BUILTIN_LAST + 1 + i);
        benchmark::DoNotOptimize(name.toString().getBuffer());
    });
}
BENCHMARK(readText)->ArgsProduct({{1, 2}, {FEW, MANY}})->UseManualTime();

void readBuiltinText(benchmark::State& state) {
    measureWalks(state, RYNAME_BUILTIN_LAST,
                 [](int i) { benchmark::DoNotOptimize(RyName(i + 1).toString().getBuffer()); });
}
BENCHMARK(readBuiltinText)->Arg(1)->Arg(2)->UseManualTime();

/// Each of the threads interns names that no other one has, in a new table.
void internDistinct(benchmark::State& state) {
    const std::vector<Texts> texts = {makeTexts("new-name-"), makeTexts("other-name-")};
    measureRaces(
        state, MANY, [] { RyNameTable::cleanup(); }, [](int) {},
        [&](int thread) {
            for (const UnicodeString& text : texts[thread])
                benchmark::DoNotOptimize(RyNameTable::getSharedNameEnum(text));
        });
}
BENCHMARK(internDistinct)->Arg(1)->Arg(2)->UseManualTime()->Unit(benchmark::kMillisecond);

void makeParser(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(RyXmlUtil::createXmlParser());
}
BENCHMARK(makeParser);

void parseMinimal(benchmark::State& state) {
    const std::string document = "<a/>";
    for (auto _ : state) parse(document);
}
BENCHMARK(parseMinimal);

/// Documents of 4 KB, a parser for each: the threads share names and what parsers leave behind.
void parseSmall(benchmark::State& state) {
    constexpr int EACH = 50;
    const std::string document = makeDocument(1);
    const auto read = [&document](int) {
        const std::string own = document;
        for (int i = 0; i < EACH; ++i) parse(own);
    };
    measureRaces(
        state, EACH, [] {}, read, read);
}
BENCHMARK(parseSmall)->Arg(1)->Arg(2)->UseManualTime();

/// The least of many times, which is what an undisturbed run takes.
double leastTime(const std::string& document) {
    double least = 1;
    for (int i = 0; i < 50; ++i) {
        const Clock::time_point start = Clock::now();
        parse(document);
        least = std::min(least, seconds(Clock::now() - start));
    }
    return least;
}

/// What 4 KB take beyond the pace at which longer documents of the same kind are read.
void parseOutsideBytes(benchmark::State& state) {
    const std::string once = makeDocument(1);
    const std::string twice = makeDocument(2);
    double first = 1;
    double second = 1;
    for (auto _ : state) {
        first = std::min(first, leastTime(once));
        second = std::min(second, leastTime(twice));
    }
    state.counters["outside_ns"] = 1e9 * (2 * first - second);
    state.counters["4KB_ns"] = 1e9 * first;
}
BENCHMARK(parseOutsideBytes)->Iterations(40)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace RynCommon

BENCHMARK_MAIN();
