// The built-in names against the list that they come from, names, and lists of names.
#include <RynCommon/RyName.h>
#include <RynCommon/RyNameTable.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <set>
#include <string>
#include <vector>

#include "core/NameTable.h"
#include "tests/Text.h"

namespace RynCommon {
namespace {

struct ListedName {
    int number;
    std::string identifier, text;
};

std::vector<ListedName> readList() {
    std::ifstream in(RYN_SOURCE_DIR "/include/RynCommon/RyBuiltinNames.inc");
    std::vector<ListedName> names;
    for (std::string line; std::getline(in, line);) {
        int number = 0;
        char identifier[128];
        char text[128];
        constexpr char row[] = "RYN_BUILTIN_NAME(%d, %127[A-Za-z0-9_], \"%127[^\"]\")";
        if (std::sscanf(line.c_str(), row, &number, identifier, text) == 3)
            names.push_back({number, identifier, text});
    }
    return names;
}

TEST(BuiltinNames, AgreeWithTheListInBothDirections) {
    const std::vector<ListedName> list = readList();
    ASSERT_EQ(list.size(), 1597u);
    std::set<std::string> texts;
    int expected = 0;
    for (const ListedName& name : list) {
        ASSERT_EQ(name.number, ++expected) << name.text;
        EXPECT_TRUE(texts.insert(name.text).second) << name.text << " is there twice";
        const RyNameEnum number = static_cast<RyNameEnum>(name.number);
        const UnicodeString text = UnicodeString::fromUTF8(name.text);
        EXPECT_EQ(s(RyNameTable::getBuiltinNameString(number)), name.text);
        EXPECT_EQ(RyNameTable::getBuiltinNameEnum(text), number) << name.text;
        EXPECT_EQ(findBuiltinName(text.getBuffer(), text.length()), number) << name.text;
        // The buffer of a built-in string ends in a NUL, which C interfaces may rely on.
        const UnicodeString& string = RyNameTable::getBuiltinNameString(number);
        EXPECT_EQ(string.getBuffer()[string.length()], u'\0') << name.text;
    }
}

TEST(BuiltinNames, ConstantsHaveTheNumbersOfTheirRows) {
    const std::vector<ListedName> list = readList();
    const struct {
        const char* identifier;
        int number;
    } constants[] = {
#define RYN_BUILTIN_NAME(number, identifier, text) {#identifier, RN_##identifier},
#include <RynCommon/RyBuiltinNames.inc>
#undef RYN_BUILTIN_NAME
    };
    ASSERT_EQ(std::size(constants), list.size());
    for (std::size_t i = 0; i < list.size(); ++i) {
        EXPECT_EQ(constants[i].identifier, list[i].identifier);
        EXPECT_EQ(constants[i].number, list[i].number) << list[i].identifier;
    }
}

// Numbers that callers have compiled in, picked over the whole range.
TEST(BuiltinNames, FixedNumbers) {
    const std::pair<int, const char*> rows[] = {{1, "ANSI_X3.4"},
                                                {4, "ASCII"},
                                                {40, "Courier New"},
                                                {83, "ISO_646.IRV:1991"},
                                                {138, "SHIFT-JIS"},
                                                {173, "UTF-8"},
                                                {180, "#CMYK"},
                                                {188, "#text"},
                                                {216, "alternate stylesheet"},
                                                {304, "block-container"},
                                                {737, "http://www.w3.org/1999/XSL/Format"},
                                                {738, "http://www.w3.org/1999/XSL/Transform"},
                                                {739, "http://www.w3.org/2000/xmlns/"},
                                                {740, "http://www.w3.org/XML/1998/namespace"},
                                                {1583, "yes"},
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
    EXPECT_EQ(findBuiltinName(nullptr, 0), 0);
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
                {RyName(4), 4, "ASCII", false, true},
                {RyName(UnicodeString(u"ASCII")), 4, "ASCII", false, true},
                {RyName(1597), 1597, "zoom", false, true},
                {RyName(-1), -1, "", false, false},
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
