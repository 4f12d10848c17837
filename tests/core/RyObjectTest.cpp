// Reference counts, counted pointers, type identity and locks.
#include <RynCommon/RyLock.h>
#include <RynCommon/RyNameTable.h>
#include <RynCommon/RyNamedValue.h>
#include <RynCommon/RyObject.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <thread>
#include <type_traits>
#include <vector>

#include "tests/Text.h"

namespace RynCommon {
namespace {

class Counted : public RyRCObject {
public:
    explicit Counted(int* deaths = nullptr) : deaths_(deaths) {}
    ~Counted() override {
        if (deaths_ != nullptr) ++*deaths_;
    }
    unsigned int getTypeID() const override { return 1; }
    bool isA(unsigned int id) const override { return id == 1 || RyRCObject::isA(id); }
    UnicodeString getTypeName() const override { return u"Counted"; }
    using RyRCObject::clearRefCount;
    using RyRCObject::decrementRefCount;

private:
    int* deaths_;
};

class Derived : public Counted {
public:
    using Counted::Counted;
};

static_assert(std::is_abstract_v<RyObjectBase> && std::is_abstract_v<RyRCObject>);

TEST(RyRCObject, CountsAndDeletes) {
    int deaths = 0;
    Counted* const object = new Counted(&deaths);
    EXPECT_EQ(object->getRefCount(), 0);
    EXPECT_EQ(object->addRef(), 1);
    EXPECT_EQ(object->addRef(), 2);
    EXPECT_EQ(object->release(), 1);
    EXPECT_EQ(deaths, 0);
    EXPECT_EQ(object->removeRef(), 0);
    EXPECT_EQ(object->removeRef(), -1);
    EXPECT_EQ(deaths, 0);
    EXPECT_EQ(object->release(), -2);
    EXPECT_EQ(deaths, 1);
}

TEST(RyRCObject, CopiesStartAtZero) {
    Counted original;
    original.addRef();
    Counted copy(original);
    EXPECT_EQ(copy.getRefCount(), 0);
    copy.addRef();
    copy.addRef();
    copy = original;
    EXPECT_EQ(copy.getRefCount(), 2);
    EXPECT_EQ(copy.decrementRefCount(), 1);
    copy.clearRefCount();
}

TEST(RyRCObject, TypesAndTheirBases) {
    constexpr unsigned int BASES[] = {0xA4EBD8C4, 0x90AF0240};
    const struct {
        RyPtr<RyRCObject> object;
        unsigned int id;
        const char* name;
    } rows[] = {{RyPtr<RyRCObject>(new Counted), 1, "Counted"},
                {RyPtr<RyRCObject>(new RyNameTable), 838556549, "RyNameTable"},
                {RyPtr<RyRCObject>(new RyNamedValueMap), 0xE7D947B0, "RyNamedValueMap"}};
    for (const auto& row : rows) {
        EXPECT_EQ(row.object->getTypeID(), row.id);
        EXPECT_EQ(s(row.object->getTypeName()), row.name);
        for (const unsigned int base : BASES) EXPECT_TRUE(row.object->isA(base)) << row.name;
        for (const auto& other : rows)
            EXPECT_EQ(row.object->isA(other.id), row.id == other.id) << row.name << other.name;
    }
}

TEST(RyPtr, HoldsOneReferenceEach) {
    int deaths = 0;
    {
        Derived* const object = new Derived(&deaths);
        RyPtr<Derived> first(object);
        EXPECT_EQ(object->getRefCount(), 1);
        RyPtr<Counted> base(first);
        RyPtr<Derived> copy = first;
        EXPECT_EQ(object->getRefCount(), 3);
        RyPtr<Derived> moved = std::move(copy);
        EXPECT_EQ(copy.get(), nullptr);
        EXPECT_EQ(object->getRefCount(), 3);
        moved = *&moved;
        EXPECT_EQ(object->getRefCount(), 3);
        moved = nullptr;
        base.reset();
        EXPECT_EQ(object->getRefCount(), 1);
        Derived* const raw = first.detach();
        EXPECT_EQ(raw->getRefCount(), 1);
        first = RyPtr<Derived>::adopt(raw);
        EXPECT_EQ(raw->getRefCount(), 1);
        first = raw;
        EXPECT_EQ(raw->getRefCount(), 1);
        EXPECT_EQ(deaths, 0);
    }
    EXPECT_EQ(deaths, 1);
}

TEST(RyPtr, CountsFromSeveralThreads) {
    int deaths = 0;
    {
        const RyPtr<Counted> shared(new Counted(&deaths));
        std::vector<std::thread> threads;
        for (int t = 0; t < 4; ++t)
            threads.emplace_back([&shared] {
                for (int i = 0; i < 10000; ++i) RyPtr<Counted> copy(shared);
            });
        for (std::thread& thread : threads) thread.join();
        EXPECT_EQ(shared->getRefCount(), 1);
    }
    EXPECT_EQ(deaths, 1);
}

// Whether another thread can enter the lock. One that it cannot enter shows as a test that does not
// end.
bool isFree(RyLock& lock) {
    bool entered = false;
    std::thread([&] {
        const RyMutex guard(lock);
        entered = true;
    }).join();
    return entered;
}

template <class Guard>
void expectThreadsInTurn(const Guard& addGuarded) {
    int sum = 0;
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&] {
            for (int i = 0; i < 5000; ++i) addGuarded(sum);
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(sum, 20000);
}

TEST(RyLock, SerialisesThreadsAndRecurses) {
    RyLock lock;
    expectThreadsInTurn([&](int& sum) {
        const RyMutex outer(lock);
        const RyMutex inner(&lock);
        ++sum;
    });
}

TEST(RyLock, IsLeftWhenAnErrorPasses) {
    RyLock lock;
    try {
        const RyMutex outer(lock);
        const RyMutex inner(lock);
        throw std::runtime_error("passing through");
    } catch (const std::runtime_error&) {
    }
    EXPECT_TRUE(isFree(lock));
}

TEST(RyLock, AssignmentAndCopyLeaveTheStateAlone) {
    RyLock held;
    RyLock other;
    {
        const RyMutex guard(held);
        other = held;
        RyLock copy(held);
        EXPECT_TRUE(isFree(other));
        EXPECT_TRUE(isFree(copy));
        held = other;
    }
    EXPECT_TRUE(isFree(held));
}

TEST(RyMutex, NullGuardsNothingAndDefaultIsOneLock) {
    RyLock* const none = nullptr;
    const RyMutex null(none);
    expectThreadsInTurn([](int& sum) {
        const RyMutex outer;
        const RyMutex inner;
        ++sum;
    });
}

TEST(RyMutex, InterlockedHelpersReturnTheNewValue) {
    int value = -1;
    EXPECT_EQ(RyMutex::interlockedIncrement(value), 0);
    EXPECT_EQ(RyMutex::interlockedDecrement(value), -1);
}

}  // namespace
}  // namespace RynCommon
