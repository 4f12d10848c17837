// The tokenizer: tokens, values, pushing back, separated items and hostile texts.
#include <RynCommon/RyTokenizer.h>
#include <gtest/gtest.h>

#include "tests/values/ValueTestSupport.h"

namespace RynCommon {
namespace {

using Reading = RyValue (RyTokenizer::*)();
constexpr Reading PLAIN = &RyTokenizer::nextTokenValue;
constexpr Reading SIGNED = &RyTokenizer::nextTokenValueSigned;
constexpr Reading EXP = &RyTokenizer::nextTokenValueExp;
constexpr Reading FUNC = &RyTokenizer::nextTokenValueFunc;

/// Kind, number and text of the current token.
std::string describeToken(const RyTokenizer& tokenizer) {
    const int kind = tokenizer.getToken();
    std::string text = s(tokenizer.getText());
    switch (kind) {
        case RYTOKEN_NUMBER:
            return s(RyValue(tokenizer.getNumber()).toString()) + "(" + text + ")";
        case RYTOKEN_NAME:
            return text;
        case RYTOKEN_STRING:
            return "'" + text + "'";
        case RYTOKEN_COLOR:
            return "#" + std::to_string(static_cast<int>(tokenizer.getNumber()));
        default:
            return "<" + std::to_string(kind) + ">";
    }
}

std::string readTokens(const UnicodeString& text) {
    std::string result;
    RyTokenizer tokenizer(text);
    while (tokenizer.nextToken() != RYTOKEN_END) result += " " + describeToken(tokenizer);
    return result;
}

std::string readValues(const UnicodeString& text, Reading reading) {
    std::string result;
    RyTokenizer tokenizer(text);
    for (RyValue value = (tokenizer.*reading)(); !value.isNull(); value = (tokenizer.*reading)())
        result += (result.empty() ? "" : " | ") + describe(value);
    return result;
}

TEST(RyTokenizer, Tokens) {
    const std::pair<UnicodeString, const char*> rows[] = {
        {u"", ""},
        {u"12.5pt 50% 7", " 12.5(pt) 50(%) 7()"},
        {u"12foo-1.x bar", " 12(foo-1.x) bar"},
        {u"5. .5 .", " 5(.) 0.5() <46>"},
        {u"12%%a", " 12(%) <37> a"},
        {u"-a _b a.b-c:d", " <45> a _b a.b-c <58> d"},
        {u"\u00e9t\u00e9 \u00d7 \u037e a\u00b7\u0301", " été <215> <894> a·\u0301"},
        {u"\U00010000a \U000EFFFF \U000F0000", " \U00010000a \U000EFFFF <983040>"},
        {UnicodeString(u"a\0b", 3), " a <0> b"},
        {UnicodeString(u"\xD800 \xDC00", 3), " <55296> <56320>"},
        {u"'a \"b\"' \"c'\" ''", " 'a \"b\"' 'c'' ''"},
        {u"\"C:\\dir \\000022\"", " 'C:\\dir \"'"},
        {u"'a \"b", " <39> a <34> b"},
        {u"#abc #aabbcc #a #ab #abcd", " #11189196 #11189196 #170 #43707 #43981"},
        {u"#123456789 #0000000000000ff", " #4548489 #255"},
        {u"#g # #abz", " <35> g <35> #43707 z"},
    };
    for (const auto& [text, expected] : rows) EXPECT_EQ(readTokens(text), expected) << s(text);
}

TEST(RyTokenizer, Values) {
    const struct {
        Reading reading;
        UnicodeString text;
        const char* expected;
    } rows[] = {
        {PLAIN, u"12.5pt 12PT 12Pt", "2/9 12.5pt | 2/9 12pt | 2/9 12pt"},
        {PLAIN, u"12foo 3", "1/1 12 | 3/23 foo | 1/1 3"},
        {PLAIN, u"1p\u212A 2\u212AHz", "1/1 1 | 3/23 p\u212A | 1/1 2 | 3/23 \u212AHz"},
        {PLAIN, u"1em 2ex 3px 4cm 5mm 6in 7pt 8pc 9jpt 1q",
         "2/3 1em | 2/4 2ex | 2/5 3px | 2/6 4cm | 2/7 5mm | 2/8 6in | 2/9 7pt | 2/10 8pc | "
         "2/11 9jpt | 2/12 1q"},
        {PLAIN, u"1deg 2RAD 3grad 4ms 5s 6dpi 7twip 8%",
         "2/13 1deg | 2/14 2rad | 2/15 3grad | 2/16 4ms | 2/17 5s | 2/28 6dpi | 2/29 7twip | "
         "2/2 8%"},
        {PLAIN, u"1.1.1", "2/1 1.1 | 2/1 0.1"},
        {PLAIN, u"1.0 2147483647 2147483648 1.5",
         "1/1 1 | 1/1 2147483647 | 2/1 2.14748e+09 | 2/1 1.5"},
        {PLAIN, u"#abc 'x' y ( -3", "1/24 #AABBCC | 4/21 x | 3/23 y | 1/20 ( | 1/20 - | 1/1 3"},
        {SIGNED, u"-3 +4pt - 3 -.5% --1 -a",
         "1/1 -3 | 2/9 4pt | 1/20 - | 1/1 3 | 2/2 -0.5% | 1/20 - | 1/1 -1 | 1/20 - | 3/23 a"},
        {SIGNED, u"-2147483648 -0 -0.0pt 1e3",
         "2/1 -2.14748e+09 | 1/1 0 | 2/9 0pt | 1/1 1 | 3/23 e3"},
        {EXP, u"1e3 1e 1E-2 1e+1", "2/1 1000 | 1/1 1 | 3/23 e | 2/1 0.01 | 2/1 10"},
        {EXP, u"1e2% 1e2pt -2e1em 1em 1ex", "2/2 100% | 2/9 100pt | 2/3 -20em | 2/3 1em | 2/4 1ex"},
        {EXP, u"1e 3 1 e3 1e- 5%e2 1e2e3",
         "1/1 1 | 3/23 e | 1/1 3 | 1/1 1 | 3/23 e3 | 1/1 1 | 3/23 e- | 2/2 5% | 3/23 e2 | "
         "2/1 100 | 3/23 e3"},
        {EXP, u"1e999 0e999 1e-999", "2/1 inf | 2/1 0 | 2/1 0"},
        {FUNC, u"url( \"a b\" ) url(x/y?z) url()", "4/22 a b | 4/22 x/y?z | 4/22 "},
        {FUNC, u"foo(1, 2) bar", "4/0 foo(1, 2) | 3/23 bar"},
        {FUNC, u"(a (b) c) 1", "4/0 (a (b) c) | 1/1 1"},
        {FUNC, u"f(g(url(x) rgb(1,2,3)) ')') 2", "4/0 f(g(url(x) rgb(1,2,3)) ')') | 1/1 2"},
        {FUNC, u"rgb(1,2,3) rgb(1,2) 1e1", "1/24 #010203 | 4/0 rgb(1,2) | 2/1 10"},
        {FUNC, u"foo (1) x", "3/23 foo | 4/0 (1) | 3/23 x"},
        {FUNC, u"1 url(a b", "1/1 1 | 4/0 url(a b"},
        {FUNC, u") a", "1/20 ) | 3/23 a"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(readValues(row.text, row.reading), row.expected) << s(row.text);
}

TEST(RyTokenizer, DoublesKeepTheirPrecision) {
    RyTokenizer tokenizer(u"16777217 -1.5e3 12pt 0.1e1% x ( 1");
    EXPECT_EQ(tokenizer.nextTokenDoubleExp(), 16777217);
    EXPECT_EQ(tokenizer.nextTokenDoubleExp(), -1500);
    EXPECT_EQ(tokenizer.nextTokenDoubleExp(), 12);
    EXPECT_EQ(tokenizer.nextTokenDoubleExp(), 1);
    EXPECT_NE(tokenizer.nextTokenDoubleExp(), tokenizer.nextTokenDoubleExp());
    EXPECT_EQ(tokenizer.nextTokenDoubleExp(), 1);
}

// Each row reads once, pushes back, reads in another way, and then reads the rest.
TEST(RyTokenizer, PushBack) {
    const struct {
        UnicodeString text;
        Reading first, second;
        const char* expected;
    } rows[] = {
        {u"12pt x", PLAIN, EXP, "2/9 12pt | 3/23 x"},  {u"-3 x", SIGNED, PLAIN, "1/1 -3 | 3/23 x"},
        {u"-3 x", PLAIN, SIGNED, "1/1 -3 | 3/23 x"},   {u"1e3 x", EXP, PLAIN, "2/1 1000 | 3/23 x"},
        {u"1e3e4 x", EXP, EXP, "2/1 1000 | 3/23 e4"},  {u"f(1) x", FUNC, PLAIN, "3/23 f | 1/20 ("},
        {u"f(1) x", PLAIN, FUNC, "4/0 f(1) | 3/23 x"}, {u"", PLAIN, FUNC, "0/0  | 0/0 "},
    };
    for (const auto& row : rows) {
        RyTokenizer tokenizer(row.text);
        tokenizer.pushBack();
        (tokenizer.*row.first)();
        tokenizer.pushBack();
        const RyValue second = (tokenizer.*row.second)();
        EXPECT_EQ(describe(second) + " | " + describe(tokenizer.nextTokenValue()), row.expected)
            << s(row.text);
    }
}

TEST(RyTokenizer, PushedBackTokenKeepsItsSuffixUntilItIsRead) {
    RyTokenizer tokenizer(u"12foo bar");
    EXPECT_EQ(tokenizer.nextToken(), RYTOKEN_NUMBER);
    EXPECT_EQ(s(tokenizer.getText()), "foo");
    tokenizer.pushBack();
    EXPECT_FALSE(tokenizer.scanSeparator(L' '));
    EXPECT_FALSE(tokenizer.skipSeparator(L'b'));
    EXPECT_EQ(describe(tokenizer.nextTokenValue()), "1/1 12");
    EXPECT_EQ(s(tokenizer.getText()), "");
    EXPECT_EQ(describe(tokenizer.nextTokenValue()), "3/23 foo");
}

std::string readItems(const UnicodeString& text, wchar_t separator) {
    std::string result;
    RyTokenizer tokenizer(text);
    for (;;) {
        const UnicodeString item = tokenizer.nextSeparatedValue(separator);
        if (tokenizer.getToken() == RYTOKEN_END) break;
        result += "<" + s(item) + ">";
        const bool isAhead = tokenizer.scanSeparator(separator);
        const bool isSkipped = tokenizer.skipSeparator(separator);
        EXPECT_EQ(isAhead, isSkipped);
        result += isSkipped ? "," : "";
    }
    return result;
}

TEST(RyTokenizer, SeparatedValues) {
    const struct {
        UnicodeString text;
        wchar_t separator;
        const char* expected;
    } rows[] = {
        {u"", L',', ""},
        {u" a , b,c ", L',', "<a>,<b>,<c>"},
        {u",,a", L',', "<>,<>,<a>"},
        {u"'Times New Roman', serif", L',', "<Times New Roman>,<serif>"},
        {u"a'b, c'd\"e f\",g", L',', "<ab, cde f>,<g>"},
        {u"\"C:\\a\\00000A\";x", L';', "<C:\\a\n>,<x>"},
        {u"a 'b, c ", L',', "<a><b, c >"},
        {u"a\U0001F600b", 0x1F600, "<a>,<b>"},
        {UnicodeString(u"a\0b", 3), L'\0', "<a>,<b>"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(readItems(row.text, row.separator), row.expected) << s(row.text);
}

TEST(RyTokenizer, SeparatedValuesAndTokensShareThePosition) {
    RyTokenizer tokenizer(u"a  , 'b c' 12pt");
    EXPECT_EQ(describe(tokenizer.nextTokenValue()), "3/23 a");
    EXPECT_FALSE(tokenizer.skipSeparator(L';'));
    EXPECT_TRUE(tokenizer.scanSeparator(L','));
    EXPECT_TRUE(tokenizer.skipSeparator(L','));
    EXPECT_EQ(s(tokenizer.nextSeparatedValue(L',')), "b c");
    tokenizer.pushBack();
    EXPECT_EQ(s(tokenizer.nextSeparatedValue(L',')), "b c");
    tokenizer.pushBack();
    EXPECT_EQ(describe(tokenizer.nextTokenValue()), "4/21 b c");
    EXPECT_EQ(s(UnicodeString(tokenizer.getPtr())), "12pt");
}

TEST(RyTokenizer, CopyIsIndependent) {
    RyTokenizer copy(u"");
    {
        const UnicodeString text(
            u"a text that is too long to lie inside of the string object: one two");
        RyTokenizer tokenizer(text);
        tokenizer.nextToken();
        tokenizer.pushBack();
        copy = tokenizer;
        while (tokenizer.nextToken() != RYTOKEN_END) {
        }
    }
    EXPECT_EQ(describe(copy.nextTokenValue()), "3/23 a");
    EXPECT_EQ(s(UnicodeString(copy.getPtr())).substr(0, 5), " text");
}

UnicodeString repeat(const UnicodeString& part, int count) {
    UnicodeString text;
    for (int i = 0; i < count; ++i) text.append(part);
    return text;
}

// With a quadratic reader each of these would take hours; the last nests and is one value.
TEST(RyTokenizer, HostileTextsTakeLinearTime) {
    constexpr int COUNT = 100'000;
    const struct {
        UnicodeString text;
        int functions;  // number of values that nextTokenValueFunc gives
    } rows[] = {
        {repeat(u"(", COUNT), 1},
        {repeat(u"1.1.", COUNT), 2 * COUNT},
        {repeat(u"1e1", COUNT), 1},
        {repeat(u"' ", COUNT), COUNT / 2},
        {repeat(u"f(')')", COUNT), COUNT},
        {repeat(u"url(", COUNT), 1},
        {repeat(u"rgb(1,2,3)", COUNT), COUNT},
        {repeat(u"f(", COUNT) + repeat(u")", COUNT), 1},
    };
    for (const auto& row : rows) {
        const std::string what = s(row.text.tempSubString(0, 10));
        for (const Reading reading : {PLAIN, EXP, FUNC}) {
            RyTokenizer tokenizer(row.text);
            int count = 0;
            while (!(tokenizer.*reading)().isNull()) ++count;
            EXPECT_GT(count, 0) << what;
            EXPECT_EQ(*tokenizer.getPtr(), 0) << what;
            if (reading != FUNC) continue;
            EXPECT_NEAR(count, row.functions, 2) << what;
        }
    }
}

}  // namespace
}  // namespace RynCommon
