// Loading documents that name what they need relative to archives, servers and data: URIs.
#include "tests/resources/Fetching.h"
#include "tests/resources/RawServer.h"
#include "tests/resources/ZipWriter.h"
#include "tests/xml/tree/TreeFixture.h"

namespace {

using namespace treetest;
using RynCommon::Connection;
using RynCommon::makeZip;
using RynCommon::RawServer;
using RynCommon::ScopedVariable;
using RynCommon::ScratchFolder;

const std::string MAIN =
    "<!DOCTYPE a SYSTEM '../dtd/a.dtd' [<!ENTITY part SYSTEM 'parts/p%20q.xml'>]><a>&part;</a>";
const std::string DTD = "<!ENTITY deep SYSTEM '../deep.xml'>";
const std::string PART = "<?xml version='1.0' encoding='ISO-8859-1'?><b>\xE9&deep;</b>";
const std::string DEEP = "<c/>";
const char* const TREE = "a(b(\"\u00E9\",c))";

std::string makeArchive() {
    return makeZip({{.name = "doc/main.xml", .data = MAIN},
                    {.name = "dtd/a.dtd", .data = DTD},
                    {.name = "doc/parts/p q.xml", .data = PART},
                    {.name = "deep.xml", .data = DEEP, .method = 0}});
}

std::string load(const std::string& uri, bool pull) {
    const RyPtr<RyDocument> document = new RyDocument;
    document->setPullMode(pull);
    document->load(units(uri));
    while (document->loadNextNode() != nullptr) {
    }
    return dump(document);
}

void serve(Connection& connection) {
    const std::string request = connection.readRequest();
    const std::string path = request.substr(4, request.find(' ', 4) - 4);
    const struct {
        const char* path;
        std::string body;
    } files[] = {{"/doc/main.xml", MAIN},
                 {"/dtd/a.dtd", DTD},
                 {"/doc/parts/p%20q.xml", PART},
                 {"/deep.xml", DEEP},
                 {"/a.zip", makeArchive()}};
    for (const auto& file : files) {
        if (path == file.path) connection.send("HTTP/1.0 200 OK\r\n\r\n" + file.body);
    }
}

TEST(FetchLoading, RelativeReferencesStayWithTheirDocument) {
    const ScratchFolder folder;
    const std::string archive = folder.write("a.zip", makeArchive());
    const std::string outer =
        folder.write("outer.zip", makeZip({{.name = "in/a.zip", .data = makeArchive()}}));
    RawServer server(serve);
    const ScopedVariable noProxy("http_proxy");
    const ScopedVariable noProxyForAll("all_proxy");
    const std::string uris[] = {
        "jar:" + archive + "!/doc/main.xml",
        "jar:" + folder.path("a.zip") + "!/doc/main.xml",
        "jar:jar:" + outer + "!/in/a.zip!/doc/main.xml",
        server.url("/doc/main.xml"),
        "jar:" + server.url("/a.zip") + "!/doc/main.xml",
    };
    for (const std::string& uri : uris) {
        for (const bool pull : {false, true}) EXPECT_EQ(load(uri, pull), TREE) << uri;
    }
}

TEST(FetchLoading, DocumentsStandInTheirOwnUri) {
    const std::pair<const char*, const char*> rows[] = {
        {"data:,<a>x</a>", "a(\"x\")"},
        {"data:text/xml,%3Ca%20b=%22%C3%A9%22/%3E", "a[b=\u00E9]"},
        {"data:text/xml;base64,PGE+PGIvPjwvYT4=", "a(b)"},
        {"data:,<!DOCTYPE a [<!ENTITY e SYSTEM 'data:,<b/>'>]><a>&e;</a>", "a(b)"},
    };
    for (const auto& [uri, tree] : rows) {
        for (const bool pull : {false, true}) EXPECT_EQ(load(uri, pull), tree) << uri;
    }
}

}  // namespace
