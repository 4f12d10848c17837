// The shared constant strings.
//
// The public names are references, bound at compile time to storage that holds no object yet. Every
// translation unit that includes the header has an RyStringConstants of its own ahead of its other
// statics, and the first of these to be initialised makes the objects. They are never destroyed, so
// that static destructors may use them, too.
#include <RynCommon/RyString.h>

#include <new>

namespace RynCommon {

namespace {

template <class T>
union ConstantRoom {
    constexpr ConstantRoom() : nothing(0) {}
    constexpr ~ConstantRoom() {}
    char nothing;
    T value;
};

constinit ConstantRoom<RyEmptyString> emptyRoom;
constinit ConstantRoom<RyBogusString> bogusRoom;

bool makeConstants() {
    ::new (static_cast<void*>(&emptyRoom.value)) RyEmptyString();
    ::new (static_cast<void*>(&bogusRoom.value)) RyBogusString();
    return true;
}

}  // namespace

constinit const RyEmptyString& RyEmptyString::EMPTY_VALUE = emptyRoom.value;
constinit const RyBogusString& RyBogusString::BOGUS_VALUE = bogusRoom.value;

RyEmptyString::RyEmptyString() = default;
RyEmptyString::~RyEmptyString() = default;
RyBogusString::RyBogusString() {
    setToBogus();
}
RyBogusString::~RyBogusString() = default;

RyStringConstants::RyStringConstants() {
    [[maybe_unused]] static const bool made = makeConstants();
}
RyStringConstants::~RyStringConstants() = default;

}  // namespace RynCommon
