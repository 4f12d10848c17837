// The character entities of MathML 2, one table for the process.
#pragma once

#include <cstdint>
#include <string_view>

#include <RynCommon/Forward.h>

namespace RynCommon {

/// The table is built once, on first use, and only read from then on, by any thread. Texts stay
/// valid for the life of the process.
class MathMLEntities {
public:
    struct Entity {
        std::u16string_view name;
        std::u16string_view text;  ///< up to three units; ends in U+0000 behind the view
    };

    MathMLEntities() = delete;

    static constexpr std::int32_t COUNT = 2086;

    /// Replacement of an entity and its number of units; null, `length` untouched, for an unknown
    /// name.
    static const char16_t* find(std::u16string_view name, std::int32_t& length);
    /// The entity at `index`, 0 to COUNT - 1, in the order of MathML's DTD.
    static const Entity& item(std::int32_t index);
    /// Replacement of an entity; the empty text for an unknown name.
    static const UnicodeString& getText(const UnicodeString& name);
};

}  // namespace RynCommon
