// Runs calls without memory; see the header.
#include "tests/allocation/Sweep.h"

#include <RynCommon/RyError.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <exception>
#include <new>
#include <optional>

namespace allocation {

namespace {

constexpr unsigned short OUT_OF_MEMORY = 2049;
/// Every allocation up to here fails on its own; further ones at growing distances.
constexpr long EACH_UP_TO = 1000;
/// Runs of one failure after which what still grows is lost memory.
constexpr int MOST_REPEATS = 4;

struct Outcome {
    bool injected = false;
    std::optional<std::string> result;
    std::string thrown;  ///< "", "2049", "bad_alloc" or what else
};

Outcome attempt(const Action& action, long n, Mode mode) {
    Outcome outcome;
    std::string result;
    unsigned short code = 0;
    std::string other;
    enum { NOTHING, RY_ERROR, BAD_ALLOC, OTHER } thrown = NOTHING;
    arm(n, mode);
    try {
        result = action();
    } catch (const RynCommon::RyError& error) {
        thrown = RY_ERROR;
        code = error.getErrorCode();
    } catch (const std::bad_alloc&) {
        thrown = BAD_ALLOC;
    } catch (const std::exception& error) {
        const Pause pause;
        thrown = OTHER;
        other = error.what();
    }
    outcome.injected = disarm();
    if (thrown == NOTHING) outcome.result = result;
    if (thrown == RY_ERROR) outcome.thrown = std::to_string(code);
    if (thrown == BAD_ALLOC) outcome.thrown = "bad_alloc";
    if (thrown == OTHER) outcome.thrown = other;
    return outcome;
}

bool isAllowed(const Call& call, const Outcome& outcome, const std::string& expected) {
    if (outcome.result) {
        if (*outcome.result == expected) return true;
        return outcome.injected && call.failure && call.failure(*outcome.result);
    }
    const bool isError = outcome.thrown == std::to_string(OUT_OF_MEMORY);
    return outcome.injected &&
           (isError || (call.ending != Ending::ERROR && outcome.thrown == "bad_alloc"));
}

/// The start of a result, for messages.
std::string shown(const std::string& text) {
    return text.size() <= 300 ? text : text.substr(0, 300) + "...";
}

/// What a run came to.
enum class Run { PASSED, FAILED, NOTHING_FAILS };

/// One run on objects of its own.
Run runOnce(const Call& call, long n, Mode mode, const std::string& expected) {
    const Action action = call.make();
    const Outcome outcome = attempt(action, n, mode);
    const char* const how = mode == Mode::ONCE ? "only" : "and all behind";
    const bool isRight = isAllowed(call, outcome, expected);
    EXPECT_TRUE(isRight) << call.what << ", allocation " << n << " " << how << ": "
                         << (outcome.result ? "result " + shown(*outcome.result)
                                            : "threw " + outcome.thrown)
                         << "\nexpected " << shown(expected);
    if (!isRight) return Run::FAILED;
    if (!outcome.injected) return Run::NOTHING_FAILS;
    try {
        const std::string again = action();
        if (again == expected) return Run::PASSED;
        ADD_FAILURE() << call.what << ", after allocation " << n << " " << how << ": "
                      << shown(again) << "\nexpected " << shown(expected);
    } catch (const RynCommon::RyError& error) {
        std::string text;
        ADD_FAILURE() << call.what << ", after allocation " << n << " " << how << ": threw "
                      << error.getErrorCode() << " " << error.getMessage().toUTF8String(text);
    }
    return Run::FAILED;
}

/// Whether memory is lost by this failure each time it happens.
bool leaks(const Call& call, long n, Mode mode, const std::string& expected) {
    long before = countLive();
    for (int i = 0; i < MOST_REPEATS; ++i) {
        runOnce(call, n, mode, expected);
        const long after = countLive();
        if (after <= before) return false;
        before = after;
    }
    return true;
}

long following(long n, unsigned& random) {
    if (n < EACH_UP_TO) return n + 1;
    random = random * 1664525u + 1013904223u;
    const long stride = n / 12;
    return n + stride / 2 + static_cast<long>(random >> 8) % stride;
}

void sweepMode(const Call& call, Mode mode, const std::string& expected) {
    unsigned random = 1;
    for (long n = 1;; n = following(n, random)) {
        const long before = countLive();
        const Run run = runOnce(call, n, mode, expected);
        if (run == Run::NOTHING_FAILS) {
            EXPECT_GT(n, 1) << call.what << " allocates nothing";
        }
        if (run != Run::PASSED) return;
        if (countLive() > before && leaks(call, n, mode, expected)) {
            ADD_FAILURE() << call.what << ": memory is lost by allocation " << n;
            return;
        }
    }
}

}  // namespace

void sweep(const std::vector<Call>& calls) {
    for (const Call& call : calls) {
        std::string expected;
        for (int i = 0; i < 2; ++i) {
            const Action action = call.make();
            expected = action();
            EXPECT_EQ(action(), expected) << call.what << ", again";
        }
        sweepMode(call, Mode::ONCE, expected);
        sweepMode(call, Mode::FROM_ON, expected);
    }
}

}  // namespace allocation
