// What all serializers share: type identity and the generator's text.
#include <RynCommon/RyXmlSerializer.h>

#include "core/Immortal.h"

// The build passes the project's version.
#if !defined(RYNCOMMON_VERSION)
#define RYNCOMMON_VERSION ""
#endif

namespace RynCommon {

namespace {

#if defined(_WIN32)
constexpr const char* PLATFORM = "Windows";
#elif defined(__APPLE__)
constexpr const char* PLATFORM = "macOS";
#elif defined(__linux__)
constexpr const char* PLATFORM = "Linux";
#else
constexpr const char* PLATFORM = "POSIX";
#endif

// "RynCommon 1.2.3 (Linux, 64 bit)"
UnicodeString makeDefaultGenerator() {
    UnicodeString text(u"RynCommon ");
    if (sizeof RYNCOMMON_VERSION > 1) text.append(UnicodeString::fromUTF8(RYNCOMMON_VERSION " "));
    text.append(u'(').append(UnicodeString::fromUTF8(PLATFORM));
    return text.append(sizeof(void*) == 8 ? u", 64 bit)" : u", 32 bit)");
}

// Made once: a small document is written in not many times the time that this takes.
const UnicodeString& defaultGenerator() {
    struct Text : UnicodeString {
        Text() : UnicodeString(makeDefaultGenerator()) {}
    };
    static Immortal<Text> text;
    return text.get();
}

}  // namespace

RyXmlSerializer::RyXmlSerializer() : generator_(defaultGenerator()) {}

bool RyXmlSerializer::isA(unsigned int id) const {
    return id == getStaticTypeID() || RyRCObject::isA(id);
}

}  // namespace RynCommon
