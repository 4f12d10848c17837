// Packages that mean harm: entities, DTDs, masses, damage.
#include <RynCommon/RyUri.h>

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "tests/Text.h"
#include "tests/resources/PackageWriter.h"

namespace RynCommon {
namespace {

/// Counts what the parts make the library ask for.
class Watch : public RyUriReferenceResolver {
public:
    Watch() : previous_(RyUri::setUriReferenceResolver(this)) {}
    ~Watch() override { RyUri::setUriReferenceResolver(previous_); }
    Watch(const Watch&) = delete;
    Watch& operator=(const Watch&) = delete;

    std::istream* getStream(const UnicodeString& uri, UnicodeString*) override {
        asked += s(uri) + " ";
        return new std::istringstream("<!ENTITY e 'from outside'>");
    }

    std::string asked;

private:
    RyUriReferenceResolver* previous_;
};

TEST(PackageHostileTest, NothingOutsideOfThePackageIsRead) {
    const std::string child = rel("1", "urn:t", "urn:a");
    const struct {
        const char* what;
        std::string xml;
        const char* target;
    } rows[] = {
        {"external DTD", "<!DOCTYPE x SYSTEM 'http://h/x.dtd'>" + relsXml(child), "urn:a"},
        {"public DTD", "<!DOCTYPE x PUBLIC 'p' 'file:///x.dtd'>" + relsXml(child), "urn:a"},
        {"entity of an external DTD",
         "<!DOCTYPE x SYSTEM 'http://h/x.dtd'>" + relsXml(rel("1", "urn:t", "urn:&e;")), ""},
        {"external parameter entity",
         "<!DOCTYPE x [<!ENTITY % p SYSTEM 'http://h/p'>%p;]>" + relsXml(child), ""},
        {"external entity, not used",
         "<!DOCTYPE x [<!ENTITY e SYSTEM 'file:///etc/passwd'>]>" + relsXml(child), "urn:a"},
        {"external entity in content",
         "<!DOCTYPE x [<!ENTITY e SYSTEM 'file:///etc/passwd'>]>" + relsXml("&e;" + child),
         "urn:a"},
        {"external entity in a value",
         "<!DOCTYPE x [<!ENTITY e SYSTEM 'file:///etc/passwd'>]>" +
             relsXml(rel("1", "urn:t", "urn:&e;")),
         ""},
        {"external entity in an entity in a value",
         "<!DOCTYPE x [<!ENTITY e SYSTEM 'file:///x'><!ENTITY f '&e;'>]>" +
             relsXml(rel("1", "urn:t", "urn:&f;")),
         ""},
        {"internal entity in a value",
         "<!DOCTYPE x [<!ENTITY e 'a'>]>" + relsXml(rel("1", "urn:t", "urn:&e;")), "urn:a"},
        {"DTD behind the root", relsXml("") + "<!DOCTYPE x SYSTEM 'http://h/x.dtd'>", ""},
        {"second DTD",
         "<!DOCTYPE x><!DOCTYPE x [<!ENTITY % p SYSTEM 'http://h/p'>%p;]>" + relsXml(child), ""},
        {"DTD within the root",
         relsXml(child + "<!DOCTYPE x [<!ENTITY % p SYSTEM 'http://h/p'>%p;]>"), "urn:a"},
    };
    for (const auto& row : rows) {
        const Watch watch;
        PackageInMemory package({{PACKAGE_RELS, row.xml}});
        EXPECT_EQ(s(package->getRelationshipTargetFromId(u("1"))), row.target) << row.what;
        EXPECT_EQ(watch.asked, "") << row.what;
    }
    const Watch watch;
    PackageInMemory package(Parts{
        {"docProps/app.xml",
         "<!DOCTYPE x [<!ENTITY e SYSTEM 'file:///etc/passwd'>]><x><AppVersion>1&e;</AppVersion>"
         "</x>"}});
    EXPECT_EQ(s(package->getAppVersion()), "");
    EXPECT_EQ(watch.asked, "");
}

/// Entities that multiply tenfold in each of `levels` steps.
std::string laughs(int levels) {
    std::string dtd = "<!DOCTYPE x [<!ENTITY l0 'ha ha ha '>";
    for (int i = 1; i <= levels; ++i) {
        dtd += "<!ENTITY l" + std::to_string(i) + " '";
        for (int j = 0; j < 10; ++j) dtd += "&l" + std::to_string(i - 1) + ";";
        dtd += "'>";
    }
    return dtd + "]>";
}

TEST(PackageHostileTest, ExpansionIsCapped) {
    const std::string before = "<Default Extension='a' ContentType='kept'/>";
    const std::string behind = "<Default Extension='b' ContentType='lost'/>";
    const struct {
        int levels;
        const char* behind;
    } rows[] = {{1, "lost"}, {2, "lost"}, {9, ""}, {12, ""}};
    for (const auto& row : rows) {
        const std::string bomb =
            "<Default Extension='c' ContentType='&l" + std::to_string(row.levels) + ";'/>";
        PackageInMemory package(
            {{"f.a", ""},
             {"f.b", ""},
             {"f.c", ""},
             {CONTENT_TYPES, laughs(row.levels) + typesXml(before + bomb + behind)}});
        EXPECT_EQ(s(package->getContentType(package.part("f.a"))), "kept") << row.levels;
        EXPECT_EQ(s(package->getContentType(package.part("f.b"))), row.behind) << row.levels;
        EXPECT_LT(package->getContentType(package.part("f.c")).length(), 100'000) << row.levels;
    }
    // In content, entities are not followed at all.
    PackageInMemory content(
        {{"f.a", ""}, {CONTENT_TYPES, laughs(12) + typesXml("&l12;" + before)}});
    EXPECT_EQ(s(content->getContentType(content.part("f.a"))), "kept");
}

TEST(PackageHostileTest, SuppliedAttributesAreCounted) {
    std::string dtd = "<!DOCTYPE x [<!ATTLIST a";
    for (int i = 0; i < 1000; ++i) dtd += " a" + std::to_string(i) + " CDATA 'v'";
    std::string children = rel("1", "urn:t", "before");
    for (int i = 0; i < 10'000; ++i) children += "<a/>";
    PackageInMemory package(
        {{PACKAGE_RELS, dtd + ">]>" + relsXml(children + rel("2", "urn:u", "behind"))}});
    EXPECT_EQ(s(package->getRelationshipTargetFromId(u("1"))), "before");
    EXPECT_EQ(s(package->getRelationshipTargetFromId(u("2"))), "");
}

TEST(PackageHostileTest, AMemberThatInflatesTooFarIsReadInPart) {
    const std::string children =
        rel("1", "urn:t", "before") + std::string(20u << 20, ' ') + rel("2", "urn:u", "behind");
    PackageInMemory deflated({{PACKAGE_RELS, relsXml(children)}});
    EXPECT_EQ(s(deflated->getRelationshipTargetFromId(u("1"))), "before");
    EXPECT_EQ(s(deflated->getRelationshipTargetFromId(u("2"))), "");
    // What is stored at that size was sent at that size.
    RyZipFile stored;
    stored.open(new std::istringstream(makeZip({{PACKAGE_RELS, relsXml(children), 0}})), true);
    EXPECT_EQ(s(stored.getRelationshipTargetFromId(u("2"))), "behind");
}

TEST(PackageHostileTest, PartsCanBeLimited) {
    const std::string child = rel("1", "urn:t", "found");
    const std::string xml = relsXml(child);
    const std::uint64_t end = xml.find(child) + child.size();
    const std::uint64_t all = RyZipLimits::UNLIMITED;
    const std::uint32_t most = 0xFFFFFFFF;
    const std::uint64_t attributes = 4;  // the root's namespace and those of the child
    const struct {
        const char* what;
        std::uint64_t bytes;
        std::uint32_t inflation;
        std::uint64_t attributes;
        const char* target;
    } rows[] = {
        {"bytes reached", end, 0, all, "found"},
        {"bytes exceeded", end - 1, 0, all, ""},
        {"inflation", 0, 1, all, "found"},
        {"no limit", all, most, all, "found"},
        {"attributes reached", all, 0, attributes, "found"},
        {"attributes exceeded", all, 0, attributes - 1, ""},
    };
    for (const auto& row : rows) {
        RyZipFile zip;
        RyZipLimits limits;
        limits.partBytes = row.bytes;
        limits.partInflation = row.inflation;
        limits.partAttributes = row.attributes;
        zip.setLimits(limits);
        zip.open(new std::istringstream(makeZip({{PACKAGE_RELS, xml, 0}})), true);
        EXPECT_EQ(s(zip.getRelationshipTargetFromId(u("1"))), row.target) << row.what;
    }
    // Free bytes and those for compressed bytes add up.
    for (const std::uint64_t missing : {0, 1}) {
        PackageInMemory package({{PACKAGE_RELS, xml}});
        RyZipLimits limits;
        limits.partInflation = 1;
        limits.partBytes = end - missing - package.part(PACKAGE_RELS)->getCompressedSize();
        package->setLimits(limits);
        EXPECT_EQ(s(package->getRelationshipTargetFromId(u("1"))), missing == 0 ? "found" : "");
    }
}

TEST(PackageHostileTest, ManyRelationships) {
    constexpr int COUNT = 100'000;
    std::string children;
    for (int i = 0; i < COUNT; ++i) {
        const std::string number = std::to_string(i);
        children += rel("rId" + number, "image", "media/a%20" + number + ".png");
    }
    PackageInMemory package({{"word/document.xml", ""},
                             {"word/media/a 99999.png", ""},
                             {"word/_rels/document.xml.rels", relsXml(children)}});
    RyZipFileEntry* const part = package.part("word/document.xml");
    EXPECT_EQ(s(package->getRelationshipTargetFromId(u("rId99999"), part)),
              "word/media/a 99999.png");
    EXPECT_EQ(part->getRelationshipsIdMap().size(), static_cast<std::size_t>(COUNT));
    EXPECT_EQ(part->getRelationshipsTypeMap().size(), 1u);
}

TEST(PackageHostileTest, DamagedPartsKeepWhatWasRead) {
    const std::string first = rel("1", "urn:t", "a");
    const std::string second = rel("2", "urn:u", "b");
    const std::string xml = relsXml(first + second);
    const std::size_t firstEnds = xml.find(first) + first.size();
    const std::size_t secondEnds = firstEnds + second.size();
    for (std::size_t length = 0; length <= xml.size(); ++length) {
        PackageInMemory package({{PACKAGE_RELS, xml.substr(0, length)}});
        EXPECT_EQ(s(package->getRelationshipTargetFromId(u("1"))), length >= firstEnds ? "a" : "")
            << length;
        EXPECT_EQ(s(package->getRelationshipTargetFromId(u("2"))), length >= secondEnds ? "b" : "")
            << length;
    }
    const struct {
        const char* what;
        std::string xml;
        const char* target;
    } rows[] = {
        {"unknown encoding", "<?xml version='1.0' encoding='x-none'?>" + xml, ""},
        {"undeclared prefix behind", relsXml(first + "<p:x/>" + second), "a"},
        {"a wrong end tag behind", relsXml(first + "</x>" + second), "a"},
        {"a lone ampersand behind", relsXml(first + "& " + second), "a"},
        {"not XML", "PK\x03\x04", ""},
    };
    for (const auto& row : rows) {
        PackageInMemory package({{PACKAGE_RELS, row.xml}});
        EXPECT_EQ(s(package->getRelationshipTargetFromId(u("1"))), row.target) << row.what;
        EXPECT_EQ(s(package->getRelationshipTargetFromId(u("2"))), "") << row.what;
    }
}

TEST(PackageHostileTest, ElementsMayBeDeep) {
    std::string deep;
    for (int i = 0; i < 200'000; ++i) deep += "<a>";
    PackageInMemory package({{PACKAGE_RELS, relsXml(rel("1", "urn:t", "a") + deep)}});
    EXPECT_EQ(s(package->getRelationshipTargetFromId(u("1"))), "a");
}

}  // namespace
}  // namespace RynCommon
