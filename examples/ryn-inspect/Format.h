// Numbers, times and texts as people read them.
#pragma once

#include <unicode/unistr.h>

#include <chrono>
#include <cstdint>
#include <string>

/// "1,234,567"
std::string formatCount(std::uint64_t count);
/// "0.213 ms", "13.4 ms", "1.72 s"
std::string formatTime(std::chrono::duration<double> time);
/// "0.03 % of it"
std::string formatShare(std::chrono::duration<double> part, std::chrono::duration<double> whole);
/// UTF-8, control characters shown as U+FFFD, so that a document cannot steer the terminal.
std::string formatText(const icu::UnicodeString& text);
