// Values with a name, and the ordered map of them.
#pragma once

#include <memory>

#include <RynCommon/RyObject.h>
#include <RynCommon/RyValue.h>

namespace RynCommon {

/// A value that carries a name, in the room of a value.
class RYNCOMMON_API RyNamedValue : public RyValue {
public:
    constexpr RyNamedValue() = default;
    RyNamedValue(const RyValue& value, RyName name) : RyValue(value) { setName(name); }
    RyNamedValue(const RyNamedValue& other) : RyValue(other) { setName(other.getName()); }
    RyNamedValue(RyNamedValue&& other) noexcept : RyValue(static_cast<RyValue&&>(other)) {
        // The base leaves the name where it was.
        setName(other.getName());
    }
    RyNamedValue& operator=(const RyNamedValue& other);
    RyNamedValue& operator=(RyNamedValue&& other) noexcept;

    /// The null value with the empty name; usable from any static initialiser.
    static const RyNamedValue NULL_VALUE;

    RyName getName() const { return static_cast<RyNameEnum>(static_cast<std::int32_t>(tag_ >> 8)); }
    void setName(RyName name) {
        tag_ = (tag_ & TAG_MASK) | bitfield(RYVALUE_NULL, RYUNIT_NONE, name);
    }
    /// The value without its name.
    RyValue getValue() const { return RyValue(*this); }
    /// Replaces the value and keeps the name.
    void setValue(const RyValue& value);
};

static_assert(sizeof(RyNamedValue) == 16);

/// Named values in ascending order of their name numbers, at most one a name. Not synchronised.
class RYNCOMMON_API RyNamedValueMap : public RyRCObject {
public:
    RyNamedValueMap();
    ~RyNamedValueMap() override;
    RyNamedValueMap(const RyNamedValueMap&) = delete;
    RyNamedValueMap& operator=(const RyNamedValueMap&) = delete;

    static unsigned int getStaticTypeID() { return 0xE7D947B0u; }
    unsigned int getTypeID() const override;
    bool isA(unsigned int id) const override;
    UnicodeString getTypeName() const override;

    int getCount() const;
    /// Inserts, or overwrites the value of the entry of that name. A null value is stored as well.
    void setNamedItem(const RyNamedValue& item);
    void setNamedItem(RyName name, const RyValue& value);
    /// A copy of the entry; the null value with the empty name when there is none.
    RyNamedValue getNamedItem(RyName name) const;
    /// The `index`-th entry in name order; the null value outside of 0 to count - 1.
    RyNamedValue item(int index) const;
    void removeNamedItem(RyName name);
    /// Removes the entry only when its value equals `value`.
    void removeNamedItem(RyName name, const RyValue& value);
    /// A new map with copies of all entries.
    RyPtr<RyNamedValueMap> clone() const;

private:
    friend class RyNamedValueMapIterator;
    friend class RyValue;
    struct Rep;
    std::unique_ptr<Rep> rep_;
};

/// A cursor between the entries of a map. The map must outlive it and must not lose the entry the
/// cursor stands at.
class RYNCOMMON_API RyNamedValueMapIterator {
public:
    /// At the first entry. A null map is an empty one.
    explicit RyNamedValueMapIterator(const RyNamedValueMap* map);

    bool hasNext() const;
    bool hasPrevious() const;
    /// The entry at the cursor, which then moves past it; the null value past the end.
    const RyNamedValue& next();
    /// Moves back one entry and gives it; the null value before the start.
    const RyNamedValue& previous();
    void setToStart();
    void setToEnd();

private:
    const RyNamedValueMap* map_;
    std::size_t position_ = 0;
};

}  // namespace RynCommon
