// The namespace declarations in force while a document is written.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include <RynCommon/RyName.h>

#include "xml/serializer/NumberTable.h"

namespace RynCommon {

/// A stack of scopes, one for each open element, that hold bindings of prefixes to namespaces.
///
/// A name that has been written keeps its prefix: it has claimed the prefix for the rest of its
/// start tag. Whoever wants the same prefix for another namespace in that tag gets another one: one
/// in force for the namespace, or a generated one. A declaration that no name has used yet gives
/// way to a name and moves to a generated prefix.
///
/// Every operation takes the same time however many scopes and bindings there are. Mostly an
/// element's name comes with the prefix and namespace of the element before, and so do attributes'
/// names: as long as no binding comes or goes in between, that asks for no look-up at all.
class NamespaceScopes {
public:
    NamespaceScopes();

    /// Closes all scopes.
    void clear();
    /// Whether generated prefixes are "ns1", "ns2", ..., lowest free one first, or names that begin
    /// with a hyphen.
    void setPlainPrefixes(bool on) { plainPrefixes_ = on; }
    void openScope() { scopes_.push_back({bindings_.size(), generated_}); }
    void closeScope() {
        while (bindings_.size() > scopes_.back().firstBinding) unbindLast();
        generated_ = scopes_.back().generated;
        scopes_.pop_back();
    }
    /// Forgets the claims of the start tag before.
    void beginTag() { ++tag_; }

    /// Namespace bound to `prefix`; the empty name when there is none.
    RyName getNamespace(RyName prefix) const;
    /// The default namespace outside of the innermost scope.
    RyName getInheritedDefault() const {
        return bindings_.size() <= 1 ? RyName() : findInheritedDefault();
    }
    /// The latest prefix in force for `ns`, the empty one being the default; absent when there is
    /// none.
    std::optional<RyName> findPrefix(RyName ns) const;
    /// The same, the default left out, since it does not apply to attributes.
    std::optional<RyName> findAttributePrefix(RyName ns) const;
    /// A new prefix for `ns`, declared in the innermost scope.
    RyName declareGenerated(RyName ns);

    /// Declares where `prefix` is not bound to `ns` already.
    void declare(RyName prefix, RyName ns);
    /// Declares in the innermost scope in any case.
    void declareExplicitly(RyName prefix, RyName ns);
    /// The prefix under which the current tag's element gets to be in `ns`: `wanted` unless that is
    /// impossible. An empty `ns` takes the default namespace away.
    RyName claimForElement(RyName ns, RyName wanted) {
        return claimAgain(ofElements_, ns, wanted) ? wanted : claimNewForElement(ns, wanted);
    }
    /// The same for an attribute in a namespace; never empty.
    RyName claimForAttribute(RyName ns, RyName wanted) {
        return claimAgain(ofAttributes_, ns, wanted) ? wanted : claimNewForAttribute(ns, wanted);
    }
    /// The prefix in force for `ns`, or a generated one, for the current tag's element.
    RyName claimAnyForElement(RyName ns);

    /// Calls `visit(prefix, namespace)` for what the innermost scope declares, in order.
    template <class Visitor>
    void visitDeclarations(Visitor visit) const {
        for (std::size_t i = scopes_.back().firstBinding; i < bindings_.size(); ++i) {
            // A declaration that has given way is still in the list, but not in force.
            const Binding& binding = bindings_[i];
            if (topOf(binding.prefix) == static_cast<std::int32_t>(i))
                visit(RyName(binding.prefix), RyName(binding.ns));
        }
    }

private:
    static constexpr std::int32_t NONE = -1;

    /// Bindings in force for one namespace form a list, latest first. A binding that another one
    /// hides leaves the list but keeps its links: bindings come and go like a stack, so they are
    /// right again when it returns.
    struct Binding {
        RyNameEnum prefix;
        RyNameEnum ns;
        std::int32_t hidden;  // the binding of the same prefix before
        std::int32_t older;
        std::int32_t newer;
    };
    struct Scope {
        std::size_t firstBinding;
        std::int32_t generated;  // number of the last plain prefix generated outside
    };
    struct PrefixState {
        std::int32_t top = NONE;
        std::uint64_t claimedBy = 0;
    };
    struct NamespaceState {
        std::int32_t latest = NONE;
    };

    /// What was claimed last, and that it was in force then.
    struct Recent {
        RyNameEnum ns = RN_EMPTY;
        RyNameEnum prefix = RN_EMPTY;
        std::uint64_t change = 0;     // the number of changes to bindings up to then
        std::uint64_t claimedBy = 0;  // the tag, unless the table knows
    };

    bool claimAgain(Recent& recent, RyName ns, RyName wanted) {
        if (recent.ns != ns || recent.prefix != wanted || recent.change != change_) return false;
        recent.claimedBy = tag_;
        return true;
    }
    bool isClaimedBy(const Recent& recent, RyName prefix) const {
        return recent.claimedBy == tag_ && recent.prefix == prefix;
    }
    RyName claimNewForElement(RyName ns, RyName wanted);
    RyName claimNewForAttribute(RyName ns, RyName wanted);
    std::int32_t topOf(RyName prefix) const;
    RyName findInheritedDefault() const;
    bool isInnermost(std::int32_t binding) const;
    bool isClaimed(RyName prefix) const;
    void claim(RyName prefix) { prefixes_[prefix].claimedBy = tag_; }
    void bind(RyName prefix, RyName ns);
    void unbindLast();
    void link(std::int32_t binding);
    void unlink(std::int32_t binding);
    bool claimInForce(Recent& recent, RyName ns, RyName wanted);
    void take(RyName prefix, RyName ns);
    RyName generatePrefix();

    std::vector<Binding> bindings_;
    std::vector<Scope> scopes_;
    NumberTable<PrefixState> prefixes_;
    NumberTable<NamespaceState> namespaces_;
    std::uint64_t tag_ = 1;
    std::uint64_t change_ = 1;
    Recent ofElements_;
    Recent ofAttributes_;
    std::int32_t generated_ = 0;   // number of the last plain prefix generated
    std::int32_t firstPlain_ = 0;  // numbers up to this one are not tried any more
    bool plainPrefixes_ = false;
};

}  // namespace RynCommon
