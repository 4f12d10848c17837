// A text formatted from a pattern.
#include <unicode/fmtable.h>
#include <unicode/msgfmt.h>

#include <RynCommon/RyError.h>

namespace RynCommon {

RyMessage::RyMessage(const UnicodeString& pattern, const UnicodeString& arg0,
                     const UnicodeString& arg1, const UnicodeString& arg2,
                     const UnicodeString& arg3) {
    const icu::Formattable arguments[] = {arg0, arg1, arg2, arg3};
    UErrorCode status = U_ZERO_ERROR;
    icu::MessageFormat::format(pattern, arguments, 4, text_, status);
}

RyMessage::RyMessage(const RyMessage& other) = default;
RyMessage& RyMessage::operator=(const RyMessage& other) = default;
RyMessage::~RyMessage() = default;

}  // namespace RynCommon
