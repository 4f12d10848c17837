// Look-ups of names while other threads insert names and while the shared table goes away.
#include <RynCommon/RyNameTable.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "core/NameTable.h"
#include "core/ReaderGate.h"

namespace RynCommon {
namespace {

UnicodeString numbered(int number) {
    return UnicodeString::fromUTF8("read-" + std::to_string(number));
}

/// Texts that get the numbers behind the built-in ones in turn, and a table that they are put into.
struct Growth {
    static constexpr int COUNT = 40000;

    Growth() {
        for (int i = 0; i < COUNT; ++i) texts.push_back(numbered(i));
    }
    static RyNameEnum numberOf(int which) {
        return static_cast<RyNameEnum>(RYNAME_BUILTIN_LAST + 1 + which);
    }
    static std::uint32_t hash(const UnicodeString& text) {
        return RuntimeNames::hash(text.getBuffer(), text.length());
    }
    RyNameEnum find(int which) const {
        const UnicodeString& text = texts[which];
        return names.find(text.getBuffer(), text.length(), hash(text));
    }
    void insertAll() {
        for (int i = 0; i < COUNT; ++i) {
            const UnicodeString& text = texts[i];
            begun.store(i, std::memory_order_relaxed);
            names.intern(text.getBuffer(), text.length(), hash(text));
            inserted = i + 1;
        }
    }

    std::vector<UnicodeString> texts;
    RuntimeNames names;
    std::atomic<int> begun{0};
    std::atomic<int> inserted{0};
};

// The index grows six times meanwhile, and as many blocks of texts are begun.
TEST(NameReaders, FindWhatIsThereWhileTheIndexGrows) {
    Growth growth;
    std::atomic<int> wrong{0};
    std::thread reader([&] {
        for (int at = 0, count = 0; count < Growth::COUNT; at = (at + 7919) % Growth::COUNT) {
            count = growth.inserted;
            if (count != 0 && growth.find(at % count) != Growth::numberOf(at % count)) ++wrong;
        }
    });
    growth.insertAll();
    reader.join();
    EXPECT_EQ(wrong, 0);
}

// The reader learns of the newest name from the table alone.
TEST(NameReaders, FindNamesWithTheirTextsAtOnce) {
    Growth growth;
    std::atomic<int> wrong{0};
    std::thread reader([&] {
        for (int which = 0; which < Growth::COUNT - 1;) {
            which = growth.begun.load(std::memory_order_relaxed);
            RyNameEnum number = RN_EMPTY;
            while (number == RN_EMPTY) number = growth.find(which);
            if (number > growth.names.last() || number != Growth::numberOf(which) ||
                growth.names.text(number) != growth.texts[which])
                ++wrong;
        }
    });
    growth.insertAll();
    reader.join();
    EXPECT_EQ(wrong, 0);
}

// The memory checkers see it when a table is freed under a reader.
TEST(NameReaders, AreWaitedForByTheSharedTable) {
    constexpr int TABLES = 100;
    constexpr int NAMES = 8;
    RyNameTable::cleanup();
    std::atomic<bool> over{false};
    std::atomic<int> wrong{0};
    std::vector<std::thread> readers;
    for (int t = 0; t < 2; ++t)
        readers.emplace_back([&] {
            while (!over)
                for (int i = 0; i < NAMES; ++i) {
                    const int number = RyNameTable::getSharedNameEnum(numbered(i));
                    if (number <= RYNAME_BUILTIN_LAST || number > RYNAME_BUILTIN_LAST + NAMES)
                        ++wrong;
                }
        });
    const unsigned generation = sharedNameGeneration();
    for (int i = 0; i < TABLES; ++i) {
        RyNameTable::addRefSharedNameTable();
        std::this_thread::yield();
        RyNameTable::releaseSharedNameTable();
    }
    EXPECT_EQ(sharedNameGeneration(), generation + TABLES);
    over = true;
    for (std::thread& reader : readers) reader.join();
    EXPECT_EQ(wrong, 0);
    RyNameTable::cleanup();
}

// More threads than lanes share them: nobody's stay may end with another one's.
TEST(NameReaders, AreAllWaitedForWhenTheyShareLanes) {
    constexpr int THREADS = 70;
    ReaderGate gate;
    std::atomic<int> inside{0};
    std::atomic<bool> mayLeave{false};
    std::atomic<bool> waited{false};
    std::atomic<int> left{0};
    std::vector<std::thread> readers;
    for (int t = 0; t < THREADS; ++t)
        readers.emplace_back([&, t] {
            const ReaderGate::Pass pass(gate);
            ++inside;
            // Nobody leaves before all are inside, and one stays longer.
            while (t == 0 ? !mayLeave : inside < THREADS) std::this_thread::yield();
            EXPECT_FALSE(waited);
            ++left;
        });
    while (left < THREADS - 1) std::this_thread::yield();
    std::thread waiter([&] {
        gate.waitForReaders();
        waited = true;
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(20));  // time to go wrong
    EXPECT_FALSE(waited);
    mayLeave = true;
    for (std::thread& reader : readers) reader.join();
    waiter.join();
    EXPECT_TRUE(waited);
}

}  // namespace
}  // namespace RynCommon
