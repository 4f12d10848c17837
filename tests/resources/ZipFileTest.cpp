// Archives by their local headers.
#include <RynCommon/RyZipFile.h>

#include <gtest/gtest.h>
#include <unicode/ucnv.h>

#include <sstream>
#include <string>
#include <tuple>

#include "ZipReading.h"
#include "tests/Scratch.h"
#include "tests/streams/DeflateData.h"

namespace RynCommon {
namespace {

using namespace std::string_literals;

TEST(ZipFileTest, ReadsMembersByTheirLocalHeaders) {
    const std::string text = makeText(1'000);
    const std::tuple<const char*, std::vector<ZipMember>, Members> rows[] = {
        {"no member", {}, {}},
        {"a method that is not known", {{.name = "a", .data = "xyz", .method = 12}}, {"a=xyz"}},
        {"extra field",
         {{.name = "a", .data = "1", .localExtra = "EXTRA"}, {"b", "2"}},
         {"a=1", "b=2"}},
        {"a name longer than most",
         {{std::string(4'464, 'n'), "1"}, {"b", "2"}},
         {std::string(4'464, 'n') + "=1", "b=2"}},
        {"sizes behind the data end the list at it",
         {{"a", "1"}, {.name = "b", .data = text, .descriptor = true}, {"c", "3"}},
         {"a=1", "b="}},
        {"a descriptor behind no data is stepped over",
         {{.name = "b/", .data = "", .method = 0, .descriptor = true}, {"c", "3"}},
         {"b/=", "c=3"}},
    };
    for (const auto& [what, members, expected] : rows) {
        EXPECT_EQ(readMembers(openZip(makeZip(members))), expected) << what;
        EXPECT_EQ(readMembers(openZip(makeZip(members, {.directory = false}))), expected) << what;
    }
}

TEST(ZipFileTest, FindsMembersByTheirExactNames) {
    const RyZipFile zip = openZip(makeZip({
        {"word/document.xml", "1"},
        {"/x.xml", "2"},
        {"same", "3"},
        {"same", "4"},
    }));
    const std::pair<const char16_t*, int> rows[] = {
        {u"word/document.xml", 0},
        {u"Word/document.xml", -1},
        {u"x.xml", -1},
        {u"/x.xml", 1},
        {u"same", 2},
        {u"", -1},
    };
    for (const auto& [name, index] : rows) {
        RyZipFileEntry* const expected =
            index < 0 ? nullptr : zip.getFileEntry(static_cast<unsigned>(index));
        EXPECT_EQ(zip.getFileEntry(UnicodeString(name)), expected) << s(name);
    }
    EXPECT_EQ(zip.getFileEntry(4), nullptr);
    EXPECT_EQ(zip.getFileEntry(0xFFFFFFFFu), nullptr);
    EXPECT_EQ(RyZipFile().getFileEntry(UnicodeString(u"same")), nullptr);
}

/// ICU's default converter is UTF-8 here whatever the locale is.
TEST(ZipFileTest, DecodesNamesWithTheDefaultConverter) {
    ASSERT_STREQ(ucnv_getDefaultName(), "UTF-8");
    const std::pair<const char*, const char16_t*> rows[] = {
        {"\u30C6.xml", u"\u30C6.xml"},
        {"\xE9", u"\uFFFD"},
        {"\x83\x65.xml", u"\uFFFDe.xml"},
    };
    for (const auto& [bytes, name] : rows) {
        for (const bool flagged : {false, true}) {
            for (const bool fromDirectory : {false, true}) {
                const RyZipFile zip = openZip(
                    makeZip({{.name = bytes, .data = "1", .utf8 = flagged}}), fromDirectory);
                EXPECT_NE(zip.getFileEntry(UnicodeString(name)), nullptr) << bytes;
            }
        }
    }
}

TEST(ZipFileTest, BeginsWhereTheStreamStands) {
    const std::string archive = makeZip({{"a", "1"}, {"b", makeText(30'000)}});
    std::istringstream in("ten bytes." + archive);
    EXPECT_EQ(RyZipFile(&in, false).getFileEntryCount(), 0u);
    in.seekg(10);
    const RyZipFile zip(&in, false);
    EXPECT_EQ(static_cast<std::size_t>(in.tellg()), 10 + archive.find("PK\x01\x02"));
    EXPECT_EQ(readMembers(zip).at(1), "b=" + makeText(30'000));
    EXPECT_TRUE(in.good());
}

TEST(ZipFileTest, AMemberCanBeReadByItself) {
    const std::string archive = makeZip({{"a", "1", 0}, {"b", "23", 0}});
    std::istringstream in(archive);
    const RyPtr<RyZipFileEntry> first(new RyZipFileEntry(in));
    const RyPtr<RyZipFileEntry> second(new RyZipFileEntry(in));
    EXPECT_EQ(first->getFileName(), UnicodeString(u"a"));
    EXPECT_EQ(first->getCompressionMethod(), RyZipFileEntry::STORED);
    EXPECT_EQ(first->getTypeID(), 0x1E3480DFu);
    EXPECT_EQ(first->getTypeName(), UnicodeString(u"RyZipFileEntry"));
    EXPECT_TRUE(first->isA(RyZipEntry::getStaticTypeID()));
    EXPECT_EQ(second->getFileName(), UnicodeString(u"b"));
    EXPECT_EQ(static_cast<std::size_t>(in.tellg()), archive.find("PK\x01\x02"));
    EXPECT_EQ(readRest(*second->getUncompressedStream(false)), "23");
    EXPECT_EQ(readRest(*first->getUncompressedStream(false)), "1");

    std::istringstream none;
    const RyPtr<RyZipFileEntry> nothing(new RyZipFileEntry(none));
    EXPECT_EQ(nothing->getSignature(), 0u);
    EXPECT_TRUE(nothing->getFileName().isEmpty());
    EXPECT_EQ(readRest(*nothing->getUncompressedStream(false)), "");
}

TEST(ZipFileTest, RecognisesArchivesWithoutMovingTheStream) {
    const std::tuple<const char*, std::string, bool> rows[] = {
        {"an archive", makeZip({{"a", "1"}}), true},
        {"an empty archive", makeZip({}), true},
        {"a data descriptor", "PK\x07\x08", false},
        {"three bytes", "PK\x03", false},
    };
    for (const auto& [what, bytes, expected] : rows) {
        std::istringstream in("xyz" + bytes);
        in.exceptions(std::ios::failbit | std::ios::badbit | std::ios::eofbit);
        in.seekg(3);
        EXPECT_EQ(RyZipFile::isZipFile(&in), expected) << what;
        EXPECT_TRUE(in.good()) << what;
        EXPECT_EQ(in.tellg(), std::streampos(3)) << what;
    }
    std::istringstream ended(makeZip({}));
    ended.setstate(std::ios::eofbit);
    EXPECT_FALSE(RyZipFile::isZipFile(&ended));
    EXPECT_EQ(ended.rdstate(), std::ios::eofbit);
    EXPECT_FALSE(RyZipFile::isZipFile(static_cast<std::istream*>(nullptr)));
}

TEST(ZipFileTest, MembersCanBeLimited) {
    const std::string bytes = makeZip({{"a", "1"}, {"b", "2"}, {"c", "3"}});
    EXPECT_EQ(RyZipFile().getLimits().members, RyZipLimits::UNLIMITED);
    const std::pair<std::uint64_t, Members> rows[] = {{0, {}}, {2, {"a=1", "b=2"}}};
    for (const auto& [limit, expected] : rows) {
        for (const bool useDirectory : {false, true}) {
            RyZipFile zip;
            RyZipLimits limits = zip.getLimits();
            limits.members = limit;
            zip.setLimits(limits);
            zip.setUseCentralDirectory(useDirectory);
            zip.open(new std::istringstream(bytes), true);
            EXPECT_EQ(readMembers(zip), expected) << limit << " " << useDirectory;
        }
    }
}

TEST(ZipFileTest, OpensFiles) {
    const ScratchFolder folder;
    const std::string path = folder.path("\u00E9.zip");
    folder.write("\u00E9.zip", makeZip({{"a", "1"}}));
    const UnicodeString text = u(path);

    EXPECT_EQ(readMembers(RyZipFile(path.c_str())), Members{"a=1"});
    EXPECT_EQ(readMembers(RyZipFile(text)), Members{"a=1"});
    EXPECT_TRUE(RyZipFile::isZipFile(path.c_str()));
    EXPECT_TRUE(RyZipFile::isZipFile(text));
    const std::string missing = path + "-missing";
    for (const char* const none :
         {missing.c_str(), folder.path().c_str(), "", static_cast<const char*>(nullptr)}) {
        EXPECT_EQ(RyZipFile(none).getFileEntryCount(), 0u);
        EXPECT_FALSE(RyZipFile::isZipFile(none));
    }
    EXPECT_FALSE(RyZipFile::isZipFile(text + u'\0'));
}

}  // namespace
}  // namespace RynCommon
