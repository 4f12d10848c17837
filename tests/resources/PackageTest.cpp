// Packages: content types, relationships, the main part, the application's version.
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <tuple>

#include "tests/Text.h"
#include "tests/resources/PackageWriter.h"

namespace RynCommon {
namespace {

std::string typeOf(PackageInMemory& package, const std::string& name) {
    return s(package->getContentType(package.part(name)));
}

TEST(PackageTest, ContentTypes) {
    PackageInMemory package({
        {"word/document.xml", ""},
        {"word/LOUD.XML", ""},
        {"a.dir/plain", ""},
        {"ends.", ""},
        {"caf\xC3\xA9.txt", ""},
        {"/slash.xml", ""},
        {"empty.xml", ""},
        {"nested.png", ""},
        {"strange.png", ""},
        {CONTENT_TYPES,
         typesXml("<Override PartName='/word/document.xml' ContentType='main'/>"
                  "<Default Extension='xml' ContentType='text'/>"
                  "<Default Extension='xml' ContentType='second'/>"
                  "<Default Extension='dir/plain' ContentType='of a name with a slash'/>"
                  "<Default Extension='' ContentType='dot'/>"
                  "<Override PartName='/word/document.xml' ContentType='second'/>"
                  "<Override PartName='/caf%C3%A9.txt' ContentType='escaped'/>"
                  "<Override PartName='//slash.xml' ContentType='one slash is taken'/>"
                  "<Override PartName='/empty.xml' ContentType=''/>"
                  "<x><Override PartName='/nested.png' ContentType='x'/></x>"
                  "<Override xmlns='urn:x' PartName='/strange.png' ContentType='x'/>")},
    });
    const std::pair<const char*, const char*> rows[] = {
        {"word/document.xml", "main"},
        {"word/LOUD.XML", ""},
        {"a.dir/plain", "of a name with a slash"},
        {"ends.", "dot"},
        {"caf\xC3\xA9.txt", "escaped"},
        {"/slash.xml", "one slash is taken"},
        {"empty.xml", "text"},
        {"nested.png", ""},
        {"strange.png", ""},
        {CONTENT_TYPES, "text"},
    };
    for (const auto& [name, type] : rows) EXPECT_EQ(typeOf(package, name), type) << name;
}

TEST(PackageTest, ContentTypesAreReadFromTheRightRootOnly) {
    std::string wide;
    for (const char c : typesXml("<Default Extension='a' ContentType='yes'/>"))
        wide += std::string{c, '\0'};
    const std::tuple<const char*, std::string, const char*> rows[] = {
        {"prefixed",
         "<t:Types xmlns:t='http://schemas.openxmlformats.org/package/2006/content-types'>"
         "<t:Default Extension='a' ContentType='yes'/></t:Types>",
         "yes"},
        {"wrong namespace",
         "<Types xmlns='urn:x'><Default Extension='a' ContentType='no'/></Types>", ""},
        {"UTF-16", "\xFF\xFE" + wide, "yes"},
        {"damaged behind", typesXml("<Default Extension='a' ContentType='yes'/><"), "yes"},
        {"damaged before", typesXml("<&><Default Extension='a' ContentType='no'/>"), ""},
    };
    for (const auto& [what, xml, type] : rows) {
        PackageInMemory package({{"f.a", ""}, {CONTENT_TYPES, xml}});
        EXPECT_EQ(typeOf(package, "f.a"), type) << what;
    }
}

TEST(PackageTest, RelationshipsPartOfEachSource) {
    const std::pair<std::string, std::string> rows[] = {
        {"", "_rels/.rels"},
        {"word/document.xml", "word/_rels/document.xml.rels"},
        {"/top", "/_rels/top.rels"},
        {"dir/", "dir/_rels/.rels"},
    };
    for (const auto& [source, rels] : rows) {
        Parts parts{{rels, relsXml(rel("r", "t", "urn:here"))}};
        for (std::size_t i = 1; i < std::size(rows); ++i) parts.push_back({rows[i].first, ""});
        PackageInMemory package(parts);
        for (const auto& [name, other] : rows)
            EXPECT_EQ(s(package->getRelationshipTargetFromId(u("r"), package.part(name))),
                      rels == other ? "urn:here" : "")
                << rels << " for " << name;
    }
}

TEST(PackageTest, TargetsOfPartsAreMemberNames) {
    const std::tuple<std::string, std::string, std::string, std::string> rows[] = {
        {"word/document.xml", "media/image1.png", "", "word/media/image1.png"},
        {"word/document.xml", "media/image1.png", "External", "media/image1.png"},
        {"word/document.xml", "media/image1.png", "internal", "media/image1.png"},
        {"word/document.xml", "../customXml/item1.xml", "", "customXml/item1.xml"},
        {"word/document.xml", "../../../up.xml", "", "up.xml"},
        {"word/document.xml", "\\word\\x.xml", "", "word/x.xml"},
        {"word/document.xml", "http://h/a b", "External", "http://h/a b"},
        {"top.xml", "../x", "", "x"},
        {"q?/b.xml", "x", "", "q?/x"},
        // Escapes are taken out where the member is named without them.
        {"word/document.xml", "a%20b.png", "", "word/a b.png"},
        {"word/document.xml", "c%20d.png", "", "word/c%20d.png"},
        {"word/document.xml", "caf%C3%A9", "", "word/caf\xC3\xA9"},
        {"word/document.xml", "%E9t%E9", "", "word/\xC3\xA9t\xC3\xA9"},
        // Targets of the package stay as they are written.
        {"", "/word/document.xml", "", "/word/document.xml"},
        {"", "../x y%20z", "", "../x y%20z"},
    };
    const UnicodeString image =
        u"http://schemas.openxmlformats.org/officeDocument/2006/relationships/image";
    for (const auto& [source, target, mode, expected] : rows) {
        const std::size_t slash = source.rfind('/') + 1;
        PackageInMemory package(
            {{source.empty() ? "unused" : source, ""},
             {"word/a b.png", ""},
             {"word/caf\xC3\xA9", ""},
             {"word/\xC3\xA9t\xC3\xA9", ""},
             {source.substr(0, slash) + "_rels/" + source.substr(slash) + ".rels",
              relsXml(rel("r", "image", target, mode))}});
        RyZipFileEntry* const part = package.part(source);
        const std::string what = source + " to " + target + " " + mode;
        EXPECT_EQ(s(package->getRelationshipTargetFromId(u("r"), part)), expected) << what;
        EXPECT_EQ(s(package->getRelationshipTargetFromType(image, part)), expected) << what;
        EXPECT_EQ(s(package->getRelationshipTargetMode(u("r"), part)),
                  mode.empty() ? "Internal" : mode)
            << what;
    }
}

TEST(PackageTest, TheFirstOfEqualRelationshipsWins) {
    PackageInMemory package(
        {{"p", ""},
         {"_rels/p.rels", relsXml(rel("1", "urn:t", "a", "External") + rel("1", "urn:u", "b") +
                                  rel("2", "urn:t", "c"))}});
    RyZipFileEntry* const part = package.part("p");
    EXPECT_TRUE(part->getRelationshipsIdMap().empty()) << "read before it is asked for";
    EXPECT_EQ(s(package->getRelationshipTargetFromId(u("1"), part)), "a");
    EXPECT_EQ(s(package->getRelationshipTargetMode(u("1"), part)), "External");
    EXPECT_EQ(s(package->getRelationshipTargetFromType(u("urn:t"), part)), "a");
    EXPECT_EQ(s(package->getRelationshipTargetFromType(u("urn:u"), part)), "b");
    EXPECT_EQ(s(package->getRelationshipTargetFromId(u("3"), part)), "");
    EXPECT_EQ(s(package->getRelationshipTargetMode(u("3"), part)), "");
    EXPECT_EQ(part->getRelationshipsIdMap().size(), 2u);
    EXPECT_TRUE(package->getRelationshipsIdMap().empty());
}

TEST(PackageTest, ApplicationVersion) {
    const std::tuple<const char*, const char*, const char*> rows[] = {
        {"as written",
         "<Properties xmlns='http://schemas.openxmlformats.org/officeDocument/2006/"
         "extended-properties'><Application>A</Application><AppVersion>16.0300</AppVersion>"
         "</Properties>",
         "16.0300"},
        {"any namespace", "<p:x xmlns:p='urn:p'><p:AppVersion> 1 </p:AppVersion></p:x>", " 1 "},
        {"references, CDATA, children",
         "<a><AppVersion>1&lt;&#x41;<![CDATA[&]]><!-- c --><b>2</b>3</AppVersion></a>", "1<A&23"},
        {"broken in it", "<a><AppVersion>1<&</a>", ""},
        {"no part", nullptr, ""},
    };
    for (const auto& [what, xml, version] : rows) {
        Parts parts = {{"unused", ""}};
        if (xml != nullptr) parts.push_back({"docProps/app.xml", xml});
        EXPECT_EQ(s(PackageInMemory(parts)->getAppVersion()), version) << what;
    }
}

TEST(PackageTest, OpeningAgainForgetsThePackage) {
    PackageInMemory package({{"f.a", ""},
                             {CONTENT_TYPES, typesXml("<Default Extension='a' ContentType='t'/>")},
                             {PACKAGE_RELS, relsXml(rel("1", "urn:t", "a"))}});
    EXPECT_EQ(typeOf(package, "f.a"), "t");
    EXPECT_EQ(s(package->getRelationshipTargetFromId(u("1"))), "a");
    RyZipFile copy = *package;
    package->open(new std::istringstream(makePackage({{"f.a", ""}})), true);
    EXPECT_EQ(typeOf(package, "f.a"), "");
    EXPECT_EQ(s(package->getRelationshipTargetFromId(u("1"))), "");
    EXPECT_EQ(s(copy.getContentType(copy.getFileEntry(0u))), "t");
    EXPECT_EQ(s(copy.getRelationshipTargetFromId(u("1"))), "a");
}

}  // namespace
}  // namespace RynCommon
