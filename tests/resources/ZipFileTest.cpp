// Archives by their local headers.
#include <RynCommon/RyZipFile.h>

#include <gtest/gtest.h>
#include <unicode/ucnv.h>

#include <sstream>
#include <string>

#include "ZipReading.h"
#include "tests/Scratch.h"
#include "tests/streams/DeflateData.h"

namespace RynCommon {
namespace {

using namespace std::string_literals;

TEST(ZipFileTest, ReadsMembersByTheirLocalHeaders) {
    const std::string text = makeText(100'000);
    struct Row {
        const char* what;
        std::vector<ZipMember> members;
        Members expected;
    };
    const Row rows[] = {
        {"no member", {}, {}},
        {"deflated", {{"a", text}}, {"a=" + text}},
        {"stored", {{"a", text, 0}}, {"a=" + text}},
        {"a method that is not known", {{.name = "a", .data = "xyz", .method = 12}}, {"a=xyz"}},
        {"several", {{"a", "1"}, {"b/", "", 0}, {"b/c", "2"}}, {"a=1", "b/=", "b/c=2"}},
        {"equal names", {{"a", "1"}, {"a", "2"}}, {"a=1", "a=2"}},
        {"no name", {{"", "1"}}, {"=1"}},
        {"extra field",
         {{.name = "a", .data = "1", .localExtra = "EXTRA"}, {"b", "2"}},
         {"a=1", "b=2"}},
        {"a name longer than most",
         {{std::string(70'000 % 65'536, 'n'), "1"}, {"b", "2"}},
         {std::string(70'000 % 65'536, 'n') + "=1", "b=2"}},
        {"sizes behind the data end the list at it",
         {{"a", "1"}, {.name = "b", .data = text, .descriptor = true}, {"c", "3"}},
         {"a=1", "b="}},
        {"a descriptor behind no data is stepped over",
         {{.name = "b/", .data = "", .method = 0, .descriptor = true}, {"c", "3"}},
         {"b/=", "c=3"}},
        {"the flag for UTF-8 means nothing here",
         {{.name = "a", .data = "1", .utf8 = true}},
         {"a=1"}},
    };
    for (const auto& [what, members, expected] : rows) {
        EXPECT_EQ(readMembers(openZip(makeZip(members))), expected) << what;
        EXPECT_EQ(readMembers(openZip(makeZip(members, {.directory = false}))), expected) << what;
    }
}

TEST(ZipFileTest, TellsWhatTheHeaderTells) {
    const std::string text = makeText(5'000);
    const RyZipFile zip = openZip(makeZip({{"d", text}, {"s", text, 0}, {"x", "data", 99}}));
    const std::uint64_t packed = deflateData(text).size();
    const struct {
        unsigned method;
        std::uint64_t compressed, uncompressed;
    } rows[] = {{8, packed, 5'000}, {0, 5'000, 5'000}, {99, 4, 4}};
    for (unsigned i = 0; i < 3; ++i) {
        RyZipFileEntry* const entry = zip.getFileEntry(i);
        EXPECT_EQ(entry->getSignature(), 0x04034B50u) << i;
        EXPECT_EQ(entry->getCompressionMethod(), rows[i].method) << i;
        EXPECT_EQ(entry->getCompressedSize(), rows[i].compressed) << i;
        EXPECT_EQ(entry->getUncompressedSize(), rows[i].uncompressed) << i;
    }
}

TEST(ZipFileTest, FindsMembersByTheirExactNames) {
    const RyZipFile zip = openZip(makeZip({{"word/document.xml", "1"},
                                           {"/x.xml", "2"},
                                           {"same", "3"},
                                           {"same", "4"},
                                           {"Upper", "5"}}));
    const struct {
        const char16_t* name;
        int index;
    } rows[] = {{u"word/document.xml", 0},
                {u"/word/document.xml", -1},
                {u"Word/document.xml", -1},
                {u"word\\document.xml", -1},
                {u"x.xml", -1},
                {u"/x.xml", 1},
                {u"same", 2},
                {u"Upper", 4},
                {u"upper", -1},
                {u"", -1},
                {u"zzz", -1}};
    for (const auto& [name, index] : rows) {
        RyZipFileEntry* const expected =
            index < 0 ? nullptr : zip.getFileEntry(static_cast<unsigned>(index));
        EXPECT_EQ(zip.getFileEntry(UnicodeString(name)), expected) << s(name);
    }
    EXPECT_EQ(zip.getFileEntryCount(), 5u);
    EXPECT_EQ(zip.getFileEntry(5), nullptr);
    EXPECT_EQ(zip.getFileEntry(0xFFFFFFFFu), nullptr);
    EXPECT_EQ(RyZipFile().getFileEntry(UnicodeString(u"same")), nullptr);
}

/// ICU's default converter is UTF-8 here whatever the locale is.
TEST(ZipFileTest, DecodesNamesWithTheDefaultConverter) {
    ASSERT_STREQ(ucnv_getDefaultName(), "UTF-8");
    const struct {
        const char* bytes;
        const char16_t* name;
    } rows[] = {{"plain", u"plain"},
                {"\u30C6.xml", u"\u30C6.xml"},
                {"\xE9", u"\uFFFD"},
                {"\x83\x65.xml", u"\uFFFDe.xml"},
                {"a\x01\x7F", u"a\u0001\u007F"}};
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
    EXPECT_EQ(zip.getFileEntryCount(), 2u);
    EXPECT_EQ(readMembers(zip).at(1), "b=" + makeText(30'000));
    EXPECT_TRUE(in.good());
}

TEST(ZipFileTest, LeavesTheStreamBehindTheLastMember) {
    const std::string archive = makeZip({{"a", "1"}, {"b", makeText(30'000)}});
    std::istringstream in(archive);
    const RyZipFile zip(&in, false);
    EXPECT_EQ(static_cast<std::size_t>(in.tellg()), archive.find("PK\x01\x02"));
}

TEST(ZipFileTest, AMemberCanBeReadByItself) {
    const std::string archive = makeZip({{"a", "1", 0}, {"b", "23", 0}});
    std::istringstream in(archive);
    const RyPtr<RyZipFileEntry> first(new RyZipFileEntry(in));
    const RyPtr<RyZipFileEntry> second(new RyZipFileEntry(in));
    EXPECT_EQ(first->getFileName(), UnicodeString(u"a"));
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

TEST(ZipFileTest, KnowsItsTypes) {
    std::istringstream in(makeZip({{"a", "1"}}));
    const RyZipFile zip(&in, false);
    const RyZipFileEntry& entry = *zip.getFileEntry(0);
    EXPECT_EQ(entry.getTypeID(), 0x1E3480DFu);
    EXPECT_EQ(entry.getTypeName(), UnicodeString(u"RyZipFileEntry"));
    EXPECT_EQ(RyZipEntry::getStaticTypeID(), 0xB84B5A40u);
    for (const unsigned id : {0x1E3480DFu, 0xB84B5A40u, 0x90AF0240u, 0xA4EBD8C4u})
        EXPECT_TRUE(entry.isA(id)) << std::hex << id;
    EXPECT_FALSE(entry.isA(0x31FB5B85u));
}

TEST(ZipFileTest, RecognisesArchivesWithoutMovingTheStream) {
    const struct {
        const char* what;
        std::string bytes;
        bool expected;
    } rows[] = {
        {"an archive", makeZip({{"a", "1"}}), true},
        {"an empty archive", makeZip({}), true},
        {"a directory header", "PK\x01\x02", true},
        {"a data descriptor", "PK\x07\x08", false},
        {"a zip64 end record", "PK\x06\x06", false},
        {"three bytes", "PK\x03", false},
        {"nothing", "", false},
        {"text", "PKxx and more", false},
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
    const std::pair<std::uint64_t, Members> rows[] = {
        {0, {}}, {2, {"a=1", "b=2"}}, {3, {"a=1", "b=2", "c=3"}}};
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
    const UnicodeString text = UnicodeString::fromUTF8(path);

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
