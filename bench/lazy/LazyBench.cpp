// What lazy loading costs: the time until the first element of a large document is there, the
// memory then, the peak of a walk that removes what it has finished, and how loading grows with the
// size of the document.
#include <RynCommon/RyDocument.h>
#include <RynCommon/RyError.h>
#include <malloc.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <string>

#include "bench/lazy/GeneratedDocument.h"

namespace {

using namespace RynCommon;

constexpr double KIB = 1024;
constexpr double MIB = 1024 * KIB;

struct Options {
    std::uint64_t largestMb = 1000;  // lazy loading, up to
    std::uint64_t eagerMb =
        250;             // loading as a whole, up to: the tree takes several times its size
    bool check = false;  // fail when a target is missed
};

/// A value of /proc/self/status in bytes.
double readStatus(const char* key) {
    std::ifstream status("/proc/self/status");
    std::string word;
    double kib = 0;
    while (status >> word)
        if (word == key && status >> kib) return kib * KIB;
    return 0;
}

/// Live heap and resident memory since construction; the peak counts from there, too.
class MemoryMeter {
public:
    MemoryMeter() {
        std::ofstream("/proc/self/clear_refs") << 5;  // resets the peak
        resident_ = readStatus("VmRSS:");
        own_ = readStatus("RssAnon:");
        heap_ = liveHeap();
    }
    double getHeapGrowth() const { return liveHeap() - heap_; }
    /// Memory of the process's own: without the pages of programs and libraries that came in from
    /// their files.
    double getOwnGrowth() const { return readStatus("RssAnon:") - own_; }
    double getPeakGrowth() const { return readStatus("VmHWM:") - resident_; }

private:
    static double liveHeap() {
        const struct mallinfo2 info = mallinfo2();
        return static_cast<double>(info.uordblks + info.hblkhd);
    }

    double resident_ = 0;
    double own_ = 0;
    double heap_ = 0;
};

/// Throughput is told in processor time, which other work on the machine disturbs least; how long
/// somebody waits for the first element is told in elapsed time.
class Clock {
public:
    double getElapsedMilliseconds() const { return now(CLOCK_MONOTONIC) - elapsed_; }
    double getProcessorMilliseconds() const { return now(CLOCK_PROCESS_CPUTIME_ID) - processor_; }

private:
    static double now(clockid_t clock) {
        timespec time;
        clock_gettime(clock, &time);
        return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
    }

