// The progress line: when it is looked at, and when it is drawn.
#include "Progress.h"

#include <unistd.h>

#include <cstdio>

#include "Format.h"

namespace {

/// The clock is looked at once in so many steps.
constexpr std::uint64_t STRIDE = 1024;
constexpr auto PATIENCE = std::chrono::milliseconds(500);
constexpr auto INTERVAL = std::chrono::milliseconds(100);

}  // namespace

Progress::Progress(const char* what, const char* unit)
    : what_(what),
      unit_(unit),
      isTerminal_(isatty(STDERR_FILENO) != 0),
      nextShow_(start_ + PATIENCE),
      nextLook_(isTerminal_ ? STRIDE : UINT64_MAX) {}

Progress::~Progress() {
    if (isShown_) std::fputs("\r\033[K", stderr);
}

void Progress::look() {
    nextLook_ = done_ + STRIDE;
    const Clock::time_point now = Clock::now();
    if (now < nextShow_) return;
    const std::chrono::duration<double> elapsed = now - start_;
    std::fprintf(stderr, "\r\033[K%s: %s %s, %.1f s", what_, formatCount(done_).c_str(), unit_,
                 elapsed.count());
    std::fflush(stderr);
    isShown_ = true;
    nextShow_ = now + INTERVAL;
}
