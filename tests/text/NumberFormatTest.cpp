// Number formatting: finding the token, decimal forms, grouping, and what bad formats do.
#include <limits>

#include <gtest/gtest.h>
#include "tests/text/NumberTestSupport.h"
#include "text/number/Digits.h"

namespace RynCommon {
namespace {

constexpr int INT_LAST = std::numeric_limits<int>::max();
constexpr int INT_FIRST = std::numeric_limits<int>::min();

TEST(NumberFormat, TheTokenStandsBetweenPrefixAndSuffix) {
    const struct {
        const char16_t* format;
        int n;
        const char* expected;
    } rows[] = {
        {u"(1)", 7, "(7)"},
        {u"001.", 7, "007."},
        {u"", 12, "12"},
        {u"§ 1.a", 3, "§ 3.a"},
        {u"11", 5, "5"},
        {u"<zz>", 5, "<5>"},
        {u"(Ⅰ)", 3, "(Ⅲ)"},                    // a letter number: no letter and no digit
        {u"①1", 5, "①5"},                      // a circled digit is no digit
        {u"a\u0301b", 3, "c\u0301b"},          // a combining mark ends the token
        {u"\U0001F600a\U0001F600", 2, "😀b😀"},  // emoji
        {u"\U00010400a", 2, "2"},              // a Deseret letter begins a token unknown here
        {u"0\U0001D7CE1", 5, "005"},           // three characters, four units
    };
    for (const auto& row : rows)
        EXPECT_EQ(format(row.n, row.format), row.expected) << s(row.format);
}

TEST(NumberFormat, EveryDigitFamilyPadsAndWritesItsDigits) {
    for (const char16_t one : std::u16string_view(
             u"\u0031\u0661\u06F1\u0967\u09E7\u0A67\u0AE7\u0B67\u0C67\u0CE7\u0D67\u0E51\u0ED1\u0F21"
             u"\u1041\u17E1\u1811\uFF11")) {
        const auto digits = [one](std::initializer_list<int> values) {
            UnicodeString text;
            for (const int value : values) text.append(static_cast<char16_t>(one - 1 + value));
            return s(text);
        };
        UnicodeString padded(static_cast<char16_t>(one - 1));
        padded.append(static_cast<char16_t>(one - 1)).append(one);
        EXPECT_EQ(format(1234567890, UnicodeString(one)), digits({1, 2, 3, 4, 5, 6, 7, 8, 9, 0}));
        EXPECT_EQ(format(7, padded), digits({0, 0, 7}));
        EXPECT_EQ(format(-7, padded), digits({0, 7}).insert(0, 1, '-'));
        // Two families in one token make no decimal form.
        EXPECT_EQ(format(7, UnicodeString(u"\u0BE6").append(one)), "7");
    }
}

TEST(NumberFormat, GroupsAreCountedFromTheRightAndOverThePadding) {
    const struct {
        int n;
        const char16_t *format, *separator;
        int size;
        const char* expected;
    } rows[] = {
        {1234567, u"1", u",", 3, "1,234,567"}, {1234567, u"", u".", 2, "1.23.45.67"},
        {1234, u"(1)", u"", 3, "(1234)"},      {1234, u"1", u",", 0, "1234"},
        {1234, u"1", u",", INT_LAST, "1234"},  {1234, u"1", u" - ", 1, "1 - 2 - 3 - 4"},
        {7, u"0000001", u",", 3, "0,000,007"}, {12345, u"\u0661", u"\u066C", 3, "١٢٬٣٤٥"},
        {-123456, u"1", u",", 3, "-123,456"},  {INT_FIRST, u"1", u",", 3, "-2,147,483,648"},
        {-1234, u"a", u",", 3, "-1,234"},  // fallen back
        {2024, u"一", u",", 3, "二〇二四"},    {29000, u"a", u",", 1, "apwj"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(
            s(RyUtil::formatNumber(row.n, row.format, row.separator, row.size, RyLang(), RN_EMPTY)),
            row.expected)
            << row.n << ' ' << s(row.format) << ' ' << row.size;
}

TEST(NumberFormat, NumbersThatNoSystemWritesAreDecimal) {
    for (const char16_t* token : {u"a", u"A", u"i", u"I", u"Ⅰ", u"α", u"а", u"あ", u"い", u"ア",
                                  u"ｱ", u"가", u"ㄱ", u"甲", u"甲子", u"Ａ", u"أ"}) {
        for (const int n : {0, -1, INT_FIRST})
            EXPECT_EQ(format(n, token), std::to_string(n)) << s(token);
        for (const RyNameEnum letterValue : {RN_traditional, RN_alphabetic})
            EXPECT_EQ(format(-5, token, u"es", letterValue), "-5") << s(token);
    }
    for (const char16_t* token : {u"一", u"일", u"א"}) EXPECT_EQ(format(-1, token), "-1");
}

TEST(NumberFormat, SystemsOfExactTokensTakeNoLongerOnes) {
    EXPECT_EQ(format(12, u"一二"), "12");
    EXPECT_EQ(format(12, u"일이"), "12");
    // Begins with the first stem, and so counts through the stems.
    EXPECT_EQ(format(12, u"甲子年"), s(countNaively(12, u"甲乙丙丁戊己庚辛壬癸")));
}

TEST(NumberFormat, LongFormatsAreWrittenWhole) {
    constexpr int LENGTH = 1 << 20;
    const UnicodeString dashes(LENGTH, u'-', LENGTH);
    EXPECT_EQ(RyUtil::formatNumber(3, dashes + u"a" + dashes, RyLang()), dashes + u"c" + dashes);
    const UnicodeString letters(LENGTH, u'b', LENGTH);
    EXPECT_EQ(RyUtil::formatNumber(3, u"a" + letters, RyLang()), u"c");
    const UnicodeString zeros(LENGTH, u'0', LENGTH);
    EXPECT_EQ(RyUtil::formatNumber(1, zeros + u"1", RyLang()), zeros + u"1");

    const UnicodeString grouped =
        RyUtil::formatNumber(1, zeros + u"1", u",", 1, RyLang(), RN_EMPTY);
    ASSERT_EQ(grouped.length(), 2 * LENGTH + 1);
    EXPECT_EQ(grouped.tempSubString(grouped.length() - 5), u"0,0,1");
    // A long separator in each of a million places would take a terabyte.
    EXPECT_EQ(RyUtil::formatNumber(1, zeros + u"1", dashes, 1, RyLang(), RN_EMPTY), zeros + u"1");
    EXPECT_EQ(RyUtil::formatNumber(1234, u"1", dashes, 3, RyLang(), RN_EMPTY),
              u"1" + dashes + u"234");
}

TEST(NumberFormat, LoneSurrogatesAndUnusualTextsStayAsTheyAre) {
    const std::pair<const char16_t*, const char16_t*> rows[] = {
        {u"\xD800", u"\xD800\x33"},
        {u"\xDC00\xD800i\xD800", u"\xDC00\xD800iii\xD800"},
        {u"i\xDC00z", u"iii\xDC00z"},
        {u"\xFFFFi\xFFFE", u"\xFFFFiii\xFFFE"},
    };
    for (const auto& [format, expected] : rows)
        EXPECT_EQ(RyUtil::formatNumber(3, format, RyLang()), expected);
    UnicodeString bogus;
    bogus.setToBogus();
    EXPECT_EQ(RyUtil::formatNumber(1234, bogus, bogus, 3, RyLang(), RN_EMPTY), u"1234");
    UnicodeString nul(u"a", 1);
    nul.append(char16_t{0}).append(u'1');
    EXPECT_EQ(RyUtil::formatNumber(2, nul, RyLang()), UnicodeString(u"b\0001", 3));
}

}  // namespace
}  // namespace RynCommon
