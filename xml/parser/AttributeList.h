// The attributes of the current start tag.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include <RynCommon/RyName.h>

namespace RynCommon {

/// One attribute. A value that stands in the window as it is rests there, until the window leaves
/// or somebody asks for a string; the string's buffer is used again by later tags.
class ParsedAttribute {
public:
    RyName prefix;
    RyName local;
    RyName ns;

    void setPlain(const char16_t* text, std::size_t length) {
        plain_ = text;
        length_ = static_cast<std::uint32_t>(length) & MOST_UNITS;
        isAliased_ = false;
    }
    /// The string that holds a value which stands nowhere as it is; what it was is left over.
    UnicodeString& own() {
        plain_ = nullptr;
        return value_;
    }
    const UnicodeString& value() const {
        if (plain_ != nullptr && !isAliased_) {
            value_.setTo(false, plain_, static_cast<std::int32_t>(length_));
            isAliased_ = true;
        }
        return value_;
    }
    std::u16string_view units() const {
        if (plain_ != nullptr) return {plain_, length_};
        return {value_.getBuffer(), static_cast<std::size_t>(value_.length())};
    }
    /// Makes the value one that points into no window.
    void copyPlain();

    /// Whether its namespace has to be found.
    bool isQualified() const { return !prefix.isEmpty() || local == RN_xmlns; }
    /// "xmlns" or "xmlns:p".
    bool isNamespaceDeclaration() const {
        return prefix == RN_xmlns || (prefix.isEmpty() && local == RN_xmlns);
    }

private:
    static constexpr std::uint32_t MOST_UNITS = 0x7FFFFFFF;

    // No larger than it must be: a tag may have one of these for every few bytes.
    std::uint32_t length_ : 31 = 0;
    mutable std::uint32_t isAliased_ : 1 = 0;  // value_ shows the units at plain_
    const char16_t* plain_ = nullptr;          // null while value_ holds the value
    mutable UnicodeString value_;
};

/// The attributes of one start tag in document order. Slots are kept from tag to tag.
class AttributeList {
public:
    void clear() { count_ = owned_ = 0; }
    std::size_t size() const { return count_; }
    ParsedAttribute& operator[](std::size_t index) { return slots_[index]; }
    const ParsedAttribute& operator[](std::size_t index) const { return slots_[index]; }

    /// A further attribute; its value is left over from another tag.
    ParsedAttribute& add(RyName prefix, RyName local) {
        if (count_ == slots_.size()) slots_.emplace_back();
        ParsedAttribute& slot = slots_[count_++];
        slot.prefix = prefix;
        slot.local = local;
        slot.ns = RyName();
        return slot;
    }
    /// Makes all values copies that point into no window. What was copied before is left alone, so
    /// that a tag over many windows stays linear.
    void ownValues();
    /// Takes the last one back.
    void removeLast() {
        --count_;
        if (owned_ > count_) owned_ = count_;
    }

    /// First attribute with that namespace and local name, or null.
    const ParsedAttribute* find(RyName ns, RyName local) const;
    /// Calls `report(attribute)` for each attribute whose namespace and local name an earlier one
    /// has, in order.
    template <class Report>
    void forEachDuplicate(Report report) {
        if (count_ > COMPARE_ALL) return forEachDuplicateOfMany(report);
        // Only names that share a bit with an earlier one are compared.
        std::uint64_t seen = 0;
        for (std::size_t i = 0; i < count_; ++i) {
            const auto number = static_cast<std::uint32_t>(RyNameEnum(slots_[i].local));
            const std::uint64_t bit = std::uint64_t{1} << number % 64;
            if ((seen & bit) != 0 && isAmongFirst(i)) report(slots_[i]);
            seen |= bit;
        }
    }

private:
    /// Up to here every pair is compared; above, a hash set answers.
    static constexpr std::size_t COMPARE_ALL = 16;

    bool isAmongFirst(std::size_t index) const {
        const ParsedAttribute& attribute = slots_[index];
        for (std::size_t j = 0; j < index; ++j)
            if (slots_[j].local == attribute.local && slots_[j].ns == attribute.ns) return true;
        return false;
    }
    template <class Report>
    void forEachDuplicateOfMany(Report& report) {
        prepareSet();
        for (std::size_t i = 1; i < count_; ++i)
            if (isInSet(i)) report(slots_[i]);
    }
    void prepareSet();
    bool isInSet(std::size_t index);

    std::vector<ParsedAttribute> slots_;
    std::size_t count_ = 0;
    std::size_t owned_ = 0;            // values before this one are copies
    std::vector<std::uint64_t> seen_;  // open addressing over (namespace, local name); 0: free
};

}  // namespace RynCommon
