// The table behind interned names.
#pragma once

#include <memory>

#include <RynCommon/RyLock.h>
#include <RynCommon/RyName.h>
#include <RynCommon/RyObject.h>

namespace RynCommon {

/// Maps strings to name numbers and back. The built-in names are part of every table and are found
/// without a lock; other strings get the next number above 1597 when first interned and keep it for
/// the life of the table. The process has one shared table, which RyName uses.
///
/// Every insertion, into any table, takes one process-wide lock; what is known is found without
/// one. All operations but cleanup() and destruction are safe from any thread.
/// References to texts stay valid while the table lives.
class RYNCOMMON_API RyNameTable : public RyRCObject {
public:
    RyNameTable();
    ~RyNameTable() override;
    RyNameTable(const RyNameTable&) = delete;
    RyNameTable& operator=(const RyNameTable&) = delete;

    static unsigned int getStaticTypeID() { return 0x31FB5B85u; }
    unsigned int getTypeID() const override;
    bool isA(unsigned int id) const override;
    UnicodeString getTypeName() const override;

    /// The shared table, created on first need; its count is left alone.
    static RyNameTable* getSharedNameTable();
    /// The same with one more reference.
    static RyNameTable* addRefSharedNameTable();
    /// Drops a reference of the shared table and deletes it when none is left. A later need makes a
    /// new, empty one.
    static void releaseSharedNameTable();
    /// Frees the look-up data and the shared table, for the end of a program. May be called again;
    /// everything works afterwards, but names interned before lose their texts.
    static void cleanup();

    /// Number of a built-in name; 0 for the empty and for any other text. Takes no lock.
    static RyNameEnum getBuiltinNameEnum(const UnicodeString& text);
    /// Text of a built-in name; empty for other numbers. Takes no lock.
    static const UnicodeString& getBuiltinNameString(RyNameEnum number);
    /// Interns in the shared table.
    static RyNameEnum getSharedNameEnum(const UnicodeString& text);
    /// Text of a number of the shared table; empty for an unknown one.
    static const UnicodeString& getSharedNameString(RyNameEnum number);

    /// Interns in this table.
    RyNameEnum getNameEnum(const UnicodeString& text);
    /// Number of a text in this table, 0 when it is unknown; never inserts.
    RyNameEnum lookupName(const UnicodeString& text) const;
    /// Text of a number of this table; empty below 1 and above the last.
    const UnicodeString& getNameString(RyNameEnum number) const;
    /// The last number handed out; 1597 in a fresh table.
    RyNameEnum getNameLast() const;

private:
    friend class RyName;
    friend RyNameEnum internSharedName(const char16_t* text, std::int32_t length);

    /// The shared table, created if need be. The caller holds the table lock.
    static RyNameTable* setupSharedNameTable();
    static RyNameEnum generateSharedName(const UnicodeString& prefix);

    struct Rep;
    std::unique_ptr<Rep> rep_;
};

}  // namespace RynCommon
