// Bindings of prefixes, and which name gets which.
#include "xml/serializer/NamespaceScopes.h"

#include <algorithm>
#include <string>

namespace RynCommon {

namespace {

/// So many prefixes in use are tried in a row before the search starts above them for good.
constexpr int PATIENCE = 64;

RyName makePlainPrefix(std::int32_t number) {
    return RyName(UnicodeString(u"ns") + UnicodeString::fromUTF8(std::to_string(number)));
}

}  // namespace

// Room for what most documents have.
NamespaceScopes::NamespaceScopes() {
    bindings_.reserve(8);
    scopes_.reserve(16);
    clear();
}

void NamespaceScopes::clear() {
    bindings_.clear();
    scopes_.clear();
    prefixes_.clear();
    namespaces_.clear();
    generated_ = 0;
    firstPlain_ = 0;
    // Bound from the start and in no scope that anyone writes.
    bind(RN_xml, RN_NS_xml);
    openScope();
    beginTag();
}

std::int32_t NamespaceScopes::topOf(RyName prefix) const {
    const PrefixState* const state = prefixes_.find(prefix);
    return state != nullptr ? state->top : NONE;
}

bool NamespaceScopes::isInnermost(std::int32_t binding) const {
    return binding != NONE && static_cast<std::size_t>(binding) >= scopes_.back().firstBinding;
}

// "xml" belongs to its namespace for good.
bool NamespaceScopes::isClaimed(RyName prefix) const {
    if (prefix == RN_xml || isClaimedBy(ofElements_, prefix) || isClaimedBy(ofAttributes_, prefix))
        return true;
    const PrefixState* const state = prefixes_.find(prefix);
    return state != nullptr && state->claimedBy == tag_;
}

RyName NamespaceScopes::getNamespace(RyName prefix) const {
    const std::int32_t top = topOf(prefix);
    return top != NONE ? bindings_[top].ns : RN_EMPTY;
}

RyName NamespaceScopes::findInheritedDefault() const {
    std::int32_t binding = topOf(RN_EMPTY);
    while (isInnermost(binding)) binding = bindings_[binding].hidden;
    return binding != NONE ? bindings_[binding].ns : RN_EMPTY;
}

std::optional<RyName> NamespaceScopes::findPrefix(RyName ns) const {
    const NamespaceState* const state = namespaces_.find(ns);
    if (state == nullptr || state->latest == NONE) return std::nullopt;
    return RyName(bindings_[state->latest].prefix);
}

std::optional<RyName> NamespaceScopes::findAttributePrefix(RyName ns) const {
    const NamespaceState* const state = namespaces_.find(ns);
    std::int32_t binding = state != nullptr ? state->latest : NONE;
    // At most one default is in force.
    if (binding != NONE && bindings_[binding].prefix == RN_EMPTY)
        binding = bindings_[binding].older;
    if (binding == NONE) return std::nullopt;
    return RyName(bindings_[binding].prefix);
}

void NamespaceScopes::link(std::int32_t index) {
    const Binding& binding = bindings_[index];
    if (binding.older != NONE) bindings_[binding.older].newer = index;
    if (binding.newer != NONE)
        bindings_[binding.newer].older = index;
    else
        namespaces_[binding.ns].latest = index;
}

void NamespaceScopes::unlink(std::int32_t index) {
    const Binding& binding = bindings_[index];
    if (binding.older != NONE) bindings_[binding.older].newer = binding.newer;
    if (binding.newer != NONE)
        bindings_[binding.newer].older = binding.older;
    else
        namespaces_[binding.ns].latest = binding.older;
}

void NamespaceScopes::bind(RyName prefix, RyName ns) {
    ++change_;
    const auto index = static_cast<std::int32_t>(bindings_.size());
    const std::int32_t hidden = topOf(prefix);
    if (hidden != NONE) unlink(hidden);
    bindings_.push_back({prefix, ns, hidden, namespaces_[ns].latest, NONE});
    link(index);
    prefixes_[prefix].top = index;
}

void NamespaceScopes::unbindLast() {
    ++change_;
    const auto index = static_cast<std::int32_t>(bindings_.size()) - 1;
    const Binding binding = bindings_.back();
    unlink(index);
    bindings_.pop_back();
    prefixes_[binding.prefix].top = binding.hidden;
    if (binding.hidden != NONE) link(binding.hidden);
}

RyName NamespaceScopes::generatePrefix() {
    if (!plainPrefixes_) return RyName::generateID(UnicodeString());
    generated_ = std::max(generated_, firstPlain_);
    for (int tries = 1;; ++tries) {
        const RyName prefix = makePlainPrefix(++generated_);
        if (!getNamespace(prefix).isEmpty() || isClaimed(prefix)) continue;
        if (tries > PATIENCE) firstPlain_ = generated_ - 1;
        return prefix;
    }
}

RyName NamespaceScopes::declareGenerated(RyName ns) {
    const RyName prefix = generatePrefix();
    bind(prefix, ns);
    return prefix;
}

// Binds a prefix for a name; a declaration of this scope that has it moves.
void NamespaceScopes::take(RyName prefix, RyName ns) {
    const std::int32_t top = topOf(prefix);
    const RyName displaced = isInnermost(top) ? bindings_[top].ns : RN_EMPTY;
    bind(prefix, ns);
    claim(prefix);
    if (!displaced.isEmpty()) declareGenerated(displaced);
}

void NamespaceScopes::declare(RyName prefix, RyName ns) {
    if (prefix == RN_xml || getNamespace(prefix) == ns) return;
    declareExplicitly(prefix, ns);
}

void NamespaceScopes::declareExplicitly(RyName prefix, RyName ns) {
    if (prefix == RN_xml) return;
    const bool bound = isInnermost(topOf(prefix));
    const bool same = getNamespace(prefix) == ns;
    if (bound && same) return;
    if (!bound && (same || !isClaimed(prefix)))
        bind(prefix, ns);
    else if (!ns.isEmpty())
        declareGenerated(ns);
}

// What nearly every other name asks for, in one look-up.
bool NamespaceScopes::claimInForce(Recent& recent, RyName ns, RyName wanted) {
    if (wanted == RN_xml || ns == RN_NS_xml) return false;
    PrefixState& state = prefixes_[wanted];
    if (state.claimedBy == tag_ || state.top == NONE || bindings_[state.top].ns != ns) return false;
    state.claimedBy = tag_;
    if (recent.claimedBy == tag_) claim(recent.prefix);
    recent = {ns, wanted, change_, 0};
    return true;
}

RyName NamespaceScopes::claimNewForElement(RyName ns, RyName wanted) {
    if (claimInForce(ofElements_, ns, wanted)) return wanted;
    if (ns == RN_NS_xml) return RN_xml;
    if (isClaimed(wanted)) return claimAnyForElement(ns);
    if (getNamespace(wanted) == ns)
        claim(wanted);
    else
        take(wanted, ns);
    return wanted;
}

RyName NamespaceScopes::claimAnyForElement(RyName ns) {
    const std::optional<RyName> found = findPrefix(ns);
    const RyName prefix = found ? *found : declareGenerated(ns);
    claim(prefix);
    return prefix;
}

RyName NamespaceScopes::claimNewForAttribute(RyName ns, RyName wanted) {
    if (!wanted.isEmpty() && claimInForce(ofAttributes_, ns, wanted)) return wanted;
    if (ns == RN_NS_xml) return RN_xml;
    if (!wanted.isEmpty() && getNamespace(wanted) == ns) {
        claim(wanted);
        return wanted;
    }
    if (!wanted.isEmpty() && !isClaimed(wanted)) {
        take(wanted, ns);
        return wanted;
    }
    const std::optional<RyName> found = findAttributePrefix(ns);
    const RyName prefix = found ? *found : declareGenerated(ns);
    claim(prefix);
    return prefix;
}

}  // namespace RynCommon
