// What all serializers share: type identity and the generator's text.
#include <RynCommon/RyXmlSerializer.h>

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

}  // namespace

RyXmlSerializer::RyXmlSerializer() : generator_(makeDefaultGenerator()) {}

bool RyXmlSerializer::isA(unsigned int id) const {
    return id == getStaticTypeID() || RyRCObject::isA(id);
}

}  // namespace RynCommon
