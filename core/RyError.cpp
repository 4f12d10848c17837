// The error value.
#include <RynCommon/RyError.h>

#include "core/Decimal.h"

namespace RynCommon {

namespace {

constexpr unsigned short WARNING_FLAG = 0x0400;

void appendNumber(UnicodeString& to, const char16_t* label, std::int32_t number) {
    to.append(label, -1);
    appendDecimal(to, number);
    to.append(u", ", 2);
}

UnicodeString describe(const std::exception& error) {
    const char* const what = error.what();
    UnicodeString text(u"C++ exception: ");
    if (what != nullptr) text.append(UnicodeString::fromUTF8(what));
    return text;
}

}  // namespace

RyError::RyError() = default;

RyError::RyError(unsigned short code, const UnicodeString& rawMessage, const UnicodeString& source,
                 int line, int column, const UnicodeString& uri)
    : code_(code),
      rawMessage_(rawMessage),
      source_(source),
      line_(line),
      column_(column),
      uri_(uri) {}

RyError::RyError(const std::bad_alloc&, const UnicodeString& source)
    : code_(2049), rawMessage_(u"Out of memory."), source_(source) {}

RyError::RyError(const std::exception& error, const UnicodeString& source)
    : code_(2050), rawMessage_(describe(error)), source_(source) {}

RyError::RyError(const RyError& other) = default;
RyError& RyError::operator=(const RyError& other) = default;
RyError::~RyError() = default;

UnicodeString RyError::getPositionDescription() const {
    UnicodeString text;
    if (line_ != -1) appendNumber(text, u"Line ", line_);
    if (column_ != -1) appendNumber(text, u"Col ", column_);
    text.append(uri_);
    return text;
}

UnicodeString RyError::getMessage() const {
    const UnicodeString position = getPositionDescription();
    UnicodeString message = rawMessage_;
    if (!position.isEmpty()) message.append(u'\n').append(position);
    return message;
}

void RyError::setMessage(const UnicodeString& message) {
    rawMessage_ = message;
    UnicodeString ending = getPositionDescription();
    if (ending.isEmpty()) return;
    ending.insert(0, u'\n');
    if (rawMessage_.endsWith(ending)) rawMessage_.truncate(rawMessage_.length() - ending.length());
}

void RyError::appendMessage(const UnicodeString& text) {
    if (text.isEmpty()) return;
    if (!rawMessage_.isEmpty()) rawMessage_.append(u'\n');
    rawMessage_.append(text);
}

void RyError::throwFatalError() const {
    if (code_ == 0 || (code_ & WARNING_FLAG) != 0) return;
    throw RyError(*this);
}

}  // namespace RynCommon
