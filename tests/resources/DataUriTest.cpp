// Opening data: URIs.
#include <gtest/gtest.h>

#include <RynCommon/RyUtil.h>

#include <sstream>

#include "tests/resources/Fetching.h"

namespace RynCommon {
namespace {

std::string toBase64(const std::string& bytes) {
    std::istringstream in(bytes);
    return s(RyUtil::encodeBase64(in, static_cast<int>(bytes.size())));
}

TEST(DataUriTest, DecodesWhatStandsBehindTheComma) {
    const struct {
        const char *uri, *content, *contentType;
    } rows[] = {
        {"data:,", "", ""},
        {"data:,a%20b", "a b", ""},
        {"data:,a b", "a b", ""},
        {"DATA:text/xml,<a/>", "<a/>", "text/xml"},
        {"data:text/xml;charset=utf-8,%3Ca/%3e", "<a/>", "text/xml"},
        {"data:;page=2,a,b", "a,b", ""},
        {"data:,\xC3\xA9%C3%A9%FF", "\xC3\xA9\xC3\xA9\xFF", ""},
        {"data:,50%,%4,%zz,%%41", "50%,%4,%zz,%A", ""},
        {"data:,a?b#c\\d", "a?b#c\\d", ""},
        {"data:a/b;base64,TWFu", "Man", "a/b"},
        {"data:;BASE64,TWE=", "Ma", ""},
        {"data:;base64,TQ==", "M", ""},
        {"data:;base64,TQ", "M", ""},
        {"data:;base64,T W\r\nF\tu", "Man", ""},
        {"data:;base64,%54%57%46u", "Man", ""},
        {"data:;base64,TWE%3D", "Ma", ""},
        {"data:;base64,TW%0D%0AFu%20", "Man", ""},
        {"data:;base64,%2B/%2f+", "\xFB\xFF\xFE", ""},
        {"data:;base64;x=y,TWFu", "Man", ""},
        {"data:;base64=no,TWFu", "TWFu", ""},
        {"data:;base64,", "", ""},
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

TEST(DataUriTest, LongDataComesWhole) {
    const std::string noise = makeNoise(3'000'000);
    EXPECT_TRUE(fetch("data:a/b;base64," + toBase64(noise)).content == noise);
    EXPECT_TRUE(fetch("data:a/b;base64,%54WFu" + toBase64(noise)).content == "Man" + noise);
    std::string escaped;
    for (int i = 0; i < 1'000'000; ++i) escaped += "%25%%41";
    const std::string content = fetch("data:," + escaped).content;
    EXPECT_EQ(content.size(), 3'000'000u);
    EXPECT_TRUE(content.ends_with("%%A"));
    EXPECT_EQ(fetch("data:" + std::string(3'000'000, ';') + ",a").content, "a");
}

TEST(DataUriTest, SeeksInItsData) {
    const std::unique_ptr<std::istream> in(RyUri(u("data:,0123456789")).getStream());
    ASSERT_NE(in, nullptr);
    in->seekg(-3, std::ios_base::end);
    EXPECT_EQ(drain(*in), "789");
    in->clear();
    in->seekg(0);
    EXPECT_EQ(in->get(), '0');
}

}  // namespace
}  // namespace RynCommon
