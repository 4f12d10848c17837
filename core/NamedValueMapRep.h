// What a map of named values holds.
#pragma once

#include <memory>
#include <vector>

#include <RynCommon/RyNamedValue.h>

namespace RynCommon {

/// The entries, in ascending order of their signed name numbers, no two with one name.
struct RyNamedValueMap::Rep {
    using Entries = std::vector<RyNamedValue>;

    /// The first entry whose name is not below `name`.
    Entries::iterator lowerBound(RyName name);
    /// The entry of that name, or the end.
    Entries::iterator find(RyName name);

    Entries entries;
    /// Links the entries of maps that wait for their destruction.
    std::unique_ptr<Rep> nextDying;
};

}  // namespace RynCommon
