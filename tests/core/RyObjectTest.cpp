// Reference counts, counted pointers, type identity and locks.
#include <RynCommon/RyLock.h>
#include <RynCommon/RyObject.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <thread>
#include <type_traits>
#include <vector>

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
    EXPECT_EQ(copy.getRefCount(), 0);
}

TEST(RyRCObject, KnowsItsBases) {
    const Counted object;
    const std::pair<unsigned int, bool> rows[] = {
        {1, true}, {0x90AF0240, true}, {0xA4EBD8C4, true}, {0x31FB5B85, false}, {0, false}};
    for (const auto& [id, isA] : rows) EXPECT_EQ(object.isA(id), isA) << id;
    EXPECT_EQ(RyRCObject::getStaticTypeID(), 0x90AF0240u);
    EXPECT_EQ(RyObjectBase::getStaticTypeID(), 0xA4EBD8C4u);
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
    const RyPtr<Counted> null(nullptr);
    const RyPtr<Counted> copyOfNull(null);
    EXPECT_EQ(copyOfNull.get(), nullptr);
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

TEST(RyLock, SerialisesThreadsAndRecurses) {
    RyLock lock;
    int sum = 0;
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&] {
            for (int i = 0; i < 5000; ++i) {
                const RyMutex outer(lock);
                const RyMutex inner(&lock);
                ++sum;
            }
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(sum, 20000);
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
    const RyMutex twice(none);
    int sum = 0;
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&sum] {
            for (int i = 0; i < 5000; ++i) {
                const RyMutex outer;
                const RyMutex inner;
                ++sum;
            }
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(sum, 20000);
}

TEST(RyMutex, InterlockedHelpersReturnTheNewValue) {
    int value = -1;
    EXPECT_EQ(RyMutex::interlockedIncrement(value), 0);
    EXPECT_EQ(RyMutex::interlockedIncrement(value), 1);
    EXPECT_EQ(RyMutex::interlockedDecrement(value), 0);
    EXPECT_EQ(value, 0);
}

}  // namespace
}  // namespace RynCommon
