// The packed sequence of MathML's entities, and the hash table over it.
#include "xml/names/MathMLEntities.h"

#include <RynCommon/RyString.h>

#include <array>
#include <memory>
#include <vector>

#include "core/TextHash.h"

namespace RynCommon {

namespace {

/// Name, U+0000, replacement, U+0000, and so on; ended by an empty name.
constexpr char16_t PACKED[] =
#include "xml/names/MathMLEntities.inc"
    ;

using Entity = MathMLEntities::Entity;

/// Open addressing at half load. The contents are fixed, so the hash needs no secret.
class EntityTable {
public:
    EntityTable() {
        entities_.reserve(MathMLEntities::COUNT);
        for (const char16_t* p = PACKED; *p != 0;) {
            const std::u16string_view name(p);
            const std::u16string_view text(name.data() + name.size() + 1);
            p = text.data() + text.size() + 1;
            entities_.push_back({name, text});
            slots_[slotOf(name)] = static_cast<std::uint16_t>(entities_.size());
        }
    }

    /// Index of an entity, -1 when there is none.
    std::int32_t indexOf(std::u16string_view name) const { return slots_[slotOf(name)] - 1; }
    const Entity& operator[](std::int32_t index) const {
        return entities_[static_cast<std::size_t>(index)];
    }

private:
    static constexpr std::size_t SLOTS = 4096;
    static_assert(SLOTS > MathMLEntities::COUNT);

    // Where the name is, or the free slot where it would be.
    std::size_t slotOf(std::u16string_view name) const {
        std::size_t slot = hashText(name.data(), name.size(), 0) % SLOTS;
        while (slots_[slot] != 0 && entities_[slots_[slot] - 1u].name != name)
            slot = (slot + 1) % SLOTS;
        return slot;
    }

    std::vector<Entity> entities_;
    std::array<std::uint16_t, SLOTS> slots_{};  // index plus 1, 0 for a free slot
};

const EntityTable& table() {
    static const EntityTable instance;
    return instance;
}

// The replacements as strings that lean on the packed sequence.
const UnicodeString& textAt(std::int32_t index) {
    static const std::unique_ptr<const UnicodeString[]> texts = [] {
        auto made = std::make_unique<UnicodeString[]>(MathMLEntities::COUNT);
        for (std::int32_t i = 0; i < MathMLEntities::COUNT; ++i) {
            const std::u16string_view text = table()[i].text;
            made[static_cast<std::size_t>(i)].setTo(true, text.data(),
                                                    static_cast<std::int32_t>(text.size()));
        }
        return made;
    }();
    return texts[static_cast<std::size_t>(index)];
}

}  // namespace

const char16_t* MathMLEntities::find(std::u16string_view name, std::int32_t& length) {
    const std::int32_t index = table().indexOf(name);
    if (index < 0) return nullptr;
    length = static_cast<std::int32_t>(table()[index].text.size());
    return table()[index].text.data();
}

const Entity& MathMLEntities::item(std::int32_t index) {
    return table()[index];
}

const UnicodeString& MathMLEntities::getText(const UnicodeString& name) {
    const std::u16string_view view(name.getBuffer(), static_cast<std::size_t>(name.length()));
    const std::int32_t index = table().indexOf(view);
    return index >= 0 ? textAt(index) : RyEmptyString::EMPTY_VALUE;
}

}  // namespace RynCommon
