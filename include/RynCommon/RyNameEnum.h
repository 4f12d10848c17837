// The numbers of the built-in names.
#pragma once

#include <cstdint>

namespace RynCommon {

/// Number of an interned name: 0 the empty name, 1 to 1597 the built-in names (constants RN_...),
/// above that names interned at run time. `RN_xml_lang` is the name "xml:lang": each character that
/// C++ does not allow is "_".
enum RyNameEnum : std::int32_t {
    RN_EMPTY = 0,
#define RYN_BUILTIN_NAME(number, identifier, text) RN_##identifier = number,
#include <RynCommon/RyBuiltinNames.inc>
#undef RYN_BUILTIN_NAME
};

/// The highest built-in number.
inline constexpr std::int32_t RYNAME_BUILTIN_LAST = 1597;

}  // namespace RynCommon
