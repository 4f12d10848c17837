// The lines of a report.
#pragma once

#include <unicode/unistr.h>

#include <string>

namespace RynCommon {
class RyError;
}

/// One line: a label and what it stands for.
void print(const char* label, const char* value);
void print(const char* label, const std::string& value);
void print(const char* label, const icu::UnicodeString& value);
/// A line of a list, below a label of its own.
void printItem(const std::string& text);

/// An error of the library with its code and position.
void printError(const RynCommon::RyError& error);
/// What went wrong beside the library. Always false, for callers that return it.
bool printError(const std::string& message);
