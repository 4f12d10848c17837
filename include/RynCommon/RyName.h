// Interned names and lists of them.
#pragma once

#include <concepts>

#include <RynCommon/Forward.h>
#include <RynCommon/RyNameEnum.h>

namespace RynCommon {

/// A string turned into a number once, so that it compares as an integer. A value of 32 bits.
class RYNCOMMON_API RyName {
public:
    /// The empty name.
    constexpr RyName() = default;
    /// That number, unchecked.
    constexpr RyName(RyNameEnum number) : number_(number) {}
    constexpr explicit RyName(int number) : number_(static_cast<RyNameEnum>(number)) {}
    /// Interns the text in the shared table.
    RyName(const UnicodeString& text);
    /// Takes the number of a name value; interns the text form of any other value. Taken only by a
    /// value itself, so that a text is never mistaken for one.
    template <std::same_as<RyValue> Value>
    RyName(const Value& value) : number_(fromValue(value)) {}

    friend constexpr bool operator==(RyName a, RyName b) { return a.number_ == b.number_; }
    friend constexpr bool operator!=(RyName a, RyName b) { return a.number_ != b.number_; }
    friend constexpr bool operator==(RyName a, RyNameEnum b) { return a.number_ == b; }
    friend constexpr bool operator!=(RyName a, RyNameEnum b) { return a.number_ != b; }
    constexpr operator RyNameEnum() const { return number_; }

    /// The text; stays valid while the shared table lives.
    const UnicodeString& toString() const;
    operator const UnicodeString&() const { return toString(); }

    constexpr bool isEmpty() const { return number_ == RN_EMPTY; }
    /// Whether the number is 0 to 1597 (the empty name counts).
    constexpr bool isBuiltin() const { return number_ >= 0 && number_ <= RYNAME_BUILTIN_LAST; }

    /// A name for a generated identifier: "-", `prefix` ("N" when empty) and the shared table's
    /// last number plus 1. The hyphen keeps it apart from XML names.
    static RyName generateID(const UnicodeString& prefix);

private:
    static RyNameEnum fromValue(const RyValue& value);

    RyNameEnum number_ = RN_EMPTY;
};

/// A view of an array of name numbers that belongs to the caller and must outlive the view.
class RYNCOMMON_API RyNameList {
public:
    RyNameList() = default;
    /// `count` is taken as passed; 0 for a null array.
    RyNameList(const RyNameEnum* array, int count);
    /// The array ends in a 0 entry, which does not count.
    explicit RyNameList(const RyNameEnum* array);
    RyNameList(const RyNameList&) = default;
    RyNameList& operator=(const RyNameList&) = default;

    int getCount() const { return count_; }
    /// The name at `index`; the empty name outside of the list.
    RyName getItem(int index) const;
    /// First index holding the name, or -1.
    int indexOf(RyName name) const;
    bool hasItem(RyName name) const { return indexOf(name) != -1; }

private:
    const RyNameEnum* array_ = nullptr;
    int count_ = 0;
};

}  // namespace RynCommon
