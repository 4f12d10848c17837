// The lines of a report.
#include "Report.h"

#include <RynCommon/RyError.h>

#include <cstdio>

#include "Format.h"

using namespace RynCommon;

void print(const char* label, const char* value) {
    std::printf("  %-15s %s\n", label, value);
}

void print(const char* label, const std::string& value) {
    print(label, value.c_str());
}

void print(const char* label, const UnicodeString& value) {
    print(label, formatText(value));
}

void printItem(const std::string& text) {
    std::printf("    %s\n", text.c_str());
}

// The parser's errors carry their position as the message's last line, others in fields of their
// own.
void printError(const RyError& error) {
    UnicodeString message = error.getRawMessage();
    UnicodeString position = error.getPositionDescription();
    const std::int32_t lastLine = message.lastIndexOf(u'\n');
    if (position.isEmpty() && lastLine >= 0) {
        position = message.tempSubString(lastLine + 1);
        message.truncate(lastLine);
    }
    print("error", std::to_string(error.getErrorCode()));
    print("message", message);
    if (!position.isEmpty()) print("position", position);
}

bool printError(const std::string& message) {
    print("error", message);
    return false;
}