    double elapsed_ = now(CLOCK_MONOTONIC);
    double processor_ = now(CLOCK_PROCESS_CPUTIME_ID);
};

bool missedTarget = false;

void reportTarget(const char* what, double value, const char* unit, double target) {
    const bool met = value <= target;
    std::printf("  %-34s %10.3f %-3s (target %g: %s)\n", what, value, unit, target,
                met ? "met" : "MISSED");
    missedTarget = missedTarget || !met;
}

RyPtr<RyDocument> makeLazyDocument(std::istream& in) {
    RyPtr<RyDocument> document(new RyDocument);
    document->setPullMode(true);
    document->load(in);
    return document;
}

struct FirstElement {
    double milliseconds;
    double ownBytes;
    double heapBytes;
};

FirstElement awaitFirstElement(std::uint64_t megabytes) {
    GeneratedDocument in(megabytes * 1'000'000);
    const MemoryMeter memory;
    const Clock clock;
    const RyPtr<RyDocument> document = makeLazyDocument(in);
    const RyNode* const first = document->getFirstChild();
    const double elapsed = clock.getElapsedMilliseconds();
    if (first == nullptr) throw std::runtime_error("the document has no element");
    const FirstElement result{elapsed, memory.getOwnGrowth(), memory.getHeapGrowth()};
    document->abort();
    return result;
}

/// Time and memory until the first element is there: of the first document that a process loads,
/// and of later ones, of which the quickest counts, so that a moment without the processor does
/// not.
void measureFirstElement(std::uint64_t megabytes, int documents) {
    FirstElement best = awaitFirstElement(megabytes);
    for (int i = 1; i < documents; ++i) {
        const FirstElement next = awaitFirstElement(megabytes);
        if (i == 1 || next.milliseconds < best.milliseconds) best = next;
    }
    std::printf("First element of %llu MB, %s\n", static_cast<unsigned long long>(megabytes),
                documents == 1 ? "first document of a process" : "later document");
    reportTarget("time after load()", best.milliseconds, "ms", 1);
    reportTarget("resident memory of its own", best.ownBytes / MIB, "MiB", 1);
    reportTarget("live heap", best.heapBytes / MIB, "MiB", 1);
}

struct Walked {
    std::uint64_t elements = 0;
    std::uint64_t units = 0;
};

/// Walks the tree as it loads and removes every node that lies behind: what stays is the path to
/// the current node.
Walked walkRemoving(RyNode& top) {
    Walked result;
    UnicodeString text;
    RyNode* node = top.getFirstChild();
    while (node != nullptr) {
        if (node->isElementNode()) {
            ++result.elements;
            if (RyNode* const child = node->getFirstChild()) {
                node = child;
                continue;
            }
        } else if (node->isText()) {
            static_cast<const RyTextNode*>(node)->copyTextTo(text);
            result.units += static_cast<std::uint64_t>(text.length());
        }
        RyNode* following = nullptr;
        while (node != nullptr && following == nullptr) {
            RyNode* const parent = node->getParentNodeFast();
            following = node->getNextSibling();
            parent->removeChild(node);
            node = parent == &top ? nullptr : parent;
        }
        node = following;
    }
    return result;
}

void measureLazyWalk(std::uint64_t megabytes, bool asTarget) {
    GeneratedDocument in(megabytes * 1'000'000);
    const MemoryMeter memory;
    const Clock clock;
    const RyPtr<RyDocument> document = makeLazyDocument(in);
    const Walked walked = walkRemoving(*document);
    const double milliseconds = clock.getProcessorMilliseconds();
    const double produced = static_cast<double>(in.getProduced());
    std::printf("%6llu MB  %9.1f ms  %8.1f MB/s  %10llu elements  %11llu units  peak %7.2f MiB\n",
                static_cast<unsigned long long>(megabytes), milliseconds,
                produced / 1e3 / milliseconds, static_cast<unsigned long long>(walked.elements),
                static_cast<unsigned long long>(walked.units), memory.getPeakGrowth() / MIB);
    if (asTarget) reportTarget("peak of the walk", memory.getPeakGrowth() / MIB, "MiB", 16);
}

void measureEagerLoad(std::uint64_t megabytes) {
    GeneratedDocument in(megabytes * 1'000'000);
    const MemoryMeter memory;
    const Clock clock;
    const RyPtr<RyDocument> document(new RyDocument);
    document->load(in);
    const double milliseconds = clock.getProcessorMilliseconds();
    const double produced = static_cast<double>(in.getProduced());
    std::printf("%6llu MB  %9.1f ms  %8.1f MB/s  tree %9.1f MiB, %.2f bytes per byte\n",
                static_cast<unsigned long long>(megabytes), milliseconds,
                produced / 1e3 / milliseconds, memory.getHeapGrowth() / MIB,
                memory.getHeapGrowth() / produced);
}

/// Runs one measurement in a process of its own, so that none profits from or pays for another's
/// heap.
void inOwnProcess(const std::function<void()>& measure) {
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child < 0) throw std::runtime_error("fork failed");
    if (child == 0) {
        int status = 1;
        try {
            measure();
            status = missedTarget ? 2 : 0;
        } catch (const RyError& error) {
            std::string message;
            std::fprintf(stderr, "%s\n", error.getMessage().toUTF8String(message).c_str());
        } catch (const std::exception& error) {
            std::fprintf(stderr, "%s\n", error.what());
        }
        std::fflush(nullptr);
        _exit(status);
    }
    int status = 0;
    waitpid(child, &status, 0);
    if (!WIFEXITED(status) || WEXITSTATUS(status) == 1)
        throw std::runtime_error("a measurement failed");
    missedTarget = missedTarget || WEXITSTATUS(status) == 2;
}

Options parseOptions(int argc, char** argv) {
    Options options;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        if (argument == "--quick") {
            options.largestMb = 64;
            options.eagerMb = 16;
        } else if (argument == "--check") {
            options.check = true;
        } else if (argument == "--size" && i + 1 < argc) {
            options.largestMb = std::strtoull(argv[++i], nullptr, 10);
        } else if (argument == "--eager" && i + 1 < argc) {
            options.eagerMb = std::strtoull(argv[++i], nullptr, 10);
        } else {
            throw std::invalid_argument(
                "usage: lazybench [--quick] [--check] [--size MB] [--eager MB]");
        }
    }
    return options;
}

void measureAll(const Options& options) {
    for (const int documents : {1, 10})
        inOwnProcess([&] { measureFirstElement(options.largestMb, documents); });

    std::puts("\nLazy walk that removes what it has finished");
    for (std::uint64_t size = 1; size < options.largestMb; size *= 4)
        inOwnProcess([&] { measureLazyWalk(size, false); });
    inOwnProcess([&] { measureLazyWalk(options.largestMb, true); });

    std::puts("\nLoading as a whole");
    for (std::uint64_t size = 1; size < options.eagerMb; size *= 4)
        inOwnProcess([&] { measureEagerLoad(size); });
    inOwnProcess([&] { measureEagerLoad(options.eagerMb); });
}

}  // namespace

int main(int argc, char** argv) try {
    const Options options = parseOptions(argc, argv);
    measureAll(options);
    return options.check && missedTarget ? 1 : 0;
} catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 2;
}
