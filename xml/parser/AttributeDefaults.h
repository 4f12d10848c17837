// Attribute declarations of the internal subset.
#pragma once

#include <cstdint>
#include <unordered_map>
#include <vector>

#include <RynCommon/RyName.h>

namespace RynCommon {

/// One declared attribute of an element.
struct AttributeDeclaration {
    RyName prefix;
    RyName local;
    bool tokenized = false;  ///< any type but CDATA: white space is collapsed (XML 1.0, 3.3.3)
    bool hasDefault = false;
    UnicodeString defaultValue;
};

/// Declarations by element. The first declaration of an attribute binds.
class AttributeDefaults {
public:
    using Declarations = std::vector<AttributeDeclaration>;

    void clear() { elements_.clear(); }
    bool isEmpty() const { return elements_.empty(); }
    void declare(RyName elementPrefix, RyName elementLocal, const AttributeDeclaration& attribute);
    /// Null when the element has none.
    const Declarations* find(RyName elementPrefix, RyName elementLocal) const;

    /// Removes leading and trailing blanks and makes one of each run of them.
    static void collapse(UnicodeString& value);

private:
    static std::uint64_t key(RyName prefix, RyName local) {
        return std::uint64_t{static_cast<std::uint32_t>(RyNameEnum(prefix))} << 32 |
               static_cast<std::uint32_t>(RyNameEnum(local));
    }

    std::unordered_map<std::uint64_t, Declarations> elements_;
};

}  // namespace RynCommon
