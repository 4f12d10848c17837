// A generated unique identifier.
#include <RynCommon/RyUUID.h>
#include <uuid/uuid.h>

#include "core/MemoryCheck.h"
#include "text/NumberText.h"

namespace RynCommon {

static_assert(sizeof(uuid_t) == 16);

RyUUID::RyUUID() {
    uuid_generate_random(bytes_.data());
}

UnicodeString RyUUID::toString() const {
    UnicodeString text;
    for (const std::uint8_t byte : bytes_) appendHex(text, byte, 2);
    requireWhole(text);
    return text;
}

}  // namespace RynCommon
