// Resolution of references against a base, and the way back.
#include <RynCommon/RyUri.h>

#include <gtest/gtest.h>

#include <string>

#include "tests/Text.h"

namespace RynCommon {
namespace {

std::string resolve(const std::string& base, const std::string& reference,
                    RyUri::URISTRTYPE type = RyUri::URI_OR_PATH) {
    return s(RyUri(RyUri(u(base)), u(reference), type));
}

struct Row {
    const char *base, *reference, *expected;
};

void check(const Row& row) {
    EXPECT_EQ(resolve(row.base, row.reference), row.expected)
        << "'" << row.reference << "' against " << row.base;
}

TEST(ResolveTest, References) {
    const Row rows[] = {
        {"http://h/x/y/a.xml", "", ""},
        {"http://h/x/y/a.xml", "  ", ""},
        {"http://h/x/y/a.xml?q=1", "../b.xml", "http://h/x/b.xml"},
        {"http://h/x/y/a.xml?q=../../z", "b.xml", "http://h/x/y/b.xml"},
        {"HTTPS://H/x/a", "/b", "https://H/b"},
        {"http://h", "b", "http://h/b"},
        {"http://h", "../b", "http://h/b"},
        {"ftp://h/a/b?c/d", "e", "ftp://h/a/b?c/e"},
        {"http://h/x/a", " a b\\c ", "http://h/x/a%20b/c"},
        {"http://h/x/a", "mailto:x@y", "mailto:x@y"},
        {"http://h/x/a", " data:,a b ", "data:,a b"},
        {"http://h/x/a", "C:\\a b.xml", "file:///C:/a%20b.xml"},
        {"http://h/x/a", "\\\\srv\\share\\a", "file://srv/share/a"},
        {"http://h/x/a", "//C:/a", "file:///C:/a"},
        {"http://h/x/a", "file:b", "http://h/x/b"},
        {"http://h/x/a", "file:../b", "http://h/b"},
        {"http://h/x/a", "file:/tmp/a", "file:///tmp/a"},
        {"http://h/x/a", "file:/C:/a", "file:///C:/a"},
        {"http://h/x/a", "file://C:/a", "file:///C:/a"},
        {"http://h/x/a", "file://srv/a", "file://srv/a"},
        {"http://h/x/a", "FILE:///C:/a", "FILE:///C:/a"},
        {"http://h/x/a", "file:", "http://h/x/"},
        {"http://h/x/a", "file:/", "file:///"},
        {"", "../b", "../b"},
        {"", "/b", "/b"},
        {"", "file:b", "b"},
        {"./", "../b", "../b"},
        {"a.xml", "../b", "../b"},
        {"a/b.xml", "c", "a/c"},
        {"a/b.xml", "../../../c", "a/c"},
        {"file:///C:/x/y/a.xml", "/c.xml", "file:///C:/c.xml"},
        {"file:///C:/x/y/a.xml", "../../../../c.xml", "file:///C:/c.xml"},
        {"file:///tmp/x/a.xml", "/c.xml", "file:///c.xml"},
        {"file://srv/share/a.xml", "/c.xml", "file://srv/c.xml"},
        {"FILE://LocalHost/tmp/a.xml", "b.xml", "file:///tmp/b.xml"},
    };
    for (const Row& row : rows) check(row);
}

TEST(ResolveTest, ArchiveMembers) {
    const Row rows[] = {
        {"jar:file:///C:/d.zip!/word/doc.xml", "img.png", "jar:file:///C:/d.zip!/word/img.png"},
        {"jar:file:///d.zip!/doc.xml", "img.png", "jar:file:///d.zip!/img.png"},
        {"jar:file:///d.zip!/doc.xml", "../../img.png", "jar:file:///d.zip!/img.png"},
        {"jar:file:///d.zip!/a/b/doc.xml", "/img.png", "jar:file:///d.zip!/img.png"},
        {"JAR:jar:file:///d.zip!/e.zip!/a/b", "../../c", "jar:jar:file:///d.zip!/e.zip!/c"},
        {"http://h/x/a", "jar:d.zip!/b", "jar:http://h/x/d.zip!/b"},
        {"http://h/x/a", "JAR:jar:../d.zip!/e.zip!/b", "jar:jar:http://h/d.zip!/e.zip!/b"},
        {"http://h/x/a", "jar:C:\\d.zip!/b", "jar:file:///C:/d.zip!/b"},
        {"http://h/x/a", "jar:", "jar:"},
        {"jar:file:///d.zip!/x/a", "jar:e.zip!/b", "jar:jar:file:///d.zip!/x/e.zip!/b"},
    };
    for (const Row& row : rows) check(row);
}

TEST(ResolveTest, DotSegmentsAtTheEndOfTheBase) {
    const Row rows[] = {
        {"http://h/a/b/.", "c", "http://h/a/b/c"},    {"http://h/a/b/./", "c", "http://h/a/b/c"},
        {"http://h/a/b/..", "c", "http://h/a/c"},     {"http://h/a/b/../", "c", "http://h/a/c"},
        {"http://h/a/b/.././", "c", "http://h/a/c"},  {"http://h/a/b/../..", "c", "http://h/c"},
        {"http://h/a/b/../../..", "c", "http://h/c"}, {"http://h/a/b..", "c", "http://h/a/c"},
    };
    for (const Row& row : rows) check(row);
}

// The examples of RFC 3986. From "g:h" on they differ: dots inside, queries and fragments of
// references are left alone.
TEST(ResolveTest, CommonExamples) {
    const std::pair<const char*, const char*> rows[] = {
        {"gg:h", "gg:h"},
        {"g", "http://a/b/c/g"},
        {"./g", "http://a/b/c/g"},
        {"g/", "http://a/b/c/g/"},
        {"/g", "http://a/g"},
        {"g?y", "http://a/b/c/g?y"},
        {"g#s", "http://a/b/c/g#s"},
        {"g?y#s", "http://a/b/c/g?y#s"},
        {";x", "http://a/b/c/;x"},
        {"g;x", "http://a/b/c/g;x"},
        {".", "http://a/b/c/"},
        {"./", "http://a/b/c/"},
        {"..", "http://a/b/"},
        {"../", "http://a/b/"},
        {"../g", "http://a/b/g"},
        {"../../", "http://a/"},
        {"../../g", "http://a/g"},
        {"../../../g", "http://a/g"},
        {"../../../../g", "http://a/g"},
        {"g.", "http://a/b/c/g."},
        {".g", "http://a/b/c/.g"},
        {"g..", "http://a/b/c/g.."},
        {"..g", "http://a/b/c/..g"},
        {"./../g", "http://a/b/g"},
        {"g?y/../x", "http://a/b/c/g?y/../x"},
        {"g#s/../x", "http://a/b/c/g#s/../x"},
        {"g:h", "file:///g:h"},
        {"//g", "file://g"},
        {"?y", "http://a/b/c/?y"},
        {"#s", "http://a/b/c/#s"},
        {"../..", "http://a/b/.."},
        {"g/../h", "http://a/b/c/g/../h"},
        {"/../g", "http://a/../g"},
    };
    for (const auto& [reference, expected] : rows)
        check({"http://a/b/c/d;p?q", reference, expected});
}

TEST(ResolveTest, CssNotationIsTakenOffFirst) {
    EXPECT_EQ(resolve("http://h/x/a", "url( \"../b c.png\" )", RyUri::CSS_URI_OR_PATH),
              "http://h/b%20c.png");
    EXPECT_EQ(resolve("http://h/x/a", "''", RyUri::CSS_PATH), "");
    EXPECT_EQ(resolve("http://h/x/a", "url(b)"), "http://h/x/url(b)");
}

TEST(ResolveTest, BaseStringsResolveLikeTheirUris) {
    for (const char* const text :
         {"http://h", "http://h/", "http://h/a/b?c/d", "file:///C:/a/b", "file:///a", "a/b/c",
          "jar:file:///d.zip!/a", "jar:file:///d.zip!/a/b"}) {
        const RyUri uri(u(text));
        const RyUri base(uri.getBaseString());
        for (const char* const reference : {"x", "../x", "../../../x", "/x", "./", "?q"})
            EXPECT_TRUE(RyUri(uri, u(reference)) == RyUri(base, u(reference)))
                << reference << " against " << text;
    }
}

TEST(ResolveTest, RelativeUris) {
    const Row rows[] = {
        {"http://h/a/b.xml", "http://h/a/c.xml", "c.xml"},
        {"http://h/a/b.xml", "http://h/a/b.xml", "b.xml"},
        {"http://h/a/b.xml", "http://h/a/d/c.xml?q/r#s", "d/c.xml?q/r#s"},
        {"http://h/a/d/b.xml", "http://h/c.xml", "../../c.xml"},
        {"http://h/a/b.xml", "http://h/a/", "./"},
        {"http://h/a/d/b.xml", "http://h/a/", "../"},
        {"http://h/a/b.xml", "http://h/ab/c.xml", "../ab/c.xml"},
        {"http://h/a/b.xml", "http://h/a/c:d", "./c:d"},
        {"http://h/a/b.xml", "http://h/a//c", ".//c"},
        {"http://h", "http://h/a", "a"},
        {"http://h/a/b", "http://i/a/b", "http://i/a/b"},
        {"http://h/a/b", "https://h/a/b", "https://h/a/b"},
        {"file:///C:/a/b", "file:///D:/a/b", "file:///D:/a/b"},
        {"file:///C:/a/b", "C:\\c d", "../c%20d"},
        {"/a/b", "/c", "../c"},
        {"jar:file:///d.zip!/a/b", "jar:file:///d.zip!/c", "../c"},
        {"jar:file:///d.zip!/a/b", "jar:file:///e.zip!/c", "jar:file:///e.zip!/c"},
        {"a/b/c", "a/d", "../d"},
        {"a/b", "c/d", "c/d"},
        {"http://h/x/../a", "http://h/x/../b", "b"},
        {"http://h/x/y/..", "http://h/x/y/b", "http://h/x/y/b"},
        {"data:,a/b", "http://h/a", "http://h/a"},
        {"", "a/b", "a/b"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(s(RyUri(u(row.base)).getRelativeUri(u(row.reference))), row.expected)
            << row.reference << " from " << row.base;
}

std::string repeat(const std::string& text, std::size_t count) {
    std::string result;
    result.reserve(text.size() * count);
    for (std::size_t i = 0; i < count; ++i) result += text;
    return result;
}

// Anything but linear work, or recursion, on these does not come to an end within a test's
// patience, or its stack.
TEST(ResolveTest, HostileTextsTakeLinearWork) {
    constexpr std::size_t MANY = 1'000'000;
    constexpr std::size_t NESTED = 100'000;
    const std::string deepBase = "http://h/" + repeat("d/", MANY) + "a";
    EXPECT_EQ(resolve("http://h/x/a", repeat("../", MANY) + "b"), "http://h/b");
    EXPECT_EQ(resolve("http://h/x/a", repeat("./", MANY) + "b"), "http://h/x/b");
    EXPECT_EQ(resolve(deepBase, repeat("../", MANY) + "b"), "http://h/b");
    EXPECT_EQ(resolve(deepBase, "/b"), "http://h/b");
    EXPECT_EQ(resolve("http://h/x" + repeat("/..", MANY), "b"), "http://h/b");
    EXPECT_EQ(resolve("http://h/x" + repeat("/.", MANY), "b"), "http://h/x/b");
    EXPECT_EQ(resolve("http://h/a", repeat("jar:", NESTED) + "b"),
              repeat("jar:", NESTED) + "http://h/b");
    EXPECT_EQ(resolve(repeat("jar:", NESTED) + "file:///a" + repeat("!/a", NESTED), "b").size(),
              7 * NESTED + 9);
    EXPECT_EQ(resolve("http://h/a", repeat(" ", MANY) + repeat("b c", MANY)).size(), 9 + 5 * MANY);
    EXPECT_EQ(RyUri(u(repeat("jar:", NESTED))).getStream(), nullptr);
    EXPECT_EQ(RyUri::unescape(u(repeat("%41", MANY))).length(), static_cast<int>(MANY));
    EXPECT_EQ(RyDataUri(u("data:x" + repeat(";page=1", MANY) + ",")).getPageNumber(), 1);
    const RyUri deep(u(deepBase));
    EXPECT_EQ(deep.getRelativeUri(u("http://h/b")).length(), static_cast<int>(3 * MANY + 1));
}

}  // namespace
}  // namespace RynCommon
