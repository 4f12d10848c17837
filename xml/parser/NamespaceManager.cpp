// Namespace bindings; see the header.
#include "xml/parser/NamespaceManager.h"

#include <algorithm>

namespace RynCommon {

namespace {

constexpr std::size_t FIRST_SLOTS = 16;

std::size_t slotIndex(RyName prefix, std::size_t mask) {
    const auto number = static_cast<std::uint32_t>(static_cast<std::int32_t>(RyNameEnum(prefix)));
    return (number * 0x9E3779B1u >> 7) & mask;
}

}  // namespace

NamespaceManager::NamespaceManager() : slots_(FIRST_SLOTS) {}

void NamespaceManager::reset() {
    depth_ = 0;
    if (blocks_.size() > 1) blocks_.resize(1);
    forgetLast();
    if (bindings_.empty()) return;
    bindings_.clear();
    bindingCount_ = 0;
    std::fill(slots_.begin(), slots_.end(), Slot());
    prefixCount_ = 0;
    defaultBinding_ = -1;
}

void NamespaceManager::unbindFrom(std::size_t first) {
    forgetLast();
    while (bindings_.size() > first) {
        const Binding& binding = bindings_.back();
        if (binding.prefix.isEmpty())
            defaultBinding_ = binding.hidden;
        else
            slotOf(binding.prefix).binding = binding.hidden;
        bindings_.pop_back();
    }
    bindingCount_ = static_cast<std::uint32_t>(first);
}

void NamespaceManager::bind(RyName prefix, RyName ns) {
    forgetLast();
    const auto index = static_cast<std::int32_t>(bindings_.size());
    std::int32_t& innermost = prefix.isEmpty() ? defaultBinding_ : slotOf(prefix).binding;
    bindings_.push_back({prefix, ns, innermost});
    ++bindingCount_;
    innermost = index;
}

RyName NamespaceManager::lookupPrefix(RyName prefix) const {
    lastNamespace_ = findPrefix(prefix);
    lastPrefix_ = prefix;
    return lastNamespace_;
}

RyName NamespaceManager::findPrefix(RyName prefix) const {
    if (prefix == RN_xml) return RN_NS_xml;
    if (prefix == RN_xmlns) return RN_NS_xmlns;
    const std::size_t mask = slots_.size() - 1;
    std::size_t i = slotIndex(prefix, mask);
    while (slots_[i].prefix != RyNameEnum(prefix) && slots_[i].prefix != -1) i = (i + 1) & mask;
    return namespaceAt(slots_[i].binding);
}

/// The slot of a prefix, made where there is none.
NamespaceManager::Slot& NamespaceManager::slotOf(RyName prefix) {
    for (;;) {
        const std::size_t mask = slots_.size() - 1;
        std::size_t i = slotIndex(prefix, mask);
        while (slots_[i].prefix != RyNameEnum(prefix) && slots_[i].prefix != -1) i = (i + 1) & mask;
        if (slots_[i].prefix != -1) return slots_[i];
        if ((prefixCount_ + 1) * 2 > slots_.size()) {
            grow();
            continue;
        }
        ++prefixCount_;
        slots_[i].prefix = RyNameEnum(prefix);
        return slots_[i];
    }
}

void NamespaceManager::grow() {
    std::vector<Slot> larger(slots_.size() * 2);
    const std::size_t mask = larger.size() - 1;
    for (const Slot& slot : slots_) {
        if (slot.prefix == -1) continue;
        std::size_t i = slotIndex(RyName(slot.prefix), mask);
        while (larger[i].prefix != -1) i = (i + 1) & mask;
        larger[i] = slot;
    }
    slots_ = std::move(larger);
}

std::size_t NamespaceManager::bindingCount(int depth) const {
    if (depth < 0) return 0;
    const auto level = static_cast<std::size_t>(depth);
    return level < depth_ ? at(level).firstBinding : bindings_.size();
}

RyName NamespaceManager::bindingPrefix(int index) const {
    const auto i = static_cast<std::size_t>(index);
    return index >= 0 && i < bindings_.size() ? bindings_[i].prefix : RyName();
}

RyName NamespaceManager::bindingNamespace(int index) const {
    const auto i = static_cast<std::size_t>(index);
    return index >= 0 && i < bindings_.size() ? bindings_[i].ns : RyName();
}

}  // namespace RynCommon
