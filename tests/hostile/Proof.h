// Hostile inputs, each read in a process of its own whose time and memory are measured.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace hostile {

inline constexpr std::size_t MEGA = 1'000'000;

inline std::string repeat(std::string_view text, std::size_t times) {
    std::string result;
    result.reserve(text.size() * times);
    for (std::size_t i = 0; i < times; ++i) result += text;
    return result;
}

/// What a case is held to. A reader gets 64 MiB and 16 times its input, and a second for every
/// megabyte of input (at least one).
enum class Bound {
    ALL,
    TIME,       ///< the caller asked to hold the data, as in a tree
    OUTPUT,     ///< the caller asked for more data than the input has: time counts by what came out
    EXPANSION,  ///< one text that expands as far as RyXmlLimits lets it by default, a hundredfold,
                ///< in two bytes a character and a buffer that grows by doubling
};

struct Case {
    std::string name;
    Bound bound;
    /// Makes the input; neither its time nor its memory counts.
    std::function<std::string()> make;
    /// Reads it; returns the number of bytes that the caller asked for and got, where that matters.
    /// Failures that the library documents are caught here; anything else that is thrown fails the
    /// case.
    std::function<std::size_t(const std::string&)> read;
};

std::vector<Case> xmlCases();
std::vector<Case> textCases();
std::vector<Case> containerCases();

}  // namespace hostile
