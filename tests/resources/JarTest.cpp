// Opening members of zip archives by jar: URIs.
#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <sstream>

#include <RynCommon/RyMemStream.h>
#include <RynCommon/RyUri.h>
#include <RynCommon/RyZipFile.h>

#include "resources/uri/JarUri.h"
#include "tests/resources/Fetching.h"
#include "tests/resources/TestServer.h"
#include "tests/resources/ZipWriter.h"

namespace RynCommon {
namespace {

/// Gives fixed resources by name and writes down what was asked for.
class FixedResources : public RyUriReferenceResolver {
public:
    std::istream* getStream(const UnicodeString& uri, UnicodeString*) override {
        asked += s(uri) + "\n";
        const auto found = resources.find(s(uri));
        return found == resources.end() ? nullptr : new std::istringstream(found->second);
    }

    std::map<std::string, std::string> resources;
    std::string asked;
};

std::string makeNested(int levels) {
    std::string archive = "innermost";
    for (int i = 0; i < levels; ++i) archive = makeZip({{.name = "m", .data = archive}});
    return archive;
}

std::string nestedUri(const std::string& archive, int levels) {
    std::string uri;
    for (int i = 0; i < levels; ++i) uri += "jar:";
    uri += archive;
    for (int i = 0; i < levels; ++i) uri += "!/m";
    return uri;
}

const std::string NOISE = makeNoise(200'000);

TEST(JarTest, OpensMembersOfFiles) {
    const ScratchFolder folder;
    const std::string inner = makeZip({{.name = "c", .data = "innermost"}});
    const std::string archive =
        folder.write("a b.zip", makeZip({{.name = "stored", .data = "kept", .method = 0},
                                         {.name = "dir/deflated", .data = NOISE},
                                         {.name = "inner.zip", .data = inner},
                                         {.name = "a b", .data = "blank"},
                                         {.name = "a%20b", .data = "escaped"},
                                         {.name = "\xC3\xA9", .data = "accent", .utf8 = true},
                                         {.name = "x!y", .data = "mark"},
                                         {.name = "c#d?e", .data = "signs"},
                                         {.name = "empty", .data = ""}}));
    const std::pair<std::string, std::string> rows[] = {
        {"jar:" + archive + "!/stored", "kept"},
        {"JAR:" + archive + "!/stored", "kept"},
        {"jar:" + folder.path("a b.zip") + "!/stored", "kept"},
        {"jar:" + archive + "!/dir/deflated", NOISE},
        {"jar:" + archive + "!/d%69r/deflated", NOISE},
        {"jar:" + archive + "!/a b", "escaped"},
        {"jar:" + archive + "!/%61%20b", "blank"},
        {"jar:" + archive + "!/\xC3\xA9", "accent"},
        {"jar:" + archive + "!/%C3%A9", "accent"},
        {"jar:" + archive + "!/x!y", "mark"},
        {"jar:" + archive + "!/c#d?e", "signs"},
        {"jar:" + archive + "!/empty", ""},
        {"jar:jar:" + archive + "!/inner.zip!/c", "innermost"},
    };
    for (const auto& [uri, content] : rows) {
        const Fetched fetched = fetch(uri);
        EXPECT_TRUE(fetched.content == content) << uri << " " << fetched.error;
        EXPECT_EQ(fetched.error, "") << uri;
        EXPECT_EQ(fetched.contentType, "") << uri;
    }
    const RyUri base(u("jar:" + archive + "!/dir/x"));
    EXPECT_EQ(fetch(RyUri(base, u("../stored"))).content, "kept");
}

TEST(JarTest, OpensArchivesOfEveryShape) {
    const ScratchFolder folder;
    const ZipMember member{.name = "m", .data = NOISE};
    ZipMember piped = member;
    piped.descriptor = true;
    const std::string whole = makeZip({member, {.name = "n", .data = NOISE}});
    const std::pair<const char*, std::string> rows[] = {
        {"written to a pipe", makeZip({piped})},
        {"without directory", makeZip({member}, {.directory = false})},
        {"cut off", whole.substr(0, whole.size() - 1000)},
        {"bytes behind", makeZip({member}, {.trailer = "more"})},
    };
    for (const auto& [what, archive] : rows) {
        const std::string uri = folder.write("a.zip", archive);
        EXPECT_TRUE(fetch("jar:" + uri + "!/m").content == NOISE) << what;
    }
}

TEST(JarTest, SaysWhyNothingOpens) {
    const ScratchFolder folder;
    const std::string archive = folder.write(
        "a.zip", makeZip({{.name = "m", .data = "x"}, {.name = "text", .data = "no zip"}}));
    const std::string text = folder.write("a.txt", "PK, but no archive");
    const std::pair<std::string, std::string> rows[] = {
        {"jar:" + archive, "Malformed jar URI: no \"!/\": jar:" + archive},
        {"jar:", "Malformed jar URI: no \"!/\": jar:"},
        {"jar:" + archive + "!/no", "No such member of archive " + archive + ": no"},
        {"jar:" + archive + "!/", "No such member of archive " + archive + ": "},
        {"jar:" + text + "!/m", "Cannot open archive: " + text + ": not a zip file"},
        {"jar:/no/such!/m",
         "Cannot open archive: file:///no/such: Cannot open file: /no/such: No such file or "
         "directory"},
        {"jar:gopher://h/a!/m",
         "Cannot open archive: gopher://h/a: Cannot open URI of scheme: gopher"},
        {"jar:jar:" + archive + "!/no!/m", "No such member of archive " + archive + ": no"},
        {"jar:jar:" + archive + "!/text!/m",
         "Cannot open archive: jar:" + archive + "!/text: not a zip file"},
        {"jar:" + archive + "!/m!/m", "Cannot open archive: " + archive +
                                          "!/m: Cannot open file: " + folder.path("a.zip!/m") +
                                          ": No such file or directory"},
        {"jar:data:,x!/m", "Cannot open archive: data:,x: not a zip file"},
    };
    for (const auto& [uri, error] : rows) {
        const Fetched fetched = fetch(uri);
        EXPECT_EQ(fetched.content, "(none)") << uri;
        EXPECT_EQ(fetched.error, error) << uri;
    }
}

TEST(JarTest, NestsSixteenDeep) {
    const ScratchFolder folder;
    const std::string sixteen = folder.write("16.zip", makeNested(16));
    const std::string seventeen = folder.write("17.zip", makeNested(17));
    EXPECT_EQ(fetch(nestedUri(sixteen, 16)).content, "innermost");
    const std::string refused = "Cannot open archive: nested too deep";
    EXPECT_EQ(fetch(nestedUri(seventeen, 17)).error, refused);
    for (const int levels : {10'000, 1'000'000})
        EXPECT_EQ(fetch(nestedUri(seventeen, levels)).error, refused);
    std::string marks = "jar:/no/such";
    for (int i = 0; i < 1'000'000; ++i) marks += "!/";
    EXPECT_EQ(fetch(marks).content, "(none)");
}

TEST(JarTest, ArchivesFromEverywhereElseAreReadIntoMemory) {
    const std::string inner = makeZip({{.name = "c", .data = NOISE}});
    const std::string archive =
        makeZip({{.name = "m", .data = NOISE}, {.name = "inner.zip", .data = inner}});
    const ScopedVariable noProxy("http_proxy");
    const ScopedVariable noProxyForAll("all_proxy");
    httplib::Server routes;
    routes.Get("/a.zip", [&](const httplib::Request&, httplib::Response& response) {
        response.set_content(archive, "application/zip");
    });
    const TestServer server(routes);
    const std::string remote = "http://" + server.at("/a.zip");
    EXPECT_TRUE(fetch("jar:" + remote + "!/m").content == NOISE);
    EXPECT_TRUE(fetch("jar:jar:" + remote + "!/inner.zip!/c").content == NOISE);
    EXPECT_EQ(fetch("jar:" + remote + "!/no").content, "(none)");
    EXPECT_EQ(fetch("jar:http://" + server.at("/b.zip") + "!/m").error,
              "Cannot open archive: http://" + server.at("/b.zip") + ": HTTP status is 404");
    // "x" in the one member of a stored archive.
    EXPECT_EQ(fetch("jar:data:;base64,UEsDBAoAAAAAAAAAAACDFtyMAQAAAAEAAAABAAAAbXg=!/m").content,
              "x");
}

TEST(JarTest, TheResolverIsAskedForInnerArchives) {
    const std::string inner = makeZip({{.name = "c", .data = "innermost"}});
    FixedResources resolver;
    resolver.resources["file:///a.zip"] = makeZip({{.name = "b", .data = inner}});
    const ScopedResolver installed(resolver);
    EXPECT_EQ(fetch("jar:jar:/a.zip!/b!/c").content, "innermost");
    EXPECT_EQ(resolver.asked, "jar:jar:/a.zip!/b!/c\njar:/a.zip!/b\nfile:///a.zip\n");
}

TEST(JarTest, LimitsAreTheDefaultsOfArchives) {
    struct Restore {
        ~Restore() { RyZipFile::setDefaultLimits({}); }
    };
    const Restore restore;
    const std::string inner = makeZip({{.name = "c", .data = "innermost"}});
    const std::string outer = makeZip({{.name = "b", .data = inner}, {.name = "d", .data = "x"}});
    FixedResources resolver;
    resolver.resources["file:///a.zip"] = outer;
    const ScopedResolver installed(resolver);
    const std::string uri = "jar:jar:/a.zip!/b!/c";
    const struct {
        const char* what;
        RyZipLimits limits;
        std::string content, error;
    } rows[] = {
        {"copies reached", {.copiedBytes = outer.size()}, "innermost", ""},
        {"copies exceeded",
         {.copiedBytes = outer.size() - 1},
         "(none)",
         "Cannot open archive: file:///a.zip: too large"},
        {"no limit", {.copiedBytes = RyZipLimits::UNLIMITED}, "innermost", ""},
        {"nesting reached", {.nestedArchives = 2}, "innermost", ""},
        {"nesting exceeded",
         {.nestedArchives = 1},
         "(none)",
         "Cannot open archive: nested too deep"},
    };
    for (const auto& row : rows) {
        RyZipFile::setDefaultLimits(row.limits);
        EXPECT_EQ(RyZipFile().getLimits().copiedBytes, row.limits.copiedBytes) << row.what;
        const Fetched fetched = fetch(uri);
        EXPECT_EQ(fetched.content, row.content) << row.what;
        EXPECT_EQ(fetched.error, row.error) << row.what;
    }
    RyZipFile::setDefaultLimits({.members = 1});
    EXPECT_EQ(fetch("jar:/a.zip!/d").content, "(none)");
}

TEST(JarTest, CopiesAreLimited) {
    for (const std::size_t size : {0, 1, 99, 100, 101, 200'000}) {
        std::istringstream source(NOISE.substr(0, size));
        const std::unique_ptr<RyMemStream> copy = uri::copyArchive(source, 100);
        ASSERT_EQ(copy != nullptr, size <= 100) << size;
        if (copy) {
            EXPECT_EQ(drain(*copy), NOISE.substr(0, size));
        }
    }
}

}  // namespace
}  // namespace RynCommon
