// Values of properties.
#pragma once

#include <RynCommon/RyValue.h>

#include <vector>

#include "resources/ole/CodePages.h"
#include "resources/ole/PropertySections.h"

namespace RynCommon::ole {

/// Which types are read: the 16- and 32-bit integers and narrow texts, or all that are known.
enum class TypeRange : unsigned char { BASIC, ALL };

/// Reads a property, of a vector its first element. 1 when `value` was set, 0 when the property has
/// no element or one of another type, -1 when the stream ends before.
int readValue(PropertyReader& reader, const Property& property, TypeRange range,
              CodePageDecoder& decoder, RyValue& value);

/// Reads a property that holds an integer; a 16-bit one counts as unsigned. False when it does not.
bool readUnsigned(PropertyReader& reader, const Property& property, std::int32_t& value);

/// Appends the texts in a blob of hyperlinks; nothing when it is malformed. How many, or -1.
int readHyperLinks(PropertyReader& reader, const Property& property,
                   std::vector<UnicodeString>& links);

}  // namespace RynCommon::ole
