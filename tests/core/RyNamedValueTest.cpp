// Named values, their map and its cursor.
#include <RynCommon/RyNamedValue.h>
#include <gtest/gtest.h>

#include <type_traits>
#include <utility>
#include <vector>

namespace RynCommon {
namespace {

static_assert(std::is_nothrow_move_constructible_v<RyNamedValue>);

TEST(RyNamedValue, KeepsNameAndValueApart) {
    for (const int number : {0, 1, 1597, 1598, 0xFFFFFF, 0x1000000, 2147483647, -1}) {
        const RyName name(number);
        RyNamedValue item(RyValue(2.5f, RYUNIT_PT), name);
        EXPECT_EQ(item.getName(), name);
        EXPECT_EQ(item.getValue(), RyValue(2.5f, RYUNIT_PT));

        item.setValue(RyValue(UnicodeString(u"text"), RYUNIT_LITERAL));
        EXPECT_EQ(item.getName(), name) << number;
        EXPECT_TRUE(item.isLiteralString()) << number;

        item.setName(RyName(4));
        EXPECT_EQ(item.getName(), RN_ASCII);
        EXPECT_EQ(item.getStringValue(), UnicodeString(u"text"));

        RyNamedValue copy(item);
        const RyNamedValue moved(std::move(item));
        EXPECT_EQ(moved.getName(), RN_ASCII);
        EXPECT_EQ(moved.getStringValue(), copy.getStringValue());
        copy = RyNamedValue(RyValue(7), name);
        EXPECT_EQ(copy.getName(), name);
        EXPECT_EQ(copy.getIntegerValue(), 7);
    }
}

TEST(RyNamedValue, ValuesCompareWithoutNames) {
    const RyNamedValue item(RyValue(3), RN_auto);
    EXPECT_TRUE(item.getValue() == RyValue(3));
    EXPECT_TRUE(RyValue(3) == item.getValue());
}

TEST(RyName, ComesFromAValue) {
    const struct {
        const char* what;
        RyValue value;
        const char16_t* text;
    } rows[] = {{"name", RyValue(RN_auto), u"auto"},
                {"string of a built-in name", RyValue(UnicodeString(u"zoom")), u"zoom"},
                {"string", RyValue(UnicodeString(u"x-from-value")), u"x-from-value"},
                {"number", RyValue(12), u"12"},
                {"null", RyValue(), u""}};
    for (const auto& row : rows)
        EXPECT_EQ(RyName(row.value).toString(), UnicodeString(row.text)) << row.what;
    EXPECT_EQ(RyName(RyValue(RyName(2147483647))), RyName(2147483647));
}

std::vector<std::pair<int, int>> contents(const RyNamedValueMap& map) {
    std::vector<std::pair<int, int>> result;
    for (int i = 0; i < map.getCount(); ++i)
        result.emplace_back(RyNameEnum(map.item(i).getName()), map.item(i).getIntegerValue());
    return result;
}

using Contents = std::vector<std::pair<int, int>>;

TEST(RyNamedValueMap, OrdersByNameNumber) {
    RyNamedValueMap map;
    map.setNamedItem(RyName(5), RyValue(50));
    map.setNamedItem(RyName(1598), RyValue(15980));
    map.setNamedItem(RyNamedValue(RyValue(-10), RyName(-1)));
    map.setNamedItem(RyName(2), RyValue(20));
    map.setNamedItem(RyName(), RyValue(0));
    map.setNamedItem(RyName(5), RyValue(51));
    EXPECT_EQ(contents(map), (Contents{{-1, -10}, {0, 0}, {2, 20}, {5, 51}, {1598, 15980}}));

    map.removeNamedItem(RyName(2));
    map.removeNamedItem(RyName(3));
    map.removeNamedItem(RyName(5), RyValue(50));
    EXPECT_EQ(contents(map), (Contents{{-1, -10}, {0, 0}, {5, 51}, {1598, 15980}}));
    map.removeNamedItem(RyName(5), RyValue(51));
    map.removeNamedItem(RyName(6), RyValue());
    EXPECT_EQ(contents(map), (Contents{{-1, -10}, {0, 0}, {1598, 15980}}));
}

TEST(RyNamedValueMap, GivesNullForWhatIsNotThere) {
    RyNamedValueMap map;
    map.setNamedItem(RN_auto, RyValue());
    EXPECT_EQ(map.getCount(), 1);
    EXPECT_EQ(map.getNamedItem(RN_auto).getName(), RN_auto);
    EXPECT_TRUE(map.getNamedItem(RN_auto).isNull());
    EXPECT_TRUE(map.getNamedItem(RN_none).getName().isEmpty());
    EXPECT_TRUE(map.getNamedItem(RN_none).isNull());
    for (const int outside : {-1, 1, 2147483647, -2147483647}) {
        EXPECT_TRUE(map.item(outside).isNull()) << outside;
        EXPECT_TRUE(map.item(outside).getName().isEmpty()) << outside;
    }
}

TEST(RyNamedValueMap, ClonesItsEntries) {
    const RyPtr<RyNamedValueMap> map(new RyNamedValueMap());
    map->setNamedItem(RN_auto, RyValue(UnicodeString(u"text")));
    const RyPtr<RyNamedValueMap> copy = map->clone();
    map->setNamedItem(RN_auto, RyValue(1));
    map->setNamedItem(RN_none, RyValue(2));
    EXPECT_EQ(copy->getCount(), 1);
    EXPECT_EQ(copy->getNamedItem(RN_auto).getStringValue(), UnicodeString(u"text"));
}

TEST(RyNamedValueMap, TakesItsOwnEntriesAndManyOfThem) {
    RyNamedValueMap map;
    for (int i = 0; i < 2000; ++i)
        map.setNamedItem(RyName((i * 7919) % 2000), RyValue(UnicodeString(u"value")));
    EXPECT_EQ(map.getCount(), 2000);
    RyNamedValueMapIterator cursor(&map);
    for (int i = 0; i < 2000; ++i) {
        const RyNamedValue& entry = cursor.next();
        EXPECT_EQ(RyNameEnum(entry.getName()), i);
        map.setNamedItem(entry);
        EXPECT_EQ(entry.getStringValue(), UnicodeString(u"value"));
    }
}

TEST(RyNamedValueMap, DiesWithoutRecursion) {
    RyPtr<RyNamedValueMap> outer(new RyNamedValueMap());
    for (int depth = 0; depth < 200000; ++depth) {
        RyPtr<RyNamedValueMap> next(new RyNamedValueMap());
        next->setNamedItem(RN_auto, RyValue(outer.get()));
        outer = next;
    }
    outer.reset();
    EXPECT_EQ(outer.get(), nullptr);
}

TEST(RyNamedValueMapIterator, WalksBothWays) {
    RyNamedValueMap map;
    for (const int number : {3, 1, 2}) map.setNamedItem(RyName(number), RyValue(number * 10));
    RyNamedValueMapIterator cursor(&map);
    EXPECT_FALSE(cursor.hasPrevious());
    EXPECT_TRUE(cursor.previous().isNull());
    for (const int number : {1, 2, 3}) {
        EXPECT_TRUE(cursor.hasNext());
        EXPECT_EQ(cursor.next().getIntegerValue(), number * 10);
    }
    EXPECT_FALSE(cursor.hasNext());
    EXPECT_TRUE(cursor.next().isNull());
    EXPECT_EQ(cursor.previous().getIntegerValue(), 30);
    cursor.setToStart();
    EXPECT_EQ(cursor.next().getIntegerValue(), 10);
    cursor.setToEnd();
    map.removeNamedItem(RyName(3));
    map.removeNamedItem(RyName(2));
    EXPECT_FALSE(cursor.hasNext()) << "the map shrank under a cursor at its end";
    EXPECT_EQ(cursor.previous().getIntegerValue(), 10);
    EXPECT_FALSE(cursor.hasPrevious());
}

TEST(RyNamedValueMapIterator, NothingToWalk) {
    RyNamedValueMapIterator cursor(nullptr);
    cursor.setToEnd();
    EXPECT_FALSE(cursor.hasNext() || cursor.hasPrevious());
    EXPECT_TRUE(cursor.next().isNull() && cursor.previous().isNull());
}

}  // namespace
}  // namespace RynCommon
