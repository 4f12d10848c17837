// Runs a call with every one of its allocations failing in turn.
//
// Each time the call succeeds with the result that it has with enough memory, or ends as its row
// says. Whatever it did, it is then called again on the same objects with enough memory and has to
// give its result, and when its objects are gone nothing may be left of them. What the process
// keeps for good (names, tables, converters) is made by runs ahead.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tests/allocation/Faults.h"

namespace allocation {

/// Does the call and gives its result as a text.
using Action = std::function<std::string()>;

/// How a call may end without memory.
enum class Ending {
    ERROR,      ///< RyError 2049
    EXCEPTION,  ///< std::bad_alloc, or RyError 2049 where a parser or a load is part of it
    VALUE       ///< as `failure` says, or as above
};

struct Call {
    const char* what;
    /// Makes the objects of the call, and the call. Nothing fails meanwhile.
    std::function<Action()> make;
    Ending ending = Ending::EXCEPTION;
    /// Whether this result says that it failed.
    std::function<bool(const std::string& result)> failure = {};
};

void sweep(const std::vector<Call>& calls);

/// Calls `function` with enough memory.
template <class Function>
auto paused(Function function) {
    const Pause pause;
    return function();
}

}  // namespace allocation
