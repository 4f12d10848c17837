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
        {"http://h/x/y/a.xml?q=1", "../b.xml", "http://h/x/b.xml"},
        {"http://h/x/y/a.xml?q=../../z", "b.xml", "http://h/x/y/b.xml"},
        {"HTTPS://H/x/a", "/b", "https://H/b"},
        {"http://h", "../b", "http://h/b"},
        {"ftp://h/a/b?c/d", "e", "ftp://h/a/b?c/e"},
        {"http://h/x/a", " a b\\c ", "http://h/x/a%20b/c"},
        {"http://h/x/a", " data:,a b ", "data:,a b"},
        {"http://h/x/a", "C:\\a b.xml", "file:///C:/a%20b.xml"},
        {"http://h/x/a", "//C:/a", "file:///C:/a"},
        {"http://h/x/a", "file:b", "http://h/x/b"},
        {"http://h/x/a", "file:../b", "http://h/b"},
        {"http://h/x/a", "file:/C:/a", "file:///C:/a"},
        {"http://h/x/a", "file://C:/a", "file:///C:/a"},
        {"http://h/x/a", "file:", "http://h/x/"},
        {"http://h/x/a", "file:/", "file:///"},
        {"", "../b", "../b"},
        {"", "file:b", "b"},
        {"./", "../b", "../b"},
        {"a/b.xml", "../../../c", "a/c"},
        {"file:///C:/x/y/a.xml", "/c.xml", "file:///C:/c.xml"},
        {"file:///C:/x/y/a.xml", "../../../../c.xml", "file:///C:/c.xml"},
        {"file://srv/share/a.xml", "/c.xml", "file://srv/c.xml"},
        {"FILE://LocalHost/tmp/a.xml", "b.xml", "file:///tmp/b.xml"},
        // Members of archives.
        {"jar:file:///C:/d.zip!/word/doc.xml", "img.png", "jar:file:///C:/d.zip!/word/img.png"},
        {"jar:file:///d.zip!/doc.xml", "../../img.png", "jar:file:///d.zip!/img.png"},
        {"JAR:jar:file:///d.zip!/e.zip!/a/b", "../../c", "jar:jar:file:///d.zip!/e.zip!/c"},
        {"http://h/x/a", "JAR:jar:../d.zip!/e.zip!/b", "jar:jar:http://h/d.zip!/e.zip!/b"},
        {"http://h/x/a", "jar:C:\\d.zip!/b", "jar:file:///C:/d.zip!/b"},
        {"jar:file:///d.zip!/x/a", "jar:e.zip!/b", "jar:jar:file:///d.zip!/x/e.zip!/b"},
        // Dot segments at the end of the base.
        {"http://h/a/b/.", "c", "http://h/a/b/c"},
        {"http://h/a/b/./", "c", "http://h/a/b/c"},
        {"http://h/a/b/..", "c", "http://h/a/c"},
        {"http://h/a/b/.././", "c", "http://h/a/c"},
        {"http://h/a/b/../..", "c", "http://h/c"},
        {"http://h/a/b/../../..", "c", "http://h/c"},
        {"http://h/a/b..", "c", "http://h/a/c"},
    };
    for (const Row& row : rows) check(row);
}

// The examples of RFC 3986. From "g:h" on they differ: dots inside, queries and fragments of
// references are left alone.
TEST(ResolveTest, CommonExamples) {
    const std::pair<const char*, const char*> rows[] = {
        {"gg:h", "gg:h"},
        {"g", "http://a/b/c/g"},
        {"g?y", "http://a/b/c/g?y"},
        {"g#s", "http://a/b/c/g#s"},
        {"g;x", "http://a/b/c/g;x"},
        {".", "http://a/b/c/"},
        {"..", "http://a/b/"},
        {"../../../../g", "http://a/g"},
        {"g..", "http://a/b/c/g.."},
        {"./../g", "http://a/b/g"},
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

TEST(ResolveTest, RelativeUris) {
    const Row rows[] = {
        {"http://h/a/b.xml", "http://h/a/c.xml", "c.xml"},
        {"http://h/a/b.xml", "http://h/a/d/c.xml?q/r#s", "d/c.xml?q/r#s"},
        {"http://h/a/d/b.xml", "http://h/c.xml", "../../c.xml"},
        {"http://h/a/b.xml", "http://h/a/", "./"},
        {"http://h/a/b.xml", "http://h/ab/c.xml", "../ab/c.xml"},
        {"http://h/a/b.xml", "http://h/a/c:d", "./c:d"},
        {"http://h/a/b.xml", "http://h/a//c", ".//c"},
        {"http://h/a/b", "http://i/a/b", "http://i/a/b"},
        {"file:///C:/a/b", "C:\\c d", "../c%20d"},
        {"jar:file:///d.zip!/a/b", "jar:file:///d.zip!/c", "../c"},
        {"jar:file:///d.zip!/a/b", "jar:file:///e.zip!/c", "jar:file:///e.zip!/c"},
        {"a/b", "c/d", "c/d"},
        {"http://h/x/../a", "http://h/x/../b", "b"},
        {"http://h/x/y/..", "http://h/x/y/b", "http://h/x/y/b"},
        {"", "a/b", "a/b"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(s(RyUri(u(row.base)).getRelativeUri(u(row.reference))), row.expected)
            << row.reference << " from " << row.base;
}

}  // namespace
}  // namespace RynCommon
