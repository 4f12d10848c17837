// Numbers in Chinese numerals, those with place names against ICU's rules for Japanese.
#include <limits>
#include <random>

#include <gtest/gtest.h>
#include <unicode/rbnf.h>
#include "tests/text/NumberTestSupport.h"

namespace RynCommon {
namespace {

constexpr int INT_FIRST = std::numeric_limits<int>::min();

TEST(Kansuji, RoundAndUnusualValues) {
    const struct {
        int n;
        const char *plain, *formal, *positional;
    } rows[] = {
        {0, "〇", "零", "〇"},
        {10, "十", "壱拾", "一〇"},
        {1234, "千二百三十四", "壱千弐百参拾四", "一二三四"},
        {10000, "一万", "壱万", "一〇〇〇〇"},
        {100000001, "一億一", "壱億壱", "一〇〇〇〇〇〇〇一"},
        {-5, "－五", "－五", "－五"},
        {INT_FIRST, "－二十一億四千七百四十八万三千六百四十八",
         "－弐拾壱億四千七百四拾八万参千六百四拾八", "－二一四七四八三六四八"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(s(RyUtil::convertKansuji(row.n)), row.plain);
        EXPECT_EQ(s(RyUtil::convertKansuji(row.n, RYKANSUJI_FORMAL)), row.formal);
        EXPECT_EQ(s(RyUtil::convertKansuji(row.n, RYKANSUJI_POSITIONAL)), row.positional);
        // The number as a text is written alike.
        const UnicodeString digits = RyUtil::toString(row.n);
        for (const RyKansujiStyle style :
             {RYKANSUJI_PLAIN, RYKANSUJI_FORMAL, RYKANSUJI_POSITIONAL, RYKANSUJI_FULLWIDTH})
            EXPECT_EQ(RyUtil::convertKansuji(digits, style), RyUtil::convertKansuji(row.n, style));
    }
}

TEST(Kansuji, PlainNumeralsAreTheSpokenOnes) {
    UErrorCode status = U_ZERO_ERROR;
    const icu::RuleBasedNumberFormat spoken(icu::URBNF_SPELLOUT, icu::Locale::getJapanese(),
                                            status);
    ASSERT_TRUE(U_SUCCESS(status));
    std::mt19937_64 random(6);
    for (int i = 0; i < 5000; ++i) {
        // Up to sixteen digits, many of them 0.
        std::int64_t n = 0;
        for (auto length = random() % 16; length > 0; --length) {
            const auto digit = random() % 20;
            n = n * 10 + static_cast<std::int64_t>(digit < 10 ? digit : digit < 15 ? 0 : 1);
        }
        UnicodeString expected;
        spoken.format(n, expected);
        ASSERT_EQ(RyUtil::convertKansuji(RyUtil::toString(static_cast<long long>(n))), expected)
            << n;
    }
}

TEST(Kansuji, TextsKeepWhatIsNoNumber) {
    const struct {
        const char16_t* text;
        RyKansujiStyle style;
        const char* expected;
    } rows[] = {
        {u"", RYKANSUJI_PLAIN, ""},
        {u"No. 12", RYKANSUJI_PLAIN, "Ｎｏ｜　十二"},
        {u"~!A1", RYKANSUJI_FULLWIDTH, "～！Ａ１"},
        {u"1,234.50", RYKANSUJI_POSITIONAL, "一、二三四｜五〇"},
        {u"1,234.50", RYKANSUJI_PLAIN, "千二百三十四｜五〇"},
        {u"12.5.10", RYKANSUJI_PLAIN, "十二｜五｜一〇"},
        {u"5.", RYKANSUJI_PLAIN, "五｜"},
        {u"1,234,567", RYKANSUJI_PLAIN, "百二十三万、四千五百六十七"},
        {u"1,2345", RYKANSUJI_PLAIN, "一万、二千三百四十五"},
        {u"1,0000,0001", RYKANSUJI_FORMAL, "壱億、壱"},
        {u"10,20,30", RYKANSUJI_PLAIN, "十、二十、三十"},
        {u"1234,567", RYKANSUJI_PLAIN, "千二百三十四、五百六十七"},
        {u"007", RYKANSUJI_PLAIN, "七"},
        {u"007", RYKANSUJI_POSITIONAL, "〇〇七"},
        {u"\u0661\u00E9\t\U0001F600\xD800", RYKANSUJI_PLAIN, "١é\t😀\xEF\xBF\xBD"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(s(RyUtil::convertKansuji(row.text, row.style, u"、", u"｜")), row.expected)
            << s(row.text);
}

TEST(Kansuji, TheCallerChoosesTheSeparators) {
    EXPECT_EQ(RyUtil::convertKansuji(u"1,234.5"), u"千二百三十四・五");
    EXPECT_EQ(RyUtil::convertKansuji(u"1,2.5", RYKANSUJI_POSITIONAL, u"", u"点"), u"一二点五");
    EXPECT_EQ(RyUtil::convertKansuji(1234567, RYKANSUJI_POSITIONAL, u"，"), u"一，二三四，五六七");
    EXPECT_EQ(RyUtil::convertKansuji(-123456, RYKANSUJI_FULLWIDTH, u","), u"－１２３,４５６");
    EXPECT_EQ(RyUtil::convertKansuji(123456789, RYKANSUJI_PLAIN, u"、"),
              u"一億、二千三百四十五万、六千七百八十九");
    EXPECT_EQ(RyUtil::convertKansuji(120000000, RYKANSUJI_PLAIN, u"、"), u"一億、二千万");
}

TEST(Kansuji, LongTextsEndInTime) {
    const UnicodeString last = u"1" + UnicodeString(51, u'0', 51);
    EXPECT_EQ(RyUtil::convertKansuji(last), u"千極");
    EXPECT_EQ(RyUtil::convertKansuji(last + u"0"), u"一" + UnicodeString(52, u'〇', 52));
    constexpr int LENGTH = 1 << 20;
    const UnicodeString zeros(LENGTH, u'0', LENGTH);
    EXPECT_EQ(RyUtil::convertKansuji(zeros + u"12"), u"十二");
    EXPECT_EQ(RyUtil::convertKansuji(u"5" + zeros), u"五" + UnicodeString(LENGTH, u'〇', LENGTH));
    UnicodeString even;
    UnicodeString ragged;
    UnicodeString expected;
    for (int i = 0; i < LENGTH / 4; ++i) {
        even.append(u"000,");
        ragged.append(u"1,12,");
        expected.append(u"一、十二、");
    }
    EXPECT_EQ(RyUtil::convertKansuji(even + u"012"), u"十二");
    EXPECT_EQ(RyUtil::convertKansuji(ragged), expected);
}

}  // namespace
}  // namespace RynCommon
