// Names. Their construction from a value stands in RyNamedValue.cpp, which may know values.
#include <RynCommon/RyName.h>

#include <RynCommon/RyNameTable.h>

namespace RynCommon {

RyName::RyName(const UnicodeString& text) : number_(RyNameTable::getSharedNameEnum(text)) {}

const UnicodeString& RyName::toString() const {
    return RyNameTable::getSharedNameString(number_);
}

RyName RyName::generateID(const UnicodeString& prefix) {
    return RyNameTable::generateSharedName(prefix);
}

}  // namespace RynCommon
