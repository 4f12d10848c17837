// Opening members of zip archives by jar: URIs.
#include <gtest/gtest.h>

#include <RynCommon/RyUri.h>
#include <RynCommon/RyZipFile.h>

#include "tests/resources/Fetching.h"
#include "tests/resources/RawServer.h"
#include "tests/resources/ZipWriter.h"
#include "tests/streams/DeflateData.h"

namespace RynCommon {
namespace {

const std::string NOISE = makeRandom(200'000);

TEST(JarTest, OpensMembersOfFiles) {
    const ScratchFolder folder;
    const std::string inner = makeZip({{.name = "c", .data = "innermost"}});
    const std::string archive =
        folder.write("a b.zip", makeZip({
                                    {.name = "stored", .data = "kept", .method = 0},
                                    {.name = "dir/deflated", .data = NOISE},
                                    {.name = "inner.zip", .data = inner},
                                    {.name = "a b", .data = "blank"},
                                    {.name = "a%20b", .data = "escaped"},
                                    {.name = "\xC3\xA9", .data = "accent", .utf8 = true},
                                    {.name = "x!y", .data = "mark"},
                                    {.name = "c#d?e", .data = "signs"},
                                }));
    const std::pair<std::string, std::string> rows[] = {
        {"jar:" + archive + "!/stored", "kept"},
        {"JAR:" + archive + "!/stored", "kept"},
        {"jar:" + archive + "!/dir/deflated", NOISE},
        {"jar:" + archive + "!/a b", "escaped"},
        {"jar:" + archive + "!/%61%20b", "blank"},
        {"jar:" + archive + "!/%C3%A9", "accent"},
        {"jar:" + archive + "!/x!y", "mark"},
        {"jar:" + archive + "!/c#d?e", "signs"},
        {"jar:jar:" + archive + "!/inner.zip!/c", "innermost"},
    };
    for (const auto& [uri, content] : rows) EXPECT_EQ(fetch(uri), Fetched{content}) << uri;
    const ZipMember member{.name = "m", .data = NOISE};
    for (const std::string& shape :
         {makeZip({member}, {.directory = false}), makeZip({member}, {.trailer = "more"})}) {
        EXPECT_EQ(fetch("jar:" + folder.write("shape.zip", shape) + "!/m"), Fetched{NOISE});
    }
    const RyUri base(u("jar:" + archive + "!/dir/x"));
    EXPECT_EQ(fetch(RyUri(base, u("../stored"))).content, "kept");
}

TEST(JarTest, SaysWhyNothingOpens) {
    const ScratchFolder folder;
    const std::string archive = folder.write(
        "a.zip", makeZip({{.name = "m", .data = "x"}, {.name = "text", .data = "no zip"}}));
    const std::string text = folder.write("a.txt", "PK, but no archive");
    const std::pair<std::string, std::string> rows[] = {
        {"jar:" + archive, "Malformed jar URI: no \"!/\": jar:" + archive},
        {"jar:" + archive + "!/no", "No such member of archive " + archive + ": no"},
        {"jar:" + text + "!/m", "Cannot open archive: " + text + ": not a zip file"},
        {"jar:/no/such!/m",
         "Cannot open archive: file:///no/such: Cannot open file: /no/such: No such file or "
         "directory"},
        {"jar:gopher://h/a!/m",
         "Cannot open archive: gopher://h/a: Cannot open URI of scheme: gopher"},
        {"jar:jar:" + archive + "!/text!/m",
         "Cannot open archive: jar:" + archive + "!/text: not a zip file"},
        {"jar:" + archive + "!/m!/m", "Cannot open archive: " + archive +
                                          "!/m: Cannot open file: " + folder.path("a.zip!/m") +
                                          ": No such file or directory"},
    };
    for (const auto& [uri, error] : rows) EXPECT_EQ(fetch(uri), (Fetched{.error = error})) << uri;
}

/// The innermost of `levels` archives in one another, asked for `asked` levels deep.
std::string fetchNested(int levels, int asked) {
    const ScratchFolder folder;
    std::string archive = "innermost";
    for (int i = 0; i < levels; ++i) archive = makeZip({{.name = "m", .data = archive}});
    std::string uri = folder.write("a.zip", archive);
    std::string schemes;
    for (int i = 0; i < asked; ++i) {
        schemes += "jar:";
        uri += "!/m";
    }
    const Fetched fetched = fetch(schemes + uri);
    return fetched.error.empty() ? fetched.content : fetched.error;
}

TEST(JarTest, NestsSixteenDeep) {
    EXPECT_EQ(fetchNested(16, 16), "innermost");
    for (const int asked : {17, 1'000'000})
        EXPECT_EQ(fetchNested(17, asked), "Cannot open archive: nested too deep") << asked;
}

TEST(JarTest, ArchivesFromEverywhereElseAreReadIntoMemory) {
    const std::string inner = makeZip({{.name = "c", .data = NOISE}});
    const std::string archive =
        makeZip({{.name = "m", .data = NOISE}, {.name = "inner.zip", .data = inner}});
    const ScopedVariable noProxy("http_proxy");
    const ScopedVariable noProxyForAll("all_proxy");
    const RawServer server([&](Connection& connection) {
        const bool found = connection.readRequest().starts_with("GET /a.zip ");
        connection.send(found ? "HTTP/1.0 200 OK\r\n\r\n" + archive
                              : "HTTP/1.0 404 Missing\r\n\r\n");
    });
    const std::string remote = server.url("/a.zip");
    EXPECT_EQ(fetch("jar:" + remote + "!/m"), Fetched{NOISE});
    EXPECT_EQ(fetch("jar:jar:" + remote + "!/inner.zip!/c"), Fetched{NOISE});
    EXPECT_EQ(fetch("jar:" + remote + "!/no").content, "(none)");
    EXPECT_EQ(fetch("jar:" + server.url("/b.zip") + "!/m").error,
              "Cannot open archive: " + server.url("/b.zip") + ": HTTP status is 404");
    // "x" in the one member of a stored archive.
    EXPECT_EQ(fetch("jar:data:;base64,UEsDBAoAAAAAAAAAAACDFtyMAQAAAAEAAAABAAAAbXg=!/m").content,
              "x");
}

TEST(JarTest, TheResolverIsAskedForInnerArchives) {
    const std::string inner = makeZip({{.name = "c", .data = "innermost"}});
    FixedResources resolver;
    resolver.resources["file:///a.zip"] = makeZip({{.name = "b", .data = inner}});
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
    const auto refused = [](const char* why) {
        return Fetched{.error = std::string("Cannot open archive: ") + why};
    };
    const std::tuple<const char*, RyZipLimits, Fetched> rows[] = {
        {"copies reached", {.copiedBytes = outer.size()}, {"innermost"}},
        {"copies exceeded", {.copiedBytes = outer.size() - 1}, refused("file:///a.zip: too large")},
        {"nesting reached", {.nestedArchives = 2}, {"innermost"}},
        {"nesting exceeded", {.nestedArchives = 1}, refused("nested too deep")},
    };
    for (const auto& [what, limits, expected] : rows) {
        RyZipFile::setDefaultLimits(limits);
        EXPECT_EQ(fetch("jar:jar:/a.zip!/b!/c"), expected) << what;
    }
    RyZipFile::setDefaultLimits({.members = 1});
    EXPECT_EQ(fetch("jar:/a.zip!/d").content, "(none)");
}

}  // namespace
}  // namespace RynCommon
