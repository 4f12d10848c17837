// The name table and the process-wide shared one.
//
// A known name is found without a lock; only the first one to need it takes the lock below to
// insert it. So a thread takes it at most once for each text. Readers of the shared table pass a
// gate, since its deletion, which anyone may cause, must not free it under them.
//
// Locks: one lock serialises the insertions into all tables and guards the pointer to the shared
// table. Where the default lock is needed as well, as in cleanup(), it is taken first. A table's
// destructor takes the table lock itself, since the last reference may be dropped by anyone; the
// lock is recursive, so that it may be held already.
#include <RynCommon/RyNameTable.h>

#include <atomic>

#include <RynCommon/RyString.h>

#include "core/Decimal.h"
#include "core/Immortal.h"
#include "core/NameTable.h"
#include "core/ReaderGate.h"

namespace RynCommon {

namespace {

constinit std::atomic<RyNameTable*> sharedNameTable{nullptr};
constinit std::atomic<unsigned> tablesGone{0};
constinit ReaderGate sharedReaders;

RyLock& tableLock() {
    static Immortal<RyLock> lock;
    return lock.get();
}

bool isBuiltinNumber(RyNameEnum number) {
    return number <= RYNAME_BUILTIN_LAST;
}

}  // namespace

unsigned sharedNameGeneration() noexcept {
    return tablesGone.load(std::memory_order_acquire);
}

struct RyNameTable::Rep {
    RuntimeNames names;
};

RyNameTable::RyNameTable() : rep_(std::make_unique<Rep>()) {}

RyNameTable::~RyNameTable() {
    const RyMutex guard(tableLock());
    RyNameTable* self = this;
    if (!sharedNameTable.compare_exchange_strong(self, nullptr)) return;
    ++tablesGone;
    sharedReaders.waitForReaders();
}

unsigned int RyNameTable::getTypeID() const {
    return getStaticTypeID();
}

bool RyNameTable::isA(unsigned int id) const {
    return id == getStaticTypeID() || RyRCObject::isA(id);
}

UnicodeString RyNameTable::getTypeName() const {
    return UnicodeString(u"RyNameTable");
}

RyNameTable* RyNameTable::setupSharedNameTable() {
    RyNameTable* table = sharedNameTable.load(std::memory_order_relaxed);
    if (table == nullptr) {
        table = new RyNameTable();
        sharedNameTable.store(table, std::memory_order_release);
    }
    return table;
}

RyNameTable* RyNameTable::getSharedNameTable() {
    RyNameTable* const table = sharedNameTable.load(std::memory_order_acquire);
    if (table != nullptr) return table;
    const RyMutex guard(tableLock());
    return setupSharedNameTable();
}

RyNameTable* RyNameTable::addRefSharedNameTable() {
    const RyMutex guard(tableLock());
    RyNameTable* const table = setupSharedNameTable();
    table->addRef();
    return table;
}

void RyNameTable::releaseSharedNameTable() {
    const RyMutex guard(tableLock());
    RyNameTable* const table = sharedNameTable.load(std::memory_order_relaxed);
    if (table != nullptr) table->release();
}

void RyNameTable::cleanup() {
    // The built-in look-up is constant data, so that only the shared table is to be freed.
    const RyMutex outer;
    const RyMutex guard(tableLock());
    delete sharedNameTable.load(std::memory_order_relaxed);
}

RyNameEnum RyNameTable::getBuiltinNameEnum(const UnicodeString& text) {
    return findBuiltinName(text.getBuffer(), text.length());
}

const UnicodeString& RyNameTable::getBuiltinNameString(RyNameEnum number) {
    if (number < 1 || !isBuiltinNumber(number)) return RyEmptyString::EMPTY_VALUE;
    return builtinNameString(number);
}

RyNameEnum RyNameTable::getSharedNameEnum(const UnicodeString& text) {
    return internSharedName(text.getBuffer(), text.length());
}

RyNameEnum internSharedName(const char16_t* text, std::int32_t length) {
    if (length < 1) return RN_EMPTY;
    if (const RyNameEnum number = findBuiltinName(text, length)) return number;
    const std::uint32_t hash = RuntimeNames::hash(text, length);
    {
        const ReaderGate::Pass pass(sharedReaders);
        const RyNameTable* const table = sharedNameTable.load(std::memory_order_seq_cst);
        const RyNameEnum number =
            table != nullptr ? table->rep_->names.find(text, length, hash) : RN_EMPTY;
        if (number != RN_EMPTY) return number;
    }
    const RyMutex guard(tableLock());
    return RyNameTable::setupSharedNameTable()->rep_->names.intern(text, length, hash);
}

const UnicodeString& RyNameTable::getSharedNameString(RyNameEnum number) {
    if (isBuiltinNumber(number)) return getBuiltinNameString(number);
    // Texts stay where they are and are there before their number is told, so no lock is needed.
    const RyNameTable* const table = sharedNameTable.load(std::memory_order_acquire);
    if (table == nullptr || number > table->rep_->names.last()) return RyEmptyString::EMPTY_VALUE;
    return table->rep_->names.text(number);
}

RyNameEnum RyNameTable::getNameEnum(const UnicodeString& text) {
    if (text.isEmpty()) return RN_EMPTY;
    if (const RyNameEnum number = getBuiltinNameEnum(text)) return number;
    const std::uint32_t hash = RuntimeNames::hash(text.getBuffer(), text.length());
    if (const RyNameEnum number = rep_->names.find(text.getBuffer(), text.length(), hash))
        return number;
    const RyMutex guard(tableLock());
    return rep_->names.intern(text.getBuffer(), text.length(), hash);
}

RyNameEnum RyNameTable::lookupName(const UnicodeString& text) const {
    if (text.isEmpty()) return RN_EMPTY;
    if (const RyNameEnum number = getBuiltinNameEnum(text)) return number;
    const std::uint32_t hash = RuntimeNames::hash(text.getBuffer(), text.length());
    return rep_->names.find(text.getBuffer(), text.length(), hash);
}

const UnicodeString& RyNameTable::getNameString(RyNameEnum number) const {
    if (isBuiltinNumber(number)) return getBuiltinNameString(number);
    return number <= rep_->names.last() ? rep_->names.text(number) : RyEmptyString::EMPTY_VALUE;
}

RyNameEnum RyNameTable::getNameLast() const {
    return rep_->names.last();
}

RyNameEnum RyNameTable::generateSharedName(const UnicodeString& prefix) {
    UnicodeString name(u'-');
    if (prefix.isEmpty())
        name.append(u'N');
    else
        name.append(prefix);
    // The number read and the name interned belong together, so that two threads do not get one
    // identifier.
    const RyMutex guard(tableLock());
    RyNameTable* const table = setupSharedNameTable();
    appendDecimal(name, std::int64_t{table->getNameLast()} + 1);
    return table->getNameEnum(name);
}

}  // namespace RynCommon
