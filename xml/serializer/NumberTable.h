// A small hash table from name numbers to plain values.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include <RynCommon/RyNameEnum.h>

namespace RynCommon {

/// Maps name numbers to values of a plain type. Open addressing with linear probing, at most half
/// full; entries are never removed one by one. References stay valid until the next call of
/// operator[].
template <class Value>
class NumberTable {
public:
    /// Keeps a table of the first size, to be filled again.
    void clear() {
        if (slots_.size() == FIRST_SIZE)
            std::fill(slots_.begin(), slots_.end(), Slot{});
        else
            slots_.clear();
        count_ = 0;
    }

    /// The value of `key`, or null when there is none.
    const Value* find(RyNameEnum key) const {
        if (slots_.empty()) return nullptr;
        const Slot& slot = slots_[position(key)];
        return slot.used ? &slot.value : nullptr;
    }

    /// The value of `key`, made when it is not there yet.
    Value& operator[](RyNameEnum key) {
        if (2 * (count_ + 1) > slots_.size()) grow();
        Slot& slot = slots_[position(key)];
        if (!slot.used) {
            slot = {key, true, Value{}};
            ++count_;
        }
        return slot.value;
    }

private:
    static constexpr std::size_t FIRST_SIZE = 16;

    struct Slot {
        RyNameEnum key = RN_EMPTY;
        bool used = false;
        Value value{};
    };

    // The slot that holds `key`, or the free one where it belongs. The table's size is a power of
    // two.
    std::size_t position(RyNameEnum key) const {
        const std::size_t mask = slots_.size() - 1;
        // Numbers come in sequence; the multiplication (by 2^64 over the golden ratio) spreads
        // them.
        std::size_t i = (static_cast<std::uint32_t>(key) * 0x9E3779B97F4A7C15u >> 32) & mask;
        while (slots_[i].used && slots_[i].key != key) i = (i + 1) & mask;
        return i;
    }

    void grow() {
        std::vector<Slot> old(slots_.empty() ? FIRST_SIZE : 2 * slots_.size());
        old.swap(slots_);
        for (const Slot& slot : old) {
            if (slot.used) slots_[position(slot.key)] = slot;
        }
    }

    std::vector<Slot> slots_;
    std::size_t count_ = 0;
};

}  // namespace RynCommon
