// The built-in names against the list that they come from, names, and lists of names.
#include <RynCommon/RyName.h>
#include <RynCommon/RyNameTable.h>
#include <gtest/gtest.h>

#include <string>

#include "core/NameTable.h"
#include "tests/Text.h"

namespace RynCommon {
namespace {

TEST(BuiltinNames, AgreeWithTheListInBothDirections) {
    const struct {
        int number;
        RyNameEnum constant;
        std::string text;
    } list[] = {
#define RYN_BUILTIN_NAME(number, identifier, text) {number, RN_##identifier, text},
#include <RynCommon/RyBuiltinNames.inc>
#undef RYN_BUILTIN_NAME
    };
    ASSERT_EQ(std::size(list), 1597u);
    int expected = 0;
    for (const auto& [number, constant, text] : list) {
        ASSERT_EQ(number, ++expected) << text;
        ASSERT_EQ(constant, number) << text;
        EXPECT_EQ(RyNameTable::getBuiltinNameEnum(u(text)), number) << text;
        // The buffer of a built-in string ends in a NUL, which C interfaces may rely on.
        const UnicodeString& string = RyNameTable::getBuiltinNameString(constant);
        EXPECT_EQ(s(string), text);
        EXPECT_EQ(string.getBuffer()[string.length()], u'\0') << text;
    }
}

// Numbers that callers have compiled in, picked over the whole range.
TEST(BuiltinNames, FixedNumbers) {
    const std::pair<int, const char*> rows[] = {{1, "ANSI_X3.4"},
                                                {4, "ASCII"},
                                                {138, "SHIFT-JIS"},
                                                {173, "UTF-8"},
                                                {188, "#text"},
                                                {737, "http://www.w3.org/1999/XSL/Format"},
                                                {740, "http://www.w3.org/XML/1998/namespace"},
                                                {1590, "zh-TW"},
                                                {1597, "zoom"}};
    for (const auto& [number, text] : rows)
        EXPECT_EQ(RyNameTable::getBuiltinNameEnum(text), number) << text;
}

TEST(BuiltinNames, OtherTextsAndNumbersAreNotBuiltIn) {
    for (const char* text : {"", "ascii", "ASCI", "ASCIIx", "ASCII ", "zoomzoom", "-zoom", " "})
        EXPECT_EQ(RyNameTable::getBuiltinNameEnum(text), 0) << text;
    EXPECT_EQ(RyNameTable::getBuiltinNameEnum(UnicodeString(u"zoom\0", 5)), 0);
    EXPECT_EQ(RyNameTable::getBuiltinNameEnum(UnicodeString(5000, u'z', 5000)), 0);
    EXPECT_EQ(findBuiltinName(nullptr, -1), 0);
    for (const int number : {0, -1, 1598, 2147483647})
        EXPECT_TRUE(RyNameTable::getBuiltinNameString(static_cast<RyNameEnum>(number)).isEmpty())
            << number;
}

TEST(RyName, NumbersAndTexts) {
    const struct {
        RyName name;
        int number;
        const char* text;
        bool empty, builtin;
    } rows[] = {{RyName(), 0, "", true, true},
                {RyName(UnicodeString()), 0, "", true, true},
                {RN_ASCII, 4, "ASCII", false, true},
                {RyName(UnicodeString(u"ASCII")), 4, "ASCII", false, true},
                {RyName(1597), 1597, "zoom", false, true},
                {RyName(2147483647), 2147483647, "", false, false}};
    for (const auto& row : rows) {
        EXPECT_EQ(RyNameEnum(row.name), row.number);
        EXPECT_EQ(s(row.name.toString()), row.text);
        EXPECT_EQ(row.name.isEmpty(), row.empty) << row.number;
        EXPECT_EQ(row.name.isBuiltin(), row.builtin) << row.number;
    }
    EXPECT_FALSE(RyName(UnicodeString(u"RyName test: a name of its own")).isBuiltin());
    EXPECT_TRUE(RyName(4) == RN_ASCII && RyName(4) != RN_Area && RyName(4) != RyName(5));
}

TEST(RyNameList, CountsAndFinds) {
    const RyNameEnum names[] = {RN_auto, RN_none, RN_auto, RN_EMPTY, RN_zoom};
    const struct {
        const char* what;
        RyNameList list;
        int count, indexOfNone, indexOfZoom;
    } rows[] = {{"nothing", RyNameList(), 0, -1, -1},
                {"null with a count", RyNameList(nullptr, 3), 0, -1, -1},
                {"null", RyNameList(nullptr), 0, -1, -1},
                {"up to the 0", RyNameList(names), 3, 1, -1},
                {"counted, over the 0", RyNameList(names, 5), 5, 1, 4},
                {"negative count as passed", RyNameList(names, -2), -2, -1, -1}};
    for (const auto& row : rows) {
        RyNameList list;
        list = row.list;
        EXPECT_EQ(list.getCount(), row.count) << row.what;
        EXPECT_EQ(list.indexOf(RN_none), row.indexOfNone) << row.what;
        EXPECT_EQ(list.indexOf(RN_zoom), row.indexOfZoom) << row.what;
        EXPECT_EQ(list.hasItem(RN_zoom), row.indexOfZoom != -1) << row.what;
        for (const int outside : {-1, row.count, 2147483647, -2147483647})
            EXPECT_TRUE(list.getItem(outside).isEmpty()) << row.what << " " << outside;
    }
    EXPECT_EQ(RyNameList(names).getItem(1), RN_none);
    EXPECT_EQ(RyNameList(names).indexOf(RN_auto), 0);
}

}  // namespace
}  // namespace RynCommon
