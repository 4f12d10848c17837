// Quoting and unquoting of strings and URIs.
#include <string>

#include <RynCommon/RyUtil.h>
#include <gtest/gtest.h>

#include "tests/Text.h"

namespace RynCommon {
namespace {

TEST(Quoting, QuoteStringPicksTheQuoteThatTheTextLacks) {
    const struct {
        const char16_t* text;
        RyQuoteMode mode;
        const char* expected;
    } rows[] = {
        {u"", RYQUOTE_AUTO, "\"\""},
        {u"say \"a\"", RYQUOTE_AUTO, "'say \"a\"'"},
        {u"\"'", RYQUOTE_AUTO, "\"\\000022'\""},
        {u"it's", RYQUOTE_SINGLE, "'it\\000027s'"},
        {u"a\"b", RYQUOTE_DOUBLE, "\"a\\000022b\""},
        {u"C:\\dir\\", RYQUOTE_AUTO, "\"C:\\dir\\\""},
        {u"\\00002F", RYQUOTE_AUTO, "\"\\00005C00002F\""},
        {u"a\nb", RYQUOTE_AUTO, "\"a\\00000Ab\""},
    };
    for (const auto& row : rows)
        EXPECT_EQ(s(RyUtil::quoteString(row.text, row.mode)), row.expected);
}

TEST(Quoting, Unquote) {
    const struct {
        const char16_t* text;
        const char *string, *uri;
    } rows[] = {
        {u"\"a b\"", "a b", "a b"},
        {u"'a\"", "'a\"", "'a\""},
        {u"\"", "\"", "\""},
        {u"''", "", ""},
        {u" 'a' ", " 'a' ", "a"},
        {u"url( \"a b\" )", "url( \"a b\" )", "a b"},
        {u"URL(a.png)", "URL(a.png)", "a.png"},
        {u" url() ", " url() ", ""},
        {u"url(a", "url(a", "url(a"},
        {u"url(C:\\dir\\a.png)", "url(C:\\dir\\a.png)", "C:\\dir\\a.png"},
        {u"'\\110000 \\00d800 \\00002'", "\\110000 \\00d800 \\00002", "\\110000 \\00d800 \\00002"},
        {u"'\\01f600'", "\xF0\x9F\x98\x80", "\xF0\x9F\x98\x80"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(s(RyUtil::unquoteString(row.text)), row.string);
        EXPECT_EQ(s(RyUtil::unquoteUri(row.text)), row.uri);
    }
    EXPECT_EQ(s(RyUtil::quoteUri(u"a 'b'\\")), "url(\"a \\000027b\\000027\\00005C\")");
}

TEST(Quoting, ParseStringReachesToTheMatchingQuote) {
    const struct {
        const char16_t* text;
        int start;
        RyQuoteMode mode;
        int end;  // -1: no string
        const char* value;
    } rows[] = {
        {u"'a' b", 0, RYQUOTE_AUTO, 3, "a"},   {u"x\"it's\"", 1, RYQUOTE_AUTO, 7, "it's"},
        {u"'a\\'", 0, RYQUOTE_AUTO, 4, "a\\"}, {u"'a", 0, RYQUOTE_AUTO, -1, ""},
        {u"a'b'", 0, RYQUOTE_AUTO, -1, ""},    {u"'a'", 0, RYQUOTE_DOUBLE, -1, ""},
        {u"'a'", 0, RYQUOTE_SINGLE, 3, "a"},   {u"'a'", 3, RYQUOTE_AUTO, -1, ""},
    };
    for (const auto& row : rows) {
        int position = row.start;
        UnicodeString value(u"before");
        const bool found = RyUtil::parseString(row.text, position, value, row.mode);
        EXPECT_EQ(found, row.end >= 0) << s(row.text);
        EXPECT_EQ(position, found ? row.end : row.start) << s(row.text);
        EXPECT_EQ(s(value), found ? row.value : "before");
    }
}

}  // namespace
}  // namespace RynCommon
