// Attributes of a start tag; see the header.
#include "xml/parser/AttributeList.h"
#include "core/MemoryCheck.h"

#include <bit>

namespace RynCommon {

namespace {

std::uint64_t keyOf(const ParsedAttribute& attribute) {
    const auto ns = static_cast<std::uint32_t>(RyNameEnum(attribute.ns));
    const auto local = static_cast<std::uint32_t>(RyNameEnum(attribute.local));
    return std::uint64_t{ns} << 32 | local;
}

}  // namespace

void ParsedAttribute::copyPlain() {
    if (plain_ == nullptr) return;
    value_ = takeWhole(UnicodeString(plain_, static_cast<std::int32_t>(length_)));
    plain_ = nullptr;
}

void AttributeList::ownValues() {
    for (std::size_t i = owned_; i < count_; ++i) slots_[i].copyPlain();
    // The last one may still be without its value.
    owned_ = count_ > 0 ? count_ - 1 : 0;
}

const ParsedAttribute* AttributeList::find(RyName ns, RyName local) const {
    for (std::size_t i = 0; i < count_; ++i)
        if (slots_[i].local == local && slots_[i].ns == ns) return &slots_[i];
    return nullptr;
}

/// Empties the set and puts the first attribute in.
void AttributeList::prepareSet() {
    seen_.assign(std::bit_ceil(count_ * 2), 0);
    isInSet(0);
}

/// Whether the set holds the attribute's name; it does afterwards.
bool AttributeList::isInSet(std::size_t index) {
    const std::uint64_t key = keyOf(slots_[index]);
    const std::size_t mask = seen_.size() - 1;
    std::size_t slot = (key * 0x9E3779B97F4A7C15u >> 32) & mask;
    while (seen_[slot] != 0 && seen_[slot] != key) slot = (slot + 1) & mask;
    const bool found = seen_[slot] == key;
    seen_[slot] = key;
    return found;
}

}  // namespace RynCommon
