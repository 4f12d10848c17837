// Open elements and the namespace bindings in force.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include <RynCommon/RyName.h>

#include "xml/parser/NameCache.h"

namespace RynCommon {

/// The stack of open elements with the namespaces that each declares.
///
/// Bindings lie in one array, outermost first. A hash table leads from a prefix to its innermost
/// binding, and each binding to the one that it hides, so that a look-up costs the same at any
/// depth.
class NamespaceManager {
public:
    struct Element {
        const CachedName* name = nullptr;
        RyName ns;
        std::uint32_t firstBinding = 0;
    };

    NamespaceManager();

    /// No element and no binding.
    void reset();
    /// The same, and frees the memory of elements.
    void release() {
        reset();
        blocks_.clear();
    }

    /// Opens an element; bind() then declares on it.
    void push(const CachedName& name) {
        if (depth_ == blocks_.size() * BLOCK) addBlock();
        at(depth_++) = {&name, RyName(), bindingCount_};
    }
    /// Closes the innermost element.
    void pop() {
        const std::size_t first = at(--depth_).firstBinding;
        if (bindingCount_ > first) unbindFrom(first);
    }
    /// Binds on the innermost open element, or around the root when none is open. An empty
    /// namespace unbinds.
    void bind(RyName prefix, RyName ns);
    /// The namespace of a prefix (empty: the default); the empty name when unbound. "xml" and
    /// "xmlns" are always bound.
    RyName lookup(RyName prefix) const {
        if (prefix.isEmpty()) return defaultNamespace();
        return prefix == lastPrefix_ ? lastNamespace_ : lookupPrefix(prefix);
    }

    RyName defaultNamespace() const { return namespaceAt(defaultBinding_); }

    int depth() const { return static_cast<int>(depth_); }
    Element& top() { return at(depth_ - 1); }
    const Element& top() const { return at(depth_ - 1); }

    /// Number of bindings of the elements 1 to `depth` and around them.
    std::size_t bindingCount(int depth) const;
    RyName bindingPrefix(int index) const;
    RyName bindingNamespace(int index) const;

private:
    struct Binding {
        RyName prefix;
        RyName ns;
        std::int32_t hidden;  // binding of the same prefix that this one hides, or -1
    };
    struct Slot {
        std::int32_t prefix = -1;  // -1: free
        std::int32_t binding = -1;
    };

    /// Elements lie in blocks that stay where they are: a byte of input may open an element, and
    /// an array that grows would hold twice as many for a moment.
    static constexpr std::size_t BLOCK = 256;

    Element& at(std::size_t index) { return blocks_[index / BLOCK][index % BLOCK]; }
    const Element& at(std::size_t index) const { return blocks_[index / BLOCK][index % BLOCK]; }
    void addBlock() { blocks_.push_back(std::make_unique<Element[]>(BLOCK)); }
    Slot& slotOf(RyName prefix);
    RyName namespaceAt(std::int32_t binding) const {
        return binding < 0 ? RyName() : bindings_[static_cast<std::size_t>(binding)].ns;
    }
    RyName lookupPrefix(RyName prefix) const;
    RyName findPrefix(RyName prefix) const;
    void forgetLast() { lastPrefix_ = lastNamespace_ = RyName(); }
    void unbindFrom(std::size_t first);
    void grow();

    std::vector<std::unique_ptr<Element[]>> blocks_;
    std::size_t depth_ = 0;
    std::vector<Binding> bindings_;
    std::uint32_t bindingCount_ = 0;  // the size of bindings_
    std::vector<Slot>
        slots_;  // prefixes other than the empty one; open addressing, never removed from
    std::size_t prefixCount_ = 0;
    std::int32_t defaultBinding_ = -1;
    // What was looked up last; mostly it is looked up again.
    mutable RyName lastPrefix_;
    mutable RyName lastNamespace_;
};

}  // namespace RynCommon
