// Runs the hostile cases one by one, prints what each took, and fails when one takes more than it
// may, throws what is not documented, crashes or does not end.
//   hostile_proof [--slack FACTOR] [PART-OF-A-NAME]
//
// The time that an input may take is meant for optimised code on a quiet machine; the factor
// stretches it elsewhere. What grows faster than its input exceeds it all the same.
//
// Every case runs in a child process. Memory is the peak of the resident set above what the child
// held when its input stood, time is the child's processor time, and a child that runs for two
// minutes or asks for more than 8 GB is stopped.
#include <sys/resource.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <string_view>

#include "tests/hostile/Proof.h"

namespace {

using hostile::Bound;
using hostile::Case;

constexpr double MIB = 1024.0 * 1024.0;
constexpr double MB = 1e6;
constexpr unsigned MOST_SECONDS = 120;
constexpr rlim_t MOST_MEMORY = rlim_t{8} << 30;

struct Figures {
    double inputBytes = 0;
    double outputBytes = 0;
    double seconds = 0;
    double peakBytes = 0;
    bool ended = false;
};

double readStatus(const char* key) {
    std::ifstream status("/proc/self/status");
    std::string word;
    double kib = 0;
    while (status >> word)
        if (word == key && status >> kib) return kib * 1024;
    return 0;
}

double processorSeconds() {
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

Figures measure(const Case& test) {
    Figures figures;
    const std::string input = test.make();
    std::ofstream("/proc/self/clear_refs") << 5;  // the peak counts from here
    const double before = readStatus("VmRSS:");
    const double start = processorSeconds();
    figures.outputBytes = static_cast<double>(test.read(input));
    figures.seconds = processorSeconds() - start;
    figures.peakBytes = std::max(0.0, readStatus("VmHWM:") - before);
    figures.inputBytes = static_cast<double>(input.size());
    figures.ended = true;
    return figures;
}

[[noreturn]] void runChild(const Case& test, int out) {
    const rlimit memory{MOST_MEMORY, MOST_MEMORY};
    setrlimit(RLIMIT_AS, &memory);
    alarm(MOST_SECONDS);
    Figures figures;
    try {
        figures = measure(test);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s threw: %s\n", test.name.c_str(), error.what());
    } catch (...) {
        std::fprintf(stderr, "%s threw\n", test.name.c_str());
    }
    const bool told = write(out, &figures, sizeof figures) == sizeof figures;
    _exit(told && figures.ended ? 0 : 1);
}

Figures runInChild(const Case& test) {
    int ends[2];
    if (pipe(ends) != 0) return {};
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) runChild(test, ends[1]);
    close(ends[1]);
    Figures figures;
    if (child < 0 || read(ends[0], &figures, sizeof figures) != sizeof figures) figures = {};
    close(ends[0]);
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child || status != 0) figures.ended = false;
    return figures;
}

const char* judge(const Case& test, const Figures& figures, double slack) {
    if (!figures.ended) return "DID NOT END WELL";
    const double timed =
        figures.inputBytes + (test.bound == Bound::OUTPUT ? figures.outputBytes : 0);
    const double perByte = test.bound == Bound::EXPANSION ? 16 + 100 * 2 * 2 : 16;
    if (figures.seconds > slack * std::max(1.0, timed / MB)) return "TOO SLOW";
    if (test.bound != Bound::TIME && figures.peakBytes > 64 * MIB + perByte * figures.inputBytes)
        return "TOO MUCH MEMORY";
    return "";
}

}  // namespace

int main(int count, char** arguments) {
    double slack = 1;
    if (count > 2 && std::string_view(arguments[1]) == "--slack") {
        slack = std::strtod(arguments[2], nullptr);
        arguments += 2;
        count -= 2;
    }
    const std::string_view wanted = count > 1 ? arguments[1] : "";
    std::vector<Case> cases = hostile::xmlCases();
    for (const auto& more : {hostile::textCases(), hostile::containerCases()})
        cases.insert(cases.end(), more.begin(), more.end());
    int ran = 0;
    int failed = 0;
    std::printf("%-52s%12s%10s%12s\n", "input", "bytes", "seconds", "peak MiB");
    for (const Case& test : cases) {
        if (test.name.find(wanted) == std::string::npos) continue;
        const Figures figures = runInChild(test);
        const char* const fault = judge(test, figures, slack);
        std::printf("%-52s%12.0f%10.3f%12.1f  %s\n", test.name.c_str(), figures.inputBytes,
                    figures.seconds, figures.peakBytes / MIB, fault);
        ++ran;
        failed += *fault != '\0';
    }
    std::printf("%d inputs, %d over their bounds\n", ran, failed);
    return ran > 0 && failed == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
