// Broken compound files: cut, cyclic and crossing chains, numbers at their extremes. Every one of
// them has to end, within the memory that its size allows, and never to give more than it has.
#include <gtest/gtest.h>

#include <functional>
#include <set>

#include "resources/ole/SectorTables.h"
#include "tests/resources/OleFixture.h"

namespace RynCommon {
namespace {

using test::makeContent;
using test::MemoryIo;
using test::OleImage;
using test::OleWriter;
using test::Path;
using test::readStream;

const std::string NONE = "(none)";
constexpr int LARGE = 1;
constexpr int SMALL = 2;

OleImage makeImage(unsigned shift = 9, bool reversed = false) {
    OleWriter writer({.shift = shift, .reversed = reversed});
    writer.addStream(0, u"large", makeContent(6000));
    writer.addStream(0, u"small", makeContent(1000));
    const int storage = writer.addStorage(0, u"storage");
    for (const char16_t* name : {u"a", u"b", u"c", u"d"}) writer.addStream(storage, name, "x");
    return writer.write();
}

/// Reads all there is; -1 when the file does not open.
std::int64_t readEverything(const std::string& bytes) {
    MemoryIo io(bytes);
    io.seeksFromEnd = bytes.size() % 128 == 0;
    OleCompFile file;
    if (!file.OLEopen(&io)) {
        EXPECT_EQ(file.getDirCount(), 0);
        return -1;
    }
    std::int64_t total = 0;
    for (const OleDirInfo& entry : file.getDirVec()) {
        OleStream stream(&file);
        if (!stream.GetStreamChain(entry.getDirID())) continue;
        const std::string content = test::readAll(stream, 700);
        EXPECT_LE(content.size(), entry.getStreamSize());
        total += static_cast<std::int64_t>(content.size());
        file.findDirEntryByName(&entry, "no such name");
    }
    return total;
}

/// With the tables last every cut loses the FAT; with the tables first it loses the directory and
/// the mini FAT, or ends streams.
TEST(OleHostile, FilesCutAnywhere) {
    for (const unsigned shift : {7U, 9U}) {
        for (const bool reversed : {false, true}) {
            const OleImage image = makeImage(shift, reversed);
            const std::string& bytes = image.bytes();
            ASSERT_EQ(readEverything(bytes), 7004);
            const std::size_t opened =
                reversed ? image.offsetOf(image.miniFat[0]) + (std::size_t{1} << shift)
                         : bytes.size();
            std::int64_t last = 0;
            for (std::size_t size = 0; size < bytes.size(); size += 64) {
                const std::int64_t read = readEverything(bytes.substr(0, size));
                if (size < opened) {
                    EXPECT_EQ(read, -1) << size;
                    continue;
                }
                EXPECT_TRUE(read >= last && read < 7004) << size << " " << read;
                last = read;
            }
        }
    }
}

TEST(OleHostile, StreamsCutAtEverySector) {
    OleWriter writer;
    writer.addStream(0, u"s", makeContent(20'000));
    OleImage image = writer.write();
    test::OpenFile file(image.bytes());
    OleStream stream(&file);
    ASSERT_TRUE(stream.GetStreamChain(1));
    for (std::size_t size = 0; size <= 20'512; size += 100) {
        file.io.bytes = image.bytes().substr(0, size);
        stream.OLEseek(0, 0);
        const std::size_t left = std::min<std::size_t>(size < 512 ? 0 : size - 512, 20'000);
        EXPECT_EQ(test::readAll(stream, 3000), makeContent(20'000).substr(0, left));
        EXPECT_EQ(stream.OLEtell(), left);
    }
}

/// Only the first sector of the mini stream is there.
TEST(OleHostile, PositionsWithoutASectorAreSoughtButNotReached) {
    OleImage image = makeImage();
    image.setNext(image.miniStream[0], -2);
    test::OpenFile file(image.bytes());
    OleStream stream(&file);
    ASSERT_TRUE(stream.GetStreamChain(SMALL));
    unsigned char byte = 0;
    const std::pair<std::int32_t, std::int64_t> rows[] = {
        {511, 511}, {512, -1}, {999, -1}, {1000, 1000}, {0, 0}};
    for (const auto& [position, result] : rows) {
        EXPECT_EQ(stream.OLEseek(position, 0), result) << position;
        EXPECT_EQ(stream.OLEtell(), static_cast<std::uint32_t>(position));
        EXPECT_EQ(stream.OLEread(&byte, 1), position < 512 ? 1U : 0U) << position;
    }
}

TEST(OleHostile, BrokenChains) {
    const OleImage image = makeImage();
    const std::vector<std::int32_t>& large = image.chains[LARGE];
    const std::vector<std::int32_t>& small = image.chains[SMALL];
    const std::string largeContent = makeContent(6000);
    const std::string smallContent = makeContent(1000);
    const struct {
        const char* what;
        std::function<void(OleImage&)> damage;
        bool opens;
        std::string large;
        std::string small;
    } rows[] = {
        {"a stream that returns to its start", [&](OleImage& i) { i.setNext(large[3], large[0]); },
         true, NONE, smallContent},
        {"a sector that follows itself", [&](OleImage& i) { i.setNext(large[3], large[3]); }, true,
         NONE, smallContent},
        {"a cycle behind the end of the stream",
         [&](OleImage& i) { i.setNext(large.back(), large[0]); }, true, largeContent, smallContent},
        {"a stream that ends early", [&](OleImage& i) { i.setNext(large[3], -2); }, true, NONE,
         smallContent},
        {"a stream that goes on into a free sector", [&](OleImage& i) { i.setNext(large[3], -1); },
         true, NONE, smallContent},
        {"a stream that leaves the table", [&](OleImage& i) { i.setNext(large[3], 128); }, true,
         NONE, smallContent},
        {"a stream that leaves for the last number",
         [&](OleImage& i) { i.setNext(large[3], 0x7FFFFFFF); }, true, NONE, smallContent},
        {"a stream that crosses into the mini stream",
         [&](OleImage& i) { i.setNext(large[3], i.miniStream[0]); }, true, NONE, smallContent},
        {"a mini stream that returns", [&](OleImage& i) { i.setNextMini(small[3], small[1]); },
         true, largeContent, NONE},
        {"a mini stream that ends early", [&](OleImage& i) { i.setNextMini(small[3], -2); }, true,
         largeContent, NONE},
        {"mini sectors beyond the mini stream",
         [&](OleImage& i) {
             i.setNextMini(small[3], 100);
             for (std::int32_t mini = 100; mini < 112; ++mini) i.setNextMini(mini, mini + 1);
         },
         true, largeContent, smallContent.substr(0, 256)},
        {"the mini stream's own chain returns",
         [&](OleImage& i) { i.setNext(i.miniStream[1], i.miniStream[0]); }, true, largeContent,
         NONE},
        {"the mini stream's own chain ends early",
         [&](OleImage& i) { i.setNext(i.miniStream[0], -2); }, true, largeContent,
         smallContent.substr(0, 512)},
        {"no mini stream", [&](OleImage& i) { i.sink.set32(i.entryOffset(0) + 116, -2); }, true,
         largeContent, NONE},
        {"the mini stream begins outside",
         [&](OleImage& i) { i.sink.set32(i.entryOffset(0) + 116, 0x7FFFFFFF); }, true, largeContent,
         NONE},
        {"the directory returns", [&](OleImage& i) { i.setNext(i.directory[1], i.directory[0]); },
         false, NONE, NONE},
        {"the directory ends with a free sector",
         [&](OleImage& i) { i.setNext(i.directory[1], -1); }, false, NONE, NONE},
        {"the directory goes on into a FAT sector",
         [&](OleImage& i) { i.setNext(i.directory[1], i.fat[0]); }, false, NONE, NONE},
        {"the directory goes on outside", [&](OleImage& i) { i.setNext(i.directory[1], 128); },
         false, NONE, NONE},
        {"the mini FAT returns",
         [&](OleImage& i) {
             i.setNext(i.miniFat[0], i.miniFat[0]);
             i.sink.set32(64, 2);
         },
         false, NONE, NONE},
        {"the mini FAT begins outside", [&](OleImage& i) { i.sink.set32(60, 128); }, false, NONE,
         NONE},
        {"a size beyond the chain",
         [&](OleImage& i) { i.sink.set32(i.entryOffset(LARGE) + 120, 6145); }, true, NONE,
         smallContent},
        {"a size that the chain just holds",
         [&](OleImage& i) { i.sink.set32(i.entryOffset(LARGE) + 120, 6144); }, true,
         largeContent + std::string(144, '\0'), smallContent},
        {"a size of 2^32-1", [&](OleImage& i) { i.sink.set32(i.entryOffset(LARGE) + 120, -1); },
         true, NONE, smallContent},
        {"a size of 2^31",
         [&](OleImage& i) { i.sink.set32(i.entryOffset(LARGE) + 120, 0x80000000); }, true, NONE,
         smallContent},
        {"a stream that begins nowhere",
         [&](OleImage& i) { i.sink.set32(i.entryOffset(LARGE) + 116, -2); }, true, NONE,
         smallContent},
    };
    for (const auto& row : rows) {
        OleImage broken = image;
        row.damage(broken);
        MemoryIo io(broken.bytes());
        OleCompFile file;
        ASSERT_EQ(file.OLEopen(&io), row.opens) << row.what;
        testing::internal::CaptureStderr();
        EXPECT_EQ(readStream(file, Path{"large"}), row.large) << row.what;
        EXPECT_EQ(readStream(file, Path{"small"}), row.small) << row.what;
        testing::internal::GetCapturedStderr();
        readEverything(broken.bytes());
    }
}

TEST(OleHostile, BrokenTreesOfSiblings) {
    const OleImage image = makeImage();
    for (const std::size_t field : {68U, 72U, 76U}) {
        for (int id = 0; id < 8; ++id) {
            for (const std::int64_t target :
                 {0L, 1L, 3L, 4L, 6L, 7L, 8L, -2L, 0x7FFFFFFFL, -0x80000000L}) {
                OleImage broken = image;
                broken.sink.set32(broken.entryOffset(id) + field, target);
                test::OpenFile file(broken.bytes());
                testing::internal::CaptureStderr();
                for (const char* name : {"a", "b", "c", "d", "none"}) {
                    const std::string content = readStream(file, Path{"storage", name});
                    EXPECT_TRUE(content == NONE || content == "x");
                }
                for (const int start : {0, 1, 3, 4, 5, 6, 7})
                    EXPECT_EQ(file.findDirEntryByName(file.getDirInfo(start), "none"), -1);
                file.OLEcloseStream(file.OLEopenObject(Path{"storage"}));
                file.OLEcloseStream(file.OLEopenObject(Path{}));
                testing::internal::GetCapturedStderr();
            }
        }
    }
}

/// A chain sector by sector, as the tables say it.
std::int32_t walkStepwise(const ole::SectorTables& tables, std::int32_t start, std::size_t most,
                          std::vector<std::int32_t>& chain) {
    chain.clear();
    std::set<std::int32_t> met;
    std::int32_t next = start;
    while (chain.size() < most && next >= 0 &&
           static_cast<std::size_t>(next) < tables.getSize(false) && met.insert(next).second) {
        chain.push_back(next);
        next = tables.getNext(next, false);
    }
    return next;
}

TEST(OleHostile, ChainsAreWhatAStepwiseWalkFinds) {
    OleImage image = OleWriter({.leastFatSectors = 4}).write();
    std::uint32_t random = 7;
    const auto draw = [&random](std::uint32_t range) {
        random = random * 1664525 + 1013904223;
        return static_cast<std::int32_t>((random >> 8) % range);
    };
    for (int round = 0; round < 20; ++round) {
        // Runs of all lengths, with jumps between them that now and then lead outside.
        for (std::int32_t sector = 0; sector < 512; ++sector) {
            const bool jumps = draw(2 + static_cast<std::uint32_t>(round) * 10) == 0;
            image.setNext(sector, jumps ? draw(530) - 3 : sector + 1);
        }
        MemoryIo io(image.bytes());
        ole::OleHeader header;
        ASSERT_TRUE(header.parse(reinterpret_cast<const unsigned char*>(io.bytes.data())));
        const ole::SectorReader reader(&io, header.sectorShift);
        ole::SectorTables tables;
        ASSERT_TRUE(tables.loadDifat(header, reader) && tables.loadFat(header, reader));
        for (std::int32_t start = -2; start < 514; ++start) {
            for (const std::size_t most : {1U, 31U, 64U, 200U, 512U}) {
                ole::SectorChain found;
                std::vector<std::int32_t> expected;
                const std::int32_t end = tables.collectChain(start, false, most, found);
                ASSERT_EQ(end, walkStepwise(tables, start, most, expected)) << start << " " << most;
                ASSERT_EQ(found.size(), expected.size()) << start << " " << most;
                EXPECT_EQ(found.at(found.size()), -1);
                for (std::size_t i = 0; i < expected.size(); ++i) {
                    const std::size_t index = i % 3 == 0 ? expected.size() - 1 - i : i;
                    ASSERT_EQ(found.at(index), expected[index]) << start << " " << most;
                }
            }
        }
    }
}

/// The large stream has 12 sectors, the small one 16 mini sectors, the directory 2 sectors of 4
/// entries each, the mini stream 3.
TEST(OleHostile, ChainsAndDirectoriesCanBeLimited) {
    const std::string bytes = makeImage().bytes();
    const std::uint32_t all = OleLimits::UNLIMITED;
    const struct {
        std::uint32_t chain, entries;
        bool opens;
        std::size_t large, small;
    } rows[] = {
        {all, all, true, 6000, 1000}, {16, 8, true, 6000, 1000},  {15, all, true, 6000, 0},
        {12, all, true, 6000, 0},     {11, all, true, 0, 0},      {2, all, true, 0, 0},
        {1, all, false, 0, 0},        {all, 8, true, 6000, 1000}, {all, 7, false, 0, 0},
    };
    for (const auto& row : rows) {
        MemoryIo io(bytes);
        OleCompFile file;
        OleLimits limits;
        limits.chainSectors = row.chain;
        limits.directoryEntries = row.entries;
        file.setLimits(limits);
        EXPECT_EQ(file.OLEopen(&io), row.opens) << row.chain << " " << row.entries;
        if (!row.opens) continue;
        for (const auto& [id, size] : {std::pair(LARGE, row.large), std::pair(SMALL, row.small)}) {
            OleStream stream(&file);
            EXPECT_EQ(stream.GetStreamChain(id), size > 0) << row.chain << " " << id;
            EXPECT_EQ(test::readAll(stream).size(), size) << row.chain << " " << id;
        }
    }
}

/// A mini stream that may not be as long as it is serves no stream at all.
TEST(OleHostile, TheMiniStreamCanBeLimited) {
    OleWriter writer;
    for (char16_t c = u'a'; c < u'a' + 20; ++c)
        writer.addStream(0, std::u16string(1, c), makeContent(200));  // 4 mini sectors each
    MemoryIo io(writer.write().bytes());
    for (const std::uint32_t most : {10, 9}) {  // 80 mini sectors of 64 bytes
        OleCompFile file;
        OleLimits limits;
        limits.chainSectors = most;
        file.setLimits(limits);
        ASSERT_TRUE(file.OLEopen(&io)) << most;
        EXPECT_EQ(readStream(file, Path{"a"}), most == 10 ? makeContent(200) : NONE) << most;
    }
}

/// Every 32-bit word of header, tables and directory at its extremes.
TEST(OleHostile, NumbersAtTheirExtremes) {
    const OleImage image = makeImage(7);
    for (const std::int64_t number : {0L, 1L, 2L, 7L, 127L, 128L, 0x7FFFFFFFL, 0x80000000L,
                                      0xFFFFFFFCL, 0xFFFFFFFEL, 0xFFFFFFFFL}) {
        const auto damage = [&](std::size_t offset) {
            OleImage broken = image;
            broken.sink.set32(offset, number);
            EXPECT_LE(readEverything(broken.bytes()), 400'000) << offset << " " << number;
        };
        for (std::size_t offset = 24; offset < 512; offset += 4) damage(offset);
        const std::size_t tables = image.offsetOf(image.miniFat[0]);
        for (std::size_t offset = tables; offset + 4 <= image.bytes().size(); offset += 4)
            damage(offset);
    }
}

}  // namespace
}  // namespace RynCommon
