// Counting with letters: the alphabets of tokens and those of languages.
#include <limits>
#include <memory>
#include <set>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include "tests/text/NumberTestSupport.h"
#include "text/number/LanguageAlphabets.h"

namespace RynCommon {
namespace {

TEST(Alphabets, EveryTokenCountsThroughItsLetters) {
    const struct {
        const char16_t *token, *letters;
        int count;
    } rows[] = {
        {u"a", u"abcdefghijklmnopqrstuvwxyz", 26},
        {u"\u03B1", u"αβγδεζηθικλμνξοπρστυφχψω", 24},
        {u"\u0391", u"ΑΒΓΔΕΖΗΘΙΚΛΜΝΞΟΠΡΣΤΥΦΧΨΩ", 24},
        {u"\u0430", u"абвгдежзиклмнопрстуфхцчшщыэюя", 29},
        {u"\u3042",
         u"あいうえおかきくけこさしすせそたちつてとなにぬねのはひふへほまみむめもやゆよらりるれろわ"
         u"をん",
         46},
        {u"\u3044",
         u"いろはにほへとちりぬるをわかよたれそつねならむうゐのおくやまけふこえてあさきゆめみしゑひ"
         u"もせす",
         47},
        {u"\u30A2",
         u"アイウエオカキクケコサシスセソタチツテトナニヌネノハヒフヘホマミムメモヤユヨラリルレロワ"
         u"ヲン",
         46},
        {u"\u30A4",
         u"イロハニホヘトチリヌルヲワカヨタレソツネナラムウヰノオクヤマケフコエテアサキユメミシヱヒ"
         u"モセス",
         47},
        {u"\uFF71", u"ｱｲｳｴｵｶｷｸｹｺｻｼｽｾｿﾀﾁﾂﾃﾄﾅﾆﾇﾈﾉﾊﾋﾌﾍﾎﾏﾐﾑﾒﾓﾔﾕﾖﾗﾘﾙﾚﾛﾜｦﾝ", 46},
        {u"\uFF72", u"ｲﾛﾊﾆﾎﾍﾄﾁﾘﾇﾙｦﾜｶﾖﾀﾚｿﾂﾈﾅﾗﾑｳﾉｵｸﾔﾏｹﾌｺｴﾃｱｻｷﾕﾒﾐｼﾋﾓｾｽ", 45},
        {u"\uAC00", u"가나다라마바사아자차카타파하", 14},
        {u"\u3131", u"ㄱㄴㄷㄹㅁㅂㅅㅇㅈㅊㅋㅌㅍㅎ", 14},
        {u"\u7532", u"甲乙丙丁戊己庚辛壬癸", 10},
        {u"\u5B50", u"子丑寅卯辰巳午未申酉\u620D亥", 12},
        {u"\u0623", u"أبتثجحخدذرزسشصضطظعغفقكلمنهو", 27},
    };
    for (const auto& row : rows) {
        const UnicodeString letters(row.letters);
        ASSERT_EQ(letters.length(), row.count);
        for (int n = 1; n <= 1000; ++n)
            ASSERT_EQ(RyUtil::formatNumber(n, row.token, RyLang()), countNaively(n, letters))
                << s(row.token) << n;
        EXPECT_EQ(RyUtil::formatNumber(60000, row.token, RyLang()), countNaively(60000, letters));
        // What follows the first character says nothing.
        EXPECT_EQ(format(5, UnicodeString(row.token) + u"11"), format(5, row.token));
    }
}

TEST(Alphabets, BasicLatinLettersCountTheLow16Bits) {
    constexpr int INT_LAST = std::numeric_limits<int>::max();
    for (const char16_t* token : {u"a", u"A", u"ａ", u"Ａ"}) {
        UnicodeString letters;
        for (int i = 0; i < 26; ++i) letters.append(static_cast<char16_t>(*token + i));
        EXPECT_EQ(RyUtil::formatNumber(65535, token, RyLang()), countNaively(65535, letters));
        EXPECT_EQ(format(65536, token), "65536");
        EXPECT_EQ(RyUtil::formatNumber(65537, token, RyLang()), countNaively(1, letters));
        EXPECT_EQ(RyUtil::formatNumber(INT_LAST, token, RyLang()), countNaively(65535, letters));
    }
    // Nothing is cut elsewhere, and neither with an alphabet of the language.
    const UnicodeString greek(u"αβγδεζηθικλμνξοπρστυφχψω");
    const UnicodeString spanish(u"abcdefghijklmnñopqrstuvwxyz");
    for (const int n : {65536, 65537, INT_LAST}) {
        EXPECT_EQ(RyUtil::formatNumber(n, u"\u03B1", RyLang()), countNaively(n, greek));
        EXPECT_EQ(RyUtil::formatNumber(n, u"a", RyLang(u"es")), countNaively(n, spanish));
    }
}

TEST(Alphabets, LanguagesHaveTheirOwn) {
    const struct {
        const char16_t *tag, *token;
        int count;
        int n;  // a number that shows the difference
        const char* expected;
    } rows[] = {
        {u"es", u"a", 27, 15, "ñ"},  {u"gl-ES", u"A", 27, 15, "Ñ"},
        {u"nor", u"a", 29, 28, "ø"}, {u"fin", u"A", 29, 29, "Ö"},
        {u"et", u"a", 32, 20, "š"},  {u"hr", u"a", 30, 7, "dž"},
        {u"hr", u"A", 30, 7, "DŽ"},  {u"sl", u"a", 25, 4, "č"},
        {u"cs", u"a", 31, 10, "ch"}, {u"sk", u"A", 32, 2, "Ä"},
        {u"tr", u"a", 29, 11, "ı"},  {u"tr", u"A", 29, 12, "İ"},
        {u"hu", u"a", 37, 39, "ab"}, {u"hu", u"A", 37, 7, "DZS"},
        {u"pl", u"a", 35, 35, "ż"},  {u"lv", u"a", 33, 2, "ā"},
        {u"lt", u"A", 32, 9, "Ė"},   {u"is", u"a", 32, 30, "þ"},
        {u"ro", u"a", 31, 23, "ș"},  {u"sqi", u"a", 36, 6, "dh"},
        {u"az", u"A", 32, 8, "F"},   {u"sr-Latn", u"a", 30, 17, "lj"},
        {u"rus", u"А", 33, 11, "Й"}, {u"uk", u"а", 33, 5, "ґ"},
        {u"be", u"а", 32, 22, "ў"},  {u"bg", u"а", 30, 27, "ъ"},
        {u"srp", u"А", 30, 6, "Ђ"},  {u"mk", u"а", 31, 6, "ѓ"},
        {u"de", u"a", 26, 26, "z"},  {u"ru", u"a", 26, 3, "c"},
        {u"es", u"а", 29, 7, "ж"},   {u"es", u"ａ", 26, 15, "ｏ"},
    };
    for (const auto& row : rows) {
        const auto label = s(row.tag) + ' ' + s(row.token);
        EXPECT_EQ(format(row.n, row.token, row.tag), row.expected) << label;
        // The letters are all different, and the first comes back, doubled, after the last.
        std::set<std::string> letters;
        for (int n = 1; n <= row.count; ++n) letters.insert(format(n, row.token, row.tag));
        EXPECT_EQ(static_cast<int>(letters.size()), row.count) << label;
        EXPECT_EQ(format(row.count + 1, row.token, row.tag), s(row.token) + s(row.token)) << label;
    }
}

TEST(Alphabets, TheLanguagesTableIsBuiltOnceByManyThreads) {
    for (int round = 0; round < 20; ++round) {
        RyUtil::cleanup();
        std::vector<std::shared_ptr<const LanguageAlphabets>> tables(8);
        std::vector<std::string> texts(tables.size());
        std::vector<std::thread> threads;
        for (std::size_t i = 0; i < tables.size(); ++i)
            threads.emplace_back([&, i] {
                texts[i] = format(15, u"a", u"es");
                tables[i] = acquireLanguageAlphabets();
            });
        for (std::thread& thread : threads) thread.join();
        for (std::size_t i = 0; i < tables.size(); ++i) {
            EXPECT_EQ(tables[i], tables[0]);
            EXPECT_EQ(texts[i], "ñ");
        }
    }
}

TEST(Alphabets, CleanupReleasesTheTableAndItIsBuiltAgain) {
    std::weak_ptr<const LanguageAlphabets> table = acquireLanguageAlphabets();
    EXPECT_FALSE(table.expired());
    RyUtil::cleanup();
    EXPECT_TRUE(table.expired());
    RyUtil::cleanup();
    EXPECT_EQ(format(15, u"a", u"es"), "ñ");

    // Readers and cleanups at once.
    std::thread cleaner([] {
        for (int i = 0; i < 500; ++i) RyUtil::cleanup();
    });
    for (int i = 0; i < 500; ++i) EXPECT_EQ(format(30, u"А", u"sr"), "Ш");
    cleaner.join();
}

}  // namespace
}  // namespace RynCommon
