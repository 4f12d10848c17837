// Declared entities; see the header.
#include "xml/parser/Entities.h"

#include <utility>

namespace RynCommon {

EntityDeclaration* EntityTable::find(RyName name) {
    const auto found = entities_.find(name);
    return found == entities_.end() ? nullptr : &found->second;
}

void EntityTable::declare(RyName name, EntityDeclaration declaration) {
    declaration.openCount = 0;
    entities_.try_emplace(name, std::move(declaration));
}

void EntityTable::define(RyName name, const UnicodeString& text) {
    EntityDeclaration& entity = entities_[name];
    entity.kind = EntityDeclaration::Kind::INTERNAL;
    entity.text = text;
}

void EntityTable::merge(const EntityTable& other) {
    for (const auto& [name, declaration] : other.entities_) declare(name, declaration);
}

std::size_t EntityTable::textSize() const {
    std::size_t size = 0;
    for (const auto& [name, entity] : entities_)
        size += sizeof(Map::value_type) +
                2u * static_cast<std::size_t>(entity.text.length() + entity.systemId.length() +
                                              entity.publicId.length());
    return size;
}

char16_t predefinedEntity(RyName name) {
    switch (RyNameEnum(name)) {
        case RN_lt:
            return u'<';
        case RN_gt:
            return u'>';
        case RN_amp:
            return u'&';
        case RN_apos:
            return u'\'';
        case RN_quot:
            return u'"';
        default:
            return 0;
    }
}

}  // namespace RynCommon
