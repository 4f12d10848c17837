// The streams of members, who owns what, and checked reading.
#include <RynCommon/RyZipFile.h>

#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>
#include <tuple>
#include <utility>

#include "ZipReading.h"
#include "tests/streams/ByteSources.h"
#include "tests/streams/DeflateData.h"

namespace RynCommon {
namespace {

TEST(ZipStreamsTest, TheMembersOwnStreamIsPutBackToItsStart) {
    const std::string text = makeText(20'000);
    for (const std::uint16_t method : std::initializer_list<std::uint16_t>{0, 8}) {
        const RyZipFile zip = openZip(makeZip({{"a", text, method}}));
        RyZipFileEntry& entry = *zip.getFileEntry(0);
        std::istream* const own = entry.getUncompressedStream(false);
        for (const std::size_t count : {0, 1, 5'000, 30'000}) {
            own->ignore(static_cast<std::streamsize>(count));
            EXPECT_EQ(entry.getUncompressedStream(false), own) << method;
            EXPECT_TRUE(own->good()) << method;
            EXPECT_EQ(readInSteps(*own, 333), text) << method << ", " << count;
            entry.getUncompressedStream(false);
        }
    }
}

TEST(ZipStreamsTest, NewStreamsStandByThemselves) {
    const std::string text = makeText(20'000);
    for (const std::uint16_t method : std::initializer_list<std::uint16_t>{0, 8}) {
        const std::string packed = method == 8 ? deflateData(text) : text;
        auto zip = std::make_unique<RyZipFile>(openZip(makeZip({{"a", text, method}})));
        RyZipFileEntry* const entry = zip->getFileEntry(0);
        const std::unique_ptr<std::istream> first(entry->getUncompressedStream(true));
        const std::unique_ptr<std::istream> second(entry->getUncompressedStream(true));
        const std::unique_ptr<std::istream> stored(entry->getCompressedStream(true));
        first->ignore(100);
        EXPECT_EQ(readInSteps(*second, 4'000), text);
        zip.reset();
        EXPECT_EQ(readInSteps(*first, 100'000), text.substr(100));
        EXPECT_EQ(readInSteps(*stored, 100), packed);
    }
}

/// Other readers sniff and seek in what they are given.
TEST(ZipStreamsTest, StoredDataCanBeSoughtIn) {
    const RyZipFile zip = openZip(makeZip({{"a", "0123456789", 0}}));
    std::istream& in = *zip.getFileEntry(0)->getUncompressedStream(false);
    EXPECT_EQ(in.seekg(0, std::ios::end).tellg(), std::streampos(10));
    EXPECT_EQ(in.seekg(-3, std::ios::end).get(), '7');
    EXPECT_EQ(in.seekg(2).get(), '2');
    EXPECT_EQ(in.unget().get(), '2');
    for (const int offset : {-1, 11}) {
        EXPECT_TRUE(in.seekg(offset, std::ios::beg).fail()) << offset;
        in.clear();
        EXPECT_EQ(in.tellg(), std::streampos(3)) << offset;
    }
    in.seekg(4);
    EXPECT_FALSE(in.putback('x').good()) << "stored data was changed";
    in.clear();
    EXPECT_EQ(readInSteps(in, 4), "456789");
}

TEST(ZipStreamsTest, MembersOutliveTheArchive) {
    RyPtr<RyZipFileEntry> entry;
    {
        const RyZipFile zip(new CountedStream(makeZip({{"a", "1"}})), true);
        entry = zip.getFileEntry(0);
        EXPECT_EQ(CountedStream::count, 1);
    }
    EXPECT_EQ(CountedStream::count, 1);
    EXPECT_EQ(readRest(*entry->getUncompressedStream(false)), "1");
    entry = nullptr;
    EXPECT_EQ(CountedStream::count, 0);
}

TEST(ZipStreamsTest, CopiesShareMembersAndStream) {
    auto zip = std::make_unique<RyZipFile>(new CountedStream(makeZip({{"a", "1"}})), true);
    RyZipFile copy(*zip);
    RyZipFile assigned;
    assigned = copy;
    assigned = *&assigned;
    EXPECT_EQ(copy.getFileEntry(0), zip->getFileEntry(0));
    zip->open(new CountedStream(makeZip({{"b", "2"}})), true);
    EXPECT_EQ(readMembers(*zip), Members{"b=2"});
    EXPECT_EQ(readMembers(assigned), Members{"a=1"});
    EXPECT_EQ(CountedStream::count, 2);
    zip.reset();
    copy.open(static_cast<const char*>(nullptr));
    EXPECT_EQ(copy.getFileEntryCount(), 0u);
    EXPECT_EQ(CountedStream::count, 1);
    assigned = copy;
    EXPECT_EQ(CountedStream::count, 0);
}

TEST(ZipStreamsTest, OpeningAgainForgetsTheLastArchive) {
    auto* const stream = new CountedStream(makeZip({{"a", "1"}, {"b", "2"}}));
    RyZipFile zip(stream, true);
    stream->seekg(0);
    zip.open(stream, true);
    EXPECT_EQ(readMembers(zip), (Members{"a=1", "b=2"})) << "a stream that it owns already";
    CountedStream lent(makeZip({{"c", "3"}}));
    zip.open(&lent, false);
    EXPECT_EQ(CountedStream::count, 1);
    EXPECT_EQ(zip.getFileEntry(UnicodeString(u"a")), nullptr);
    zip.open(nullptr, true);
    EXPECT_EQ(zip.getFileEntryCount(), 0u);
    EXPECT_EQ(CountedStream::count, 1);
}

TEST(ZipStreamsTest, CheckedStreamsTurnBadAtTheEndOfWrongData) {
    const std::string text = makeText(20'000);
    std::string packed = deflateData(text);
    const std::string cut = packed.substr(0, packed.size() / 2);
    const std::tuple<const char*, ZipMember, bool, std::size_t> rows[] = {
        {"right, deflated", {"a", text}, false, 20'000},
        {"right, stored", {"a", text, 0}, false, 20'000},
        {"unknown method", {.name = "a", .data = "x", .method = 9, .crc = 1}, false, 1},
        {"wrong sum, deflated", {.name = "a", .data = text, .crc = 1}, true, 20'000},
        {"wrong sum, stored", {.name = "a", .data = text, .method = 0, .crc = 1}, true, 20'000},
        {"wrong sum, empty", {.name = "a", .data = "", .method = 0, .crc = 1}, true, 0},
        {"too long", {.name = "a", .data = text, .uncompressedSize = 19'999}, true, 20'000},
        {"too short", {.name = "a", .data = text, .uncompressedSize = 20'001}, true, 20'000},
        {"cut", {.name = "a", .data = text, .raw = cut}, true, inflateData(cut).bytes.size()},
    };
    for (const auto& [what, member, bad, length] : rows) {
        for (const bool fromDirectory : {false, true}) {
            const RyZipFile zip = openZip(makeZip({member, {"b", "2"}}), fromDirectory, true);
            RyZipFileEntry& entry = *zip.getFileEntry(0);
            for (const std::size_t step : {100, 50'000}) {
                std::istream& own = *entry.getUncompressedStream(false);
                EXPECT_TRUE(own.good()) << what;
                EXPECT_EQ(readInSteps(own, step).size(), length) << what << ", step " << step;
                EXPECT_EQ(own.bad(), bad) << what << ", step " << step;
                const std::unique_ptr<std::istream> fresh(entry.getUncompressedStream(true));
                EXPECT_EQ(readInSteps(*fresh, step).size(), length) << what;
                EXPECT_EQ(fresh->bad(), bad) << what;
            }
        }
    }
}

TEST(ZipStreamsTest, CheckingBeginsWhenItIsAskedFor) {
    RyZipFile zip = openZip(makeZip({{.name = "a", .data = "text", .crc = 1}}));
    std::istream& unchecked = *zip.getFileEntry(0)->getUncompressedStream(false);
    zip.setVerify(true);
    EXPECT_FALSE(unchecked.ignore(10).bad());
    EXPECT_TRUE(zip.getFileEntry(0)->getUncompressedStream(false)->ignore(10).bad());
}

}  // namespace
}  // namespace RynCommon
