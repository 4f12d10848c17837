// The names of an XML vocabulary, numbered from 1.
#pragma once

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include <RynCommon/RyName.h>

namespace RynCommon {

/// Looks up texts and numbers of a fixed list of `Count` names in ascending order. The list is
/// constant data; the number that a name has in the shared name table is kept once it was asked
/// for. Any thread may call anything at any time, also before and after main().
template <std::size_t Count>
class Vocabulary {
public:
    using Names = std::array<std::u16string_view, Count>;

    constexpr explicit Vocabulary(const Names& names) : names_(names) {}

    /// Number of a text; 0 when it is not in the list.
    std::int32_t find(const UnicodeString& text) const {
        const std::u16string_view view(text.getBuffer(), static_cast<std::size_t>(text.length()));
        const auto found = std::lower_bound(names_.begin(), names_.end(), view);
        const bool equal = found != names_.end() && *found == view;
        return equal ? static_cast<std::int32_t>(found - names_.begin()) + 1 : 0;
    }

    /// The name of a number; the empty name outside of 1 to Count.
    RyName toRyName(std::int32_t number) {
        if (number < 1 || static_cast<std::size_t>(number) > Count) return RyName();
        const auto index = static_cast<std::size_t>(number - 1);
        const std::u16string_view text = names_[index];
        const UnicodeString alias(false, text.data(), static_cast<std::int32_t>(text.size()));
        const RyName known(interned_[index].load(std::memory_order_relaxed));
        // The shared table may have been cleaned up since.
        if (!known.isEmpty() && known.toString() == alias) return known;
        const RyName name(alias);
        interned_[index].store(name, std::memory_order_relaxed);
        return name;
    }

    void cleanup() {
        for (std::atomic<RyNameEnum>& number : interned_)
            number.store(RN_EMPTY, std::memory_order_relaxed);
    }

private:
    const Names& names_;
    std::array<std::atomic<RyNameEnum>, Count> interned_{};
};

/// Whether a list is as Vocabulary needs it.
template <std::size_t Count>
constexpr bool isAscending(const std::array<std::u16string_view, Count>& names) {
    for (std::size_t i = 1; i < Count; ++i) {
        if (names[i - 1] >= names[i]) return false;
    }
    return true;
}

}  // namespace RynCommon
