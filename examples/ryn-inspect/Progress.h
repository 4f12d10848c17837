// A line on the terminal that says how far long work has come.
#pragma once

#include <chrono>
#include <cstdint>

/// Shows nothing unless standard error is a terminal and the work has taken half a second. The line
/// is wiped when the work ends.
class Progress {
public:
    /// `what` and `unit` outlive the object: "loading", "nodes".
    Progress(const char* what, const char* unit);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void add(std::uint64_t count = 1) {
        done_ += count;
        if (done_ >= nextLook_) look();
    }

private:
    using Clock = std::chrono::steady_clock;

    void look();

    const char* what_;
    const char* unit_;
    bool isTerminal_;
    bool isShown_ = false;
    Clock::time_point start_ = Clock::now();
    Clock::time_point nextShow_;
    std::uint64_t done_ = 0;
    std::uint64_t nextLook_;
};
