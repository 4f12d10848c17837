// Name tables, the shared table's life, and interning from several threads.
#include <RynCommon/RyNameTable.h>
#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "core/NameTable.h"

namespace RynCommon {
namespace {

UnicodeString numbered(const char* stem, int number) {
    return UnicodeString::fromUTF8(stem + std::to_string(number));
}

TEST(RyNameTable, NumbersInOrderOfFirstUse) {
    RyNameTable table;
    EXPECT_EQ(table.getRefCount(), 0);
    EXPECT_EQ(table.getNameLast(), 1597);
    const struct {
        const char* what;
        const char16_t* text;
        int number, last;
    } rows[] = {{"empty", u"", 0, 1597},           {"built in", u"ASCII", 4, 1597},
                {"first", u"x-first", 1598, 1598}, {"in another case", u"X-first", 1599, 1599},
                {"again", u"x-first", 1598, 1599}, {"supplementary", u"\U0001F600", 1600, 1600}};
    for (const auto& row : rows) {
        const UnicodeString text(row.text);
        const bool known = row.last == table.getNameLast();
        EXPECT_EQ(table.lookupName(text), known ? row.number : 0) << row.what;
        EXPECT_EQ(table.getNameEnum(text), row.number) << row.what;
        EXPECT_EQ(table.lookupName(text), row.number) << row.what;
        EXPECT_EQ(table.getNameLast(), row.last) << row.what;
        EXPECT_EQ(table.getNameString(static_cast<RyNameEnum>(row.number)), text) << row.what;
    }
    for (const int unknown : {-1, 1601, 2147483647})
        EXPECT_TRUE(table.getNameString(static_cast<RyNameEnum>(unknown)).isEmpty()) << unknown;
}

TEST(RyNameTable, KeepsItsStringsInPlaceWhileItGrows) {
    RyNameTable table;
    const UnicodeString& first =
        table.getNameString(table.getNameEnum(u"a name that is too long for the string itself"));
    const UnicodeString& second = table.getNameString(table.getNameEnum(u"short"));
    const UnicodeString* const address = &second;
    constexpr int COUNT = 20000;
    for (int i = 0; i < COUNT; ++i) ASSERT_EQ(table.getNameEnum(numbered("n", i)), 1600 + i);
    EXPECT_EQ(first, UnicodeString(u"a name that is too long for the string itself"));
    EXPECT_EQ(&table.getNameString(static_cast<RyNameEnum>(1599)), address);
    for (int i = 0; i < COUNT; ++i) {
        const RyNameEnum number = static_cast<RyNameEnum>(1600 + i);
        ASSERT_EQ(table.lookupName(numbered("n", i)), number);
        ASSERT_EQ(table.getNameString(number), numbered("n", i));
    }
    EXPECT_EQ(table.lookupName(numbered("n", COUNT)), 0);
}

TEST(RyNameTable, TellsTextsApartOfEveryLength) {
    RyNameTable table;
    int number = 1597;
    UnicodeString text;
    for (int length = 1; length < 40; ++length) {
        text.append(u'~');
        EXPECT_EQ(table.getNameEnum(text), ++number) << length;
        for (int i = 0; i < length; ++i) {
            UnicodeString other = text;
            other.setCharAt(i, u'\u3042');
            EXPECT_EQ(table.getNameEnum(other), ++number) << length << " " << i;
        }
    }
    EXPECT_EQ(table.getNameEnum(UnicodeString(u"~\0", 2)), ++number);
}

/// Each test finds the shared table empty, and leaves it so.
class SharedNameTable : public testing::Test {
protected:
    SharedNameTable() { RyNameTable::cleanup(); }
    ~SharedNameTable() override { RyNameTable::cleanup(); }
};

TEST_F(SharedNameTable, LivesByItsCountAndComesBackEmpty) {
    RyNameTable::cleanup();
    RyNameTable* const table = RyNameTable::getSharedNameTable();
    EXPECT_EQ(table->getRefCount(), 0);
    EXPECT_EQ(RyNameTable::addRefSharedNameTable(), table);
    EXPECT_EQ(RyNameTable::addRefSharedNameTable(), table);
    EXPECT_EQ(table->getRefCount(), 2);
    const RyName name(UnicodeString(u"x-shared"));
    EXPECT_EQ(RyNameEnum(name), 1598);
    RyNameTable::releaseSharedNameTable();
    EXPECT_EQ(name.toString(), UnicodeString(u"x-shared"));
    RyNameTable::releaseSharedNameTable();
    EXPECT_TRUE(name.toString().isEmpty());
    EXPECT_EQ(RyName(UnicodeString(u"x-other")), RyName(1598));
    RyNameTable::cleanup();
    EXPECT_TRUE(name.toString().isEmpty());
    RyNameTable::releaseSharedNameTable();
    EXPECT_EQ(RyName(UnicodeString(u"ASCII")).toString(), UnicodeString(u"ASCII"));
}

TEST_F(SharedNameTable, OnlyItsOwnDestructorLetsGoOfIt) {
    RyNameTable* const shared = RyNameTable::getSharedNameTable();
    { RyNameTable other; }
    EXPECT_EQ(RyNameTable::getSharedNameTable(), shared);
    RyPtr<RyNameTable> last(shared);
    last.reset();
    EXPECT_EQ(RyNameTable::getSharedNameTable()->getNameLast(), 1597);
}

TEST_F(SharedNameTable, GeneratesIdentifiers) {
    EXPECT_EQ(RyName::generateID(u"").toString(), UnicodeString(u"-N1598"));
    EXPECT_EQ(RyName::generateID(u"id").toString(), UnicodeString(u"-id1599"));
    // A candidate that exists already is given back as it is.
    EXPECT_EQ(RyNameTable::getSharedNameEnum(u"-N1601"), 1600);
    EXPECT_EQ(RyName::generateID(u""), RyName(1600));
    EXPECT_EQ(RyNameTable::getSharedNameTable()->getNameLast(), 1600);
}

TEST_F(SharedNameTable, InternsByView) {
    const char16_t text[] = u"xx-by-viewxx";
    EXPECT_EQ(internSharedName(text + 2, 8), 1598);
    EXPECT_EQ(RyNameTable::getSharedNameEnum(u"-by-view"), 1598);
    EXPECT_EQ(internSharedName(u"zoom", 4), RN_zoom);
    EXPECT_EQ(internSharedName(nullptr, -1), RN_EMPTY);
}

// Every thread interns all the names, each in an order of its own, and reads names back in between.
TEST_F(SharedNameTable, SerialisesThreads) {
    constexpr int NAMES = 3000;
    constexpr int THREADS = 4;
    std::vector<std::vector<RyNameEnum>> numbers(THREADS, std::vector<RyNameEnum>(NAMES));
    std::atomic<int> wrong{0};
    std::atomic<int> waiting{THREADS};
    std::vector<std::thread> threads;
    for (int t = 0; t < THREADS; ++t)
        threads.emplace_back([&, t] {
            --waiting;
            while (waiting != 0) std::this_thread::yield();
            for (int i = 0; i < NAMES; ++i) {
                const int which = t % 2 == 0 ? i : NAMES - 1 - i;
                const UnicodeString text = numbered("thread-", which);
                const RyName name(text);
                numbers[t][which] = name;
                const RyName own(numbered("own", t * NAMES + i));
                if (name.toString() != text || own.toString() != numbered("own", t * NAMES + i))
                    ++wrong;
                if (!RyName(UnicodeString(u"zoom")).isBuiltin()) ++wrong;
            }
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(wrong, 0);
    for (int t = 1; t < THREADS; ++t) EXPECT_EQ(numbers[t], numbers[0]);
    EXPECT_EQ(RyNameTable::getSharedNameTable()->getNameLast(), 1597 + NAMES * (THREADS + 1));
}

TEST_F(SharedNameTable, GeneratesADifferentIdentifierEachTime) {
    constexpr int COUNT = 2000;
    std::vector<std::thread> threads;
    for (int t = 0; t < 2; ++t)
        threads.emplace_back([] {
            for (int i = 0; i < COUNT; ++i) RyName::generateID(u"t");
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(RyNameTable::getSharedNameTable()->getNameLast(), 1597 + 2 * COUNT);
}

}  // namespace
}  // namespace RynCommon
