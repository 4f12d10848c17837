// A text with a narrow form.
#include <RynCommon/RyTempFile.h>

namespace RynCommon {

RyCStr::RyCStr() = default;
RyCStr::RyCStr(const UnicodeString& text) : UnicodeString(text) {}
// The narrow form is made when it is asked for.
RyCStr::RyCStr(const RyCStr& other) : UnicodeString(other) {}
RyCStr::~RyCStr() = default;

RyCStr& RyCStr::operator=(const RyCStr& other) {
    UnicodeString::operator=(other);
    return *this;
}

const char* RyCStr::c_str() const {
    narrow_.clear();
    toUTF8String(narrow_);
    return narrow_.c_str();
}

}  // namespace RynCommon
