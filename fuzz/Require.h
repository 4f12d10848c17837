// How a fuzz target reports a property that does not hold.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace RynCommon {

/// Ends the process, which is what a fuzzer takes for a finding.
[[noreturn]] inline void fail(std::string_view what, std::string_view one = {},
                              std::string_view other = {}) {
    const auto write = [](std::string_view text) {
        std::fwrite(text.data(), 1, text.size(), stderr);
        std::fputc('\n', stderr);
    };
    write(what);
    if (!one.empty() || !other.empty()) {
        write("--- one");
        write(one);
        write("--- other");
        write(other);
    }
    std::abort();
}

inline void require(bool condition, std::string_view what, std::string_view one = {},
                    std::string_view other = {}) {
    if (!condition) fail(what, one, other);
}

inline void requireEqual(std::string_view what, std::string_view one, std::string_view other) {
    if (one != other) fail(what, one, other);
}

}  // namespace RynCommon
