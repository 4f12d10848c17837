// Opening data: URIs.
#include <gtest/gtest.h>

#include "tests/resources/Fetching.h"

namespace RynCommon {
namespace {

TEST(DataUriTest, DecodesWhatStandsBehindTheComma) {
    const struct {
        const char *uri, *content, *contentType;
    } rows[] = {
        {"data:,a%20b", "a b", ""},
        {"data:,a b", "a b", ""},
        {"data:,\xC3\xA9%C3%A9%FF", "\xC3\xA9\xC3\xA9\xFF", ""},
        {"data:,50%,%4,%zz,%%41", "50%,%4,%zz,%A", ""},
        {"data:,a?b#c\\d", "a?b#c\\d", ""},
        {"DATA:a/b;base64,TWFu", "Man", "a/b"},
        {"data:;base64,TQ==", "M", ""},
        {"data:;base64,T W\r\nF\tu", "Man", ""},
        {"data:;base64,%54%57%46u", "Man", ""},
        {"data:;base64,%2B/%2f+", "\xFB\xFF\xFE", ""},
        {"data:;base64;x=y,TWFu", "Man", ""},
        {"data:;base64=no,TWFu", "TWFu", ""},
    };
    for (const auto& row : rows) {
        const Fetched fetched = fetch(row.uri);
        EXPECT_EQ(fetched.content, row.content) << row.uri;
        EXPECT_EQ(fetched.contentType, row.contentType) << row.uri;
        EXPECT_EQ(fetched.error, "") << row.uri;
    }
    EXPECT_EQ(fetch("data:,a%00b").content, std::string("a\0b", 3));
}

TEST(DataUriTest, NeedsItsComma) {
    for (const char* const uri : {"data:", "data:text/xml", "data:;base64;TWFu"}) {
        const Fetched fetched = fetch(uri);
        EXPECT_EQ(fetched.content, "(none)") << uri;
        EXPECT_EQ(fetched.error, "Malformed data URI: no comma") << uri;
    }
}

}  // namespace
}  // namespace RynCommon
