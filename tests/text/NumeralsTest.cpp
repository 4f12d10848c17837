// CJK, Hebrew, Greek and Arabic numerals.
#include <limits>

#include <gtest/gtest.h>
#include "tests/text/NumberTestSupport.h"

namespace RynCommon {
namespace {

constexpr int INT_LAST = std::numeric_limits<int>::max();

TEST(Numerals, CjkDigitsStandByPosition) {
    EXPECT_EQ(format(2024, u"一"), "二〇二四");
    EXPECT_EQ(format(0, u"一"), "〇");
    EXPECT_EQ(format(1234567890, u"(일)"), "(일이삼사오육칠팔구영)");
}

TEST(Numerals, TheSexagenaryCyclePairsStemAndBranch) {
    const UnicodeString stems(u"甲乙丙丁戊己庚辛壬癸");
    const UnicodeString branches(u"子丑寅卯辰巳午未申酉\u620D亥");
    for (int n = 1; n <= 60; ++n)
        EXPECT_EQ(RyUtil::formatNumber(n, u"甲子", RyLang()),
                  UnicodeString(stems[(n - 1) % 10]) + branches[(n - 1) % 12]);
    EXPECT_EQ(format(61, u"甲子"), "61");
}

TEST(Numerals, Hebrew) {
    const std::pair<int, const char*> rows[] = {
        {0, "אפס"},
        {15, "טו"},
        {16, "טז"},
        {1000, "אלף"},
        {1001, "אא"},
        {2024, "בכד"},
        {3000, "ג אלפים"},
        {5784, "התשפד"},
        {15016, "טוטז"},
        {999999, "תתקצטתתקצט"},
        {1000000, "מיליון"},
        {2002000, "ב מיליון אלפיים"},
        {2000000000, "אלפיים מיליון"},
        {INT_LAST, "בקמז מיליון תפגתרמז"},
    };
    for (const auto& [n, expected] : rows) EXPECT_EQ(format(n, u"א"), expected) << n;
    EXPECT_EQ(format(15, u"א"), format(15, u"א", u"he", RN_traditional));
}

TEST(Numerals, HebrewLettersAddUpToTheNumber) {
    const UnicodeString letters(u"אבגדהוזחטיכלמנסעפצקרשת");
    const auto valueOf = [&](char16_t letter) {
        const int index = letters.indexOf(letter);
        return index < 9 ? index + 1 : index < 18 ? (index - 8) * 10 : (index - 17) * 100;
    };
    for (int n = 1; n < 1000; ++n) {
        const UnicodeString text = RyUtil::formatNumber(n, u"א", RyLang());
        int sum = 0;
        for (int i = 0; i < text.length(); ++i) {
            sum += valueOf(text[i]);
            if (i > 0) {
                EXPECT_LE(valueOf(text[i]), valueOf(text[i - 1])) << n;
            }
        }
        EXPECT_EQ(sum, n);
        EXPECT_EQ(text.indexOf(u"יה"), -1) << n;
        EXPECT_EQ(text.indexOf(u"יו"), -1) << n;
    }
}

TEST(Numerals, TheLetterValueDecidesBetweenAlphabetAndNumerals) {
    const struct {
        int n;
        const char16_t* token;
        RyNameEnum letterValue;
        const char* expected;
    } rows[] = {
        {6, u"α", RN_alphabetic, "ζ"},
        {6, u"α", RN_EMPTY, "ζ"},
        {6, u"α", RN_traditional, "ϛ"},
        {999, u"α", RN_traditional, "ϡϟθ"},
        {1821, u"α", RN_traditional, "͵αωκα"},
        {9999, u"Α", RN_traditional, "͵ΘϠϞΘ"},
        {10000, u"Α", RN_traditional, "10000"},
        {12, u"(α\u0374)", RN_traditional, "(ιβ\u0374)"},
        {12, u"α\u0374", RN_alphabetic, "μ"},
        {15, u"א", RN_alphabetic, "ס"},
        {15, u"א", RN_auto, "טו"},
        {10, u"أ", RN_EMPTY, "ر"},
        {10, u"ا", RN_alphabetic, "ر"},
        {1446, u"ا", RN_traditional, "غتمو"},
        {2000, u"ا", RN_traditional, "2000"},
        {4, u"i", RN_alphabetic, "iv"},
        {7, u"а", RN_traditional, "ж"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(format(row.n, row.token, u"", row.letterValue), row.expected)
            << row.n << s(row.token) << row.letterValue;
}

}  // namespace
}  // namespace RynCommon
