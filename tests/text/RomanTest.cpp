// Roman numerals against a converter by subtraction.
#include <gtest/gtest.h>
#include "tests/text/NumberTestSupport.h"

namespace RynCommon {
namespace {

/// Takes the greatest value that fits, again and again. `letters` are one, five, ten, ...
UnicodeString convertNaively(int n, const UnicodeString& letters) {
    UnicodeString text;
    const int places[] = {10000, 1000, 100, 10, 1};
    for (int i = 0; i < 5; ++i) {
        const int level = 2 * (4 - i);
        if (level >= letters.length()) continue;
        const UnicodeString one(letters[level]);
        const UnicodeString five = letters.tempSubString(level + 1, 1);
        const UnicodeString ten = letters.tempSubString(level + 2, 1);
        const int value = places[i];
        const auto take = [&](int amount, const UnicodeString& sign, bool isKnown) {
            for (; isKnown && n >= amount; n -= amount) text += sign;
        };
        take(9 * value, one + ten, !ten.isEmpty());
        take(5 * value, five, !five.isEmpty());
        take(4 * value, one + five, !five.isEmpty());
        take(value, one, true);
    }
    return text;
}

TEST(Roman, EveryNumberInEveryLetters) {
    const struct {
        const char16_t *token, *letters;
        int last, precomposed;
    } rows[] = {
        {u"i", u"ivxlcdm", 3999, 0},
        {u"I", u"IVXLCDMↁↂ", 39999, 0},
        {u"\u2170", u"ⅰⅴⅹⅼⅽⅾⅿ", 3999, 0x2170},
        {u"\u2160", u"ⅠⅤⅩⅬⅭⅮⅯↁↂ", 39999, 0x2160},
        {u"\uFF49", u"ｉｖｘｌｃｄｍ", 3999, 0},
        {u"\uFF29", u"ＩＶＸＬＣＤＭↁↂ", 39999, 0},
    };
    for (const auto& row : rows) {
        for (int n = 1; n <= row.last; ++n) {
            const UnicodeString expected = row.precomposed != 0 && n <= 12
                                               ? UnicodeString(UChar32{row.precomposed + n - 1})
                                               : convertNaively(n, row.letters);
            ASSERT_EQ(RyUtil::formatNumber(n, row.token, RyLang()), expected) << n;
        }
        EXPECT_EQ(format(row.last + 1, row.token), std::to_string(row.last + 1));
        EXPECT_EQ(format(0, row.token), "0");
    }
}

TEST(Roman, TheFirstCharacterMakesTheToken) {
    EXPECT_EQ(format(4, u"item") + format(4, u"I1") + format(4, u"\u2460i"), "ivIV①iv");
    EXPECT_EQ(format(4, u"v") + format(4, u"\u2161"), "44");
}

TEST(Roman, TextsMayBeChangedByTheirOwner) {
    UnicodeString first = RyUtil::formatNumber(3998, u"i", RyLang());
    const UnicodeString copy = first;
    first.setCharAt(0, u'x');
    first.append(u"i!");
    EXPECT_EQ(first, u"xmmcmxcviiii!");
    EXPECT_EQ(copy, u"mmmcmxcviii");
    EXPECT_EQ(format(3998, u"i"), "mmmcmxcviii");
    EXPECT_EQ(UnicodeString(RyUtil::formatNumber(998, u"i", RyLang()).getTerminatedBuffer()),
              u"cmxcviii");
}

}  // namespace
}  // namespace RynCommon
