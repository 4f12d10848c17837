// What the library takes of a program's start: its initialisers, and the first use of what is built
// when it is first needed.
//
// Each figure comes from fresh processes: the program starts itself, and the copy tells on its
// output what each step took. Between the constructor of the highest priority, which runs when the
// shared libraries are ready, and main() there is nothing but the initialisers of the library,
// whose objects are linked in, and of this file. What comes before is the system's and the dynamic
// linker's, for ICU and libcurl mostly.
#include <RynCommon/RyNameTable.h>
#include <RynCommon/RyXmlUtil.h>
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "SmallDocument.h"

namespace RynCommon {
namespace {

std::int64_t now() {
    return std::chrono::duration_cast<std::chrono::nanoseconds>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

std::int64_t librariesReady;
__attribute__((constructor(101))) void stampLibrariesReady() {
    librariesReady = now();
}

enum Step {
    LINKING,          // from the request for a process on
    INITIALISERS,     // all of the library's
    FIRST_BUILTIN,    // number of a built-in name
    FIRST_TEXT,       // text of a built-in name
    FIRST_NAME,       // the shared table and the first name of it
    FIRST_PARSER,     // made and destroyed
    FIRST_DOCUMENT,   // of 4 KB
    SECOND_DOCUMENT,  // of the same kind
    STEPS
};
constexpr const char* STEP_NAMES[STEPS] = {"linking",       "initialisers",  "firstBuiltin",
                                           "firstText",     "firstName",     "firstParser",
                                           "firstDocument", "secondDocument"};
using Times = std::array<std::int64_t, STEPS>;  // in nanoseconds

template <class Work>
std::int64_t timeOf(Work work) {
    const std::int64_t start = now();
    work();
    return now() - start;
}

/// The copy's part.
int tellSteps(std::int64_t requested, std::int64_t mainReached) {
    Times times{};
    times[LINKING] = librariesReady - requested;
    times[INITIALISERS] = mainReached - librariesReady;
    const std::string document = makeDocument(1);
    const UnicodeString known(u"zoom");
    const UnicodeString unknown(u"a-name-of-no-standard");
    times[FIRST_BUILTIN] =
        timeOf([&] { benchmark::DoNotOptimize(RyNameTable::getBuiltinNameEnum(known)); });
    times[FIRST_TEXT] = timeOf([&] { benchmark::DoNotOptimize(&RyName(RN_zoom).toString()); });
    times[FIRST_NAME] = timeOf([&] { benchmark::DoNotOptimize(RyName(unknown)); });
    times[FIRST_PARSER] = timeOf([&] { RyXmlUtil::createXmlParser(); });
    times[FIRST_DOCUMENT] = timeOf([&] { parse(document); });
    times[SECOND_DOCUMENT] = timeOf([&] { parse(document); });
    return std::fwrite(times.data(), sizeof times, 1, stdout) == 1 ? 0 : 1;
}

/// Runs a copy of this program; false when it fails.
bool askCopy(const char* program, Times& times) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) return false;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
    std::string requested = std::to_string(now());
    char* const arguments[] = {const_cast<char*>(program), requested.data(), nullptr};
    pid_t copy = 0;
    const int failure = posix_spawn(&copy, program, &actions, nullptr, arguments, environ);
    posix_spawn_file_actions_destroy(&actions);
    close(ends[1]);
    const ssize_t got = failure == 0 ? read(ends[0], times.data(), sizeof times) : 0;
    close(ends[0]);
    int status = 0;
    if (failure == 0) waitpid(copy, &status, 0);
    return got == sizeof times && status == 0;
}

void startProgram(benchmark::State& state, const char* program, Step step) {
    Times times{};
    for (auto _ : state) {
        if (!askCopy(program, times)) return state.SkipWithError("no copy");
        state.SetIterationTime(1e-9 * static_cast<double>(times[step]));
    }
}

double least(const std::vector<double>& times) {
    return *std::min_element(times.begin(), times.end());
}

int run(int argc, char** argv) {
    for (int step = 0; step < STEPS; ++step)
        benchmark::RegisterBenchmark(STEP_NAMES[step], startProgram, "/proc/self/exe",
                                     static_cast<Step>(step))
            ->UseManualTime()
            ->Iterations(1)
            ->Repetitions(100)
            ->ComputeStatistics("least", least)
            ->Unit(benchmark::kMicrosecond);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}

}  // namespace
}  // namespace RynCommon

int main(int argc, char** argv) {
    const std::int64_t mainReached = RynCommon::now();
    const bool isCopy = argc == 2 && argv[1][0] != '-';
    return isCopy ? RynCommon::tellSteps(std::atoll(argv[1]), mainReached)
                  : RynCommon::run(argc, argv);
}
