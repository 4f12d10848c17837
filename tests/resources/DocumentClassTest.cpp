// The classes of office packages, by path and by stream; the strict conformance class; what
// detection reads.
#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "tests/Scratch.h"
#include "tests/Text.h"
#include "tests/resources/PackageWriter.h"
#include "tests/streams/ByteSources.h"

namespace RynCommon {
namespace {

constexpr char STRICT_TYPE[] =
    "http://purl.oclc.org/ooxml/officeDocument/relationships/officeDocument";

std::string override_(const std::string& part, const std::string& type) {
    return "<Override PartName='" + part + "' ContentType='" + type + "'/>";
}

Parts packageOf(const std::string& contentType, const std::string& target = "main.xml",
                const std::string& type = "officeDocument") {
    return {{CONTENT_TYPES, typesXml(override_("/main.xml", contentType))},
            {PACKAGE_RELS, relsXml(rel("rId1", type, target))},
            {"main.xml", "<a/>"}};
}

struct Class {
    RyZipFile::OOXDOCUMENT_TYPE expected;
    std::string name;

    std::string contentType() const {
        return "application/vnd." +
               (name[0] == '*' ? "openxmlformats-officedocument." + name.substr(1) : name);
    }
};

const Class CLASSES[] = {
    {RyZipFile::OOX_WORDPROCESSING_DOCUMENT, "*wordprocessingml.document.main+xml"},
    {RyZipFile::OOX_WORDPROCESSING_MACRO_DOCUMENT, "ms-word.document.macroEnabled.main+xml"},
    {RyZipFile::OOX_WORDPROCESSING_TEMPLATE, "*wordprocessingml.template.main+xml"},
    {RyZipFile::OOX_WORDPROCESSING_MACRO_TEMPLATE,
     "ms-word.template.macroEnabledTemplate.main+xml"},
    {RyZipFile::OOX_SPREADSHEET, "*spreadsheetml.sheet.main+xml"},
    {RyZipFile::OOX_SPREADSHEET_MACRO, "ms-excel.sheet.macroEnabled.main+xml"},
    {RyZipFile::OOX_SPREADSHEET_TEMPLATE, "*spreadsheetml.template.main+xml"},
    {RyZipFile::OOX_SPREADSHEET_MACRO_TEMPLATE, "ms-excel.template.macroEnabled.main+xml"},
    {RyZipFile::OOX_SPREADSHEET_BINARY, "ms-excel.sheet.binary.macroEnabled.main"},
    {RyZipFile::OOX_PRESENTATION, "*presentationml.presentation.main+xml"},
    {RyZipFile::OOX_PRESENTATION_MACRO, "ms-powerpoint.presentation.macroEnabled.main+xml"},
    {RyZipFile::OOX_SLIDESHOW, "*presentationml.slideshow.main+xml"},
    {RyZipFile::OOX_SLIDESHOW_MACRO, "ms-powerpoint.slideshow.macroEnabled.main+xml"},
    {RyZipFile::OOX_PRESENTATION_TEMPLATE, "*presentationml.template.main+xml"},
    {RyZipFile::OOX_PRESENTATION_MACRO_TEMPLATE, "ms-powerpoint.template.macroEnabled.main+xml"},
    {RyZipFile::OOX_THEME_MANAGER, "*themeManager+xml"},
};

TEST(DocumentClassTest, EveryClassByItsContentType) {
    int number = 0;
    for (const auto& row : CLASSES) {
        EXPECT_EQ(row.expected, ++number);
        std::istringstream in(makePackage(packageOf(row.contentType())));
        EXPECT_EQ(RyZipFile::detectOOXDocument(&in), row.expected) << row.contentType();
    }
    EXPECT_EQ(number, 16);
}

TEST(DocumentClassTest, WhatIsNoOfficeDocument) {
    const std::string type = CLASSES[0].contentType();
    const Parts good = packageOf(type);
    const std::pair<const char*, std::string> rows[] = {
        {"no archive", "hello, world"},
        {"an empty archive", makeZip({})},
        {"other content type", makePackage(packageOf("text/xml"))},
        {"content type in another case", makePackage(packageOf("A" + type.substr(1)))},
        {"no content types", makePackage({good[1], good[2]})},
        {"no main part", makePackage({good[0], good[1]})},
        {"another type of relationship", makePackage(packageOf(type, "main.xml", "image"))},
        {"only a slash", makePackage(packageOf(type, "/"))},
        {"two slashes", makePackage(packageOf(type, "//main.xml"))},
    };
    for (const auto& [what, bytes] : rows) {
        std::istringstream in(bytes);
        EXPECT_EQ(RyZipFile::detectOOXDocument(&in), RyZipFile::OOX_NONE) << what;
    }
    EXPECT_EQ(RyZipFile::detectOOXDocument(static_cast<std::istream*>(nullptr)),
              RyZipFile::OOX_NONE);
    EXPECT_EQ(RyZipFile::detectOOXDocument(static_cast<const char*>(nullptr)), RyZipFile::OOX_NONE);
    EXPECT_EQ(RyZipFile::detectOOXDocument("/no/such/file"), RyZipFile::OOX_NONE);
    EXPECT_EQ(RyZipFile::detectOOXDocument(UnicodeString(u"/no/such/file")), RyZipFile::OOX_NONE);
}

TEST(DocumentClassTest, TheMainPartIsFoundUnderEachFormOfItsName) {
    const std::pair<const char*, const char*> rows[] = {
        {"word/document.xml", "word/document.xml"},
        {"/word/document.xml", "/word/document.xml"},
        {"word/my%20document.xml", "word/my document.xml"},
        {"word/my%20document.xml", "word/my%20document.xml"},
    };
    for (const auto& [target, member] : rows) {
        PackageInMemory package(
            {{PACKAGE_RELS, relsXml(rel("1", "officeDocument", target))}, {member, ""}});
        ASSERT_NE(package->getOfficeDocument(), nullptr) << target;
        EXPECT_EQ(package->getOfficeDocument(), package.part(member)) << target;
        EXPECT_EQ(package->detectOOXDocument(), RyZipFile::OOX_NONE) << "without content types";
    }
}

TEST(DocumentClassTest, ByPath) {
    const ScratchFolder folder;
    const std::string path = folder.path("\xC3\xA9.docx");
    folder.write("\xC3\xA9.docx", makePackage(packageOf(CLASSES[4].contentType())));
    EXPECT_EQ(RyZipFile::detectOOXDocument(path.c_str()), RyZipFile::OOX_SPREADSHEET);
    EXPECT_EQ(RyZipFile::detectOOXDocument(u(path)), RyZipFile::OOX_SPREADSHEET);
}

TEST(DocumentClassTest, StrictPackagesWhenTheyAreAccepted) {
    const UnicodeString transitional(
        u"http://schemas.openxmlformats.org/officeDocument/2006/relationships/officeDocument");
    PackageInMemory strict(packageOf(CLASSES[0].contentType(), "main.xml", STRICT_TYPE));
    EXPECT_EQ(strict->detectOOXDocument(), RyZipFile::OOX_NONE);
    EXPECT_TRUE(strict->getRelationshipTargetFromType(transitional).isEmpty());
    strict->setAcceptStrict(true);
    EXPECT_EQ(strict->detectOOXDocument(), RyZipFile::OOX_WORDPROCESSING_DOCUMENT);
    EXPECT_EQ(strict->getRelationshipTargetFromType(transitional), UnicodeString(u"main.xml"));
    EXPECT_TRUE(strict->getRelationshipTargetFromType(u"urn:other").isEmpty());
    strict->setAcceptStrict(false);
    EXPECT_EQ(strict->getOfficeDocument(), nullptr);

    Parts both = packageOf(CLASSES[0].contentType());
    both[1].second =
        relsXml(rel("1", STRICT_TYPE, "other.xml") + rel("2", "officeDocument", "main.xml"));
    PackageInMemory mixed(both);
    mixed->setAcceptStrict(true);
    EXPECT_EQ(mixed->detectOOXDocument(), RyZipFile::OOX_WORDPROCESSING_DOCUMENT);
}

TEST(DocumentClassTest, DetectionReadsOnlyWhatItNeeds) {
    constexpr std::size_t LARGE = 4u << 20;
    std::vector<ZipMember> members;
    for (const auto& [name, data] : packageOf(CLASSES[9].contentType()))
        members.push_back({name, data});
    for (int i = 0; i < 8; ++i)
        members.push_back({"media/" + std::to_string(i), std::string(LARGE, 'x'), 0});
    WatchedBuf buffer(makeZip(members));
    std::istream in(&buffer);
    EXPECT_EQ(RyZipFile::detectOOXDocument(&in), RyZipFile::OOX_PRESENTATION);
    EXPECT_GT(buffer.bytesRead, 0u);
    EXPECT_LT(buffer.bytesRead, LARGE / 4);
}

}  // namespace
}  // namespace RynCommon
