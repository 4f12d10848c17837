// Packages that mean harm: entities, DTDs, masses, damage.
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <tuple>

#include "tests/resources/Fetching.h"
#include "tests/resources/PackageWriter.h"

namespace RynCommon {
namespace {

TEST(PackageHostileTest, NothingOutsideOfThePackageIsRead) {
    const std::string child = rel("1", "urn:t", "urn:a");
    const std::tuple<const char*, std::string, const char*> rows[] = {
        {"external DTD", "<!DOCTYPE x SYSTEM 'http://h/x.dtd'>" + relsXml(child), "urn:a"},
        {"entity of an external DTD",
         "<!DOCTYPE x SYSTEM 'http://h/x.dtd'>" + relsXml(rel("1", "urn:t", "urn:&e;")), ""},
        {"external parameter entity",
         "<!DOCTYPE x [<!ENTITY % p SYSTEM 'http://h/p'>%p;]>" + relsXml(child), ""},
        {"external entity in a value",
         "<!DOCTYPE x [<!ENTITY e SYSTEM 'file:///etc/passwd'>]>" +
             relsXml(rel("1", "urn:t", "urn:&e;")),
         ""},
        {"internal entity in a value",
         "<!DOCTYPE x [<!ENTITY e 'a'>]>" + relsXml(rel("1", "urn:t", "urn:&e;")), "urn:a"},
    };
    for (const auto& [what, xml, target] : rows) {
        FixedResources outside;
        outside.resources["http://h/x.dtd"] = "<!ENTITY e 'from outside'>";
        PackageInMemory package({{PACKAGE_RELS, xml}});
        EXPECT_EQ(s(package->getRelationshipTargetFromId(u("1"))), target) << what;
        EXPECT_EQ(outside.asked, "") << what;
    }
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
    for (const int levels : {2, 12}) {
        const std::string bomb =
            "<Default Extension='c' ContentType='&l" + std::to_string(levels) + ";'/>";
        PackageInMemory package(
            {{"f.a", ""},
             {"f.b", ""},
             {CONTENT_TYPES, laughs(levels) + typesXml(before + bomb + behind)}});
        EXPECT_EQ(s(package->getContentType(package.part("f.a"))), "kept") << levels;
        EXPECT_EQ(s(package->getContentType(package.part("f.b"))), levels == 2 ? "lost" : "");
    }
    // In content, entities are not followed at all.
    PackageInMemory content(
        {{"f.a", ""}, {CONTENT_TYPES, laughs(12) + typesXml("&l12;" + before)}});
    EXPECT_EQ(s(content->getContentType(content.part("f.a"))), "kept");
}

TEST(PackageHostileTest, PartsCanBeLimited) {
    const std::string child = rel("1", "urn:t", "found");
    const std::string xml = relsXml(child);
    const std::uint64_t end = xml.find(child) + child.size();
    // The root's namespace and those of the child are four attributes.
    const std::tuple<const char*, RyZipLimits, const char*> rows[] = {
        {"bytes reached", {.partBytes = end, .partInflation = 0}, "found"},
        {"bytes exceeded", {.partBytes = end - 1, .partInflation = 0}, ""},
        {"inflation", {.partBytes = 0, .partInflation = 1}, "found"},
        {"attributes reached", {.partInflation = 0, .partAttributes = 4}, "found"},
        {"attributes exceeded", {.partInflation = 0, .partAttributes = 3}, ""},
    };
    for (const auto& [what, limits, target] : rows) {
        RyZipFile zip;
        zip.setLimits(limits);
        zip.open(new std::istringstream(makeZip({{PACKAGE_RELS, xml, 0}})), true);
        EXPECT_EQ(s(zip.getRelationshipTargetFromId(u("1"))), target) << what;
    }
    // Free bytes and those for compressed bytes add up.
    PackageInMemory package({{PACKAGE_RELS, xml}});
    RyZipLimits limits;
    limits.partInflation = 1;
    limits.partBytes = end - package.part(PACKAGE_RELS)->getCompressedSize();
    package->setLimits(limits);
    EXPECT_EQ(s(package->getRelationshipTargetFromId(u("1"))), "found");
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
    const std::tuple<const char*, std::string, const char*> rows[] = {
        {"unknown encoding", "<?xml version='1.0' encoding='x-none'?>" + xml, ""},
        {"a lone ampersand behind", relsXml(first + "& " + second), "a"},
        {"not XML", "PK\x03\x04", ""},
    };
    for (const auto& [what, damaged, target] : rows) {
        PackageInMemory package({{PACKAGE_RELS, damaged}});
        EXPECT_EQ(s(package->getRelationshipTargetFromId(u("1"))), target) << what;
        EXPECT_EQ(s(package->getRelationshipTargetFromId(u("2"))), "") << what;
    }
}

}  // namespace
}  // namespace RynCommon
