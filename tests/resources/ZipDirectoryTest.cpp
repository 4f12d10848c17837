// Archives by their central directory.
#include <RynCommon/RyZipFile.h>

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <tuple>

#include "ZipReading.h"
#include "tests/streams/DeflateData.h"

namespace RynCommon {
namespace {

using namespace std::string_literals;

const std::string TEXT = makeText(30'000);

TEST(ZipDirectoryTest, ReadsMembersByTheirDirectory) {
    const std::vector<ZipMember> members{{"a", TEXT}, {"b", "2", 0}};
    const Members both{"a=" + TEXT, "b=2"};
    const std::string wildEnd = "PK\x05\x06"s + std::string(18, '\xF0');
    const std::tuple<const char*, std::string, Members> rows[] = {
        {"in front", makeZip(members, {.prefix = "#!/bin/sh\n" + TEXT}), both},
        {"longest comment", makeZip(members, {.comment = std::string(65'535, 'c')}), both},
        {"wild end in the comment", makeZip(members, {.comment = "xx" + wildEnd + "xx"}), both},
        {"a gap behind the directory", makeZip(members, {.gap = "signature"}), both},
        {"count too small", makeZip(members, {.count = 1}), both},
        {"count too large", makeZip(members, {.count = 60'000}), both},
        {"zip64 count beyond reason", makeZip(members, {.zip64 = true, .count = ~0ull}), both},
        {"size too large", makeZip(members, {.size = 0xFFFFFF00}), both},
        {"descriptor", makeZip({{.name = "a", .data = TEXT, .descriptor = true}, {"b", "2"}}),
         both},
        {"zip64 sizes in front",
         makeZip({{.name = "a", .data = TEXT, .zip64 = true}, {"b", "2"}},
                 {.prefix = "prefix", .zip64 = true}),
         both},
        {"zip64 field behind others",
         makeZip({{.name = "a", .data = TEXT, .zip64 = true, .directoryExtra = "UT\x03\0abc"s},
                  {"b", "2"}}),
         both},
        {"headers of different lengths",
         makeZip({{.name = "a", .data = TEXT, .localExtra = "LOCAL", .comment = "comment"},
                  {.name = "b", .data = "2", .directoryExtra = "DIRECTORY"}}),
         both},
        {"two members of one place",
         makeZip({{"a", "1"}, {.name = "b", .data = "1", .offset = 0}}),
         {"a=1", "b=1"}},
        {"an offset outside",
         makeZip({{.name = "a", .data = "1", .offset = 4'000'000}, {"b", "2"}}),
         {"a=", "b=2"}},
        {"an offset to no header",
         makeZip({{.name = "a", .data = "1", .offset = 5}, {"b", "2"}}),
         {"a=", "b=2"}},
    };
    for (const auto& [what, archive, expected] : rows)
        EXPECT_EQ(readMembers(openZip(archive, true)), expected) << what;
}

TEST(ZipDirectoryTest, WithoutAnEndThereIsNoMember) {
    const std::vector<ZipMember> members{{"a", TEXT}, {"b", "2", 0}};
    for (const std::string& archive : {""s, "PK\x05\x06"s, makeZip(members, {.directory = false}),
                                       makeZip(members, {.size = 0xFFFFFF00, .offset = 0xFFFFFF00}),
                                       makeZip(members, {.trailer = std::string(65'536, 't')})}) {
        EXPECT_EQ(readMembers(openZip(archive, true)), Members{});
    }
}

TEST(ZipDirectoryTest, TheArchiveBeginsWhereTheStreamStands) {
    const std::string archive = makeZip({{"a", TEXT}});
    for (const bool offsetsCountAll : {false, true}) {
        std::istringstream in(
            offsetsCountAll ? makeZip({{.name = "a", .data = TEXT, .offset = 3}},
                                      {.prefix = "xyz", .offset = archive.find("PK\x01\x02") + 3})
                            : "xyz" + archive);
        in.seekg(3);
        RyZipFile zip;
        zip.setUseCentralDirectory(true);
        zip.open(&in, false);
        EXPECT_EQ(readMembers(zip), Members{"a=" + TEXT}) << offsetsCountAll;
    }
}

TEST(ZipDirectoryTest, CountsForTheNextOpening) {
    const std::string archive = makeZip({{"a", "1"}}, {.prefix = "prefix"});
    std::istringstream in(archive);
    RyZipFile zip(&in, false);
    zip.setUseCentralDirectory(true);
    EXPECT_EQ(zip.getFileEntryCount(), 0u);
    in.seekg(0);
    zip.open(&in, false);
    EXPECT_EQ(zip.getFileEntryCount(), 1u);
    EXPECT_EQ(in.tellg(), std::streampos(0));
}

TEST(ZipDirectoryTest, ReadsManyMembers) {
    std::vector<ZipMember> members;
    for (int i = 0; i < 70'000; ++i) {
        members.push_back({std::to_string(i), std::string(1, static_cast<char>('a' + i % 26)), 0});
    }
    // Written without zip64 records the count is what fits in 16 bits.
    const std::string wrongCount = makeZip(members);
    const std::string rightCount = makeZip(members, {.zip64 = true});
    for (const RyZipFile& zip :
         {openZip(wrongCount), openZip(wrongCount, true), openZip(rightCount, true)}) {
        EXPECT_EQ(zip.getFileEntryCount(), 70'000u);
        EXPECT_EQ(zip.getFileEntry(UnicodeString(u"69999")), zip.getFileEntry(69'999));
        EXPECT_EQ(readRest(*zip.getFileEntry(66'000)->getUncompressedStream(false)),
                  members[66'000].data);
    }
}

}  // namespace
}  // namespace RynCommon
