// Declared entities.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>

#include <RynCommon/RyName.h>

namespace RynCommon {

/// An entity as declared.
struct EntityDeclaration {
    enum class Kind : std::uint8_t { INTERNAL, EXTERNAL, UNPARSED };

    Kind kind = Kind::INTERNAL;
    UnicodeString text;      ///< replacement text of an internal entity
    UnicodeString systemId;  ///< of an external one, as written
    UnicodeString publicId;
    std::int32_t openCount = 0;  ///< inputs of it that are being read
};

/// Entities of one sort, general or parameter. The first declaration of a name binds
/// (XML 1.0, 4.2). Declarations stay where they are until the table is cleared.
class EntityTable {
public:
    using Map = std::map<RyNameEnum, EntityDeclaration>;

    void clear() { entities_.clear(); }
    bool isEmpty() const { return entities_.empty(); }
    /// Null when there is none.
    EntityDeclaration* find(RyName name);
    /// Enters a declaration, unless there is one of that name.
    void declare(RyName name, EntityDeclaration declaration);
    /// Enters an internal entity, or replaces what there is.
    void define(RyName name, const UnicodeString& text);
    /// Enters the declarations of `other` whose names are new.
    void merge(const EntityTable& other);
    /// Units held by all declarations, for bounding caches.
    std::size_t textSize() const;

private:
    Map entities_;
};

/// The replacement of one of the five entities that XML 1.0 predefines, as one character; 0 for
/// another name.
char16_t predefinedEntity(RyName name);

}  // namespace RynCommon
