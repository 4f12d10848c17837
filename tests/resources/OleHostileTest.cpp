// Broken compound files: cut, cyclic and crossing chains, trees that are none. What only has to end
// stands in the hostile proof and in the fuzz target.
#include <gtest/gtest.h>

#include <random>
#include <tuple>

#include "resources/ole/SectorTables.h"
#include "tests/resources/OleFixture.h"

namespace RynCommon {
namespace {

using namespace test;

constexpr int LARGE = 1;
constexpr int SMALL = 2;

OleImage makeImage() {
    OleWriter writer;
    writer.addStream(0, u"large", makeContent(6000));
    writer.addStream(0, u"small", makeContent(1000));
    const int storage = writer.addStorage(0, u"storage");
    for (const char16_t* name : {u"a", u"b", u"c", u"d"}) writer.addStream(storage, name, "x");
    return writer.write();
}

TEST(OleHostile, StreamsCutAtEverySector) {
    OleWriter writer;
    writer.addStream(0, u"s", makeContent(20'000));
    OleImage image = writer.write();
    OpenFile file(image.bytes());
    OleStream stream(&file);
    ASSERT_TRUE(stream.GetStreamChain(1));
    for (std::size_t size = 0; size <= 20'512; size += 100) {
        file.io.bytes = image.bytes().substr(0, size);
        stream.OLEseek(0, 0);
        const std::size_t left = std::min<std::size_t>(size < 512 ? 0 : size - 512, 20'000);
        EXPECT_EQ(readAll(stream, 3000), makeContent(20'000).substr(0, left));
        EXPECT_EQ(stream.OLEtell(), left);
    }
}

/// Only the first sector of the mini stream is there.
TEST(OleHostile, PositionsWithoutASectorAreSoughtButNotReached) {
    OleImage image = makeImage();
    image.setNext(image.miniStream[0], -2);
    OpenFile file(image.bytes());
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

/// What of the two streams can be read: so many bytes, 0 where the stream does not open.
struct Readable {
    bool opens;
    std::size_t large, small;
};

void checkReadable(const OleImage& broken, const Readable& expected, const char* what) {
    MemoryIo io(broken.bytes());
    OleCompFile file;
    ASSERT_EQ(file.OLEopen(&io), expected.opens) << what;
    if (!expected.opens) return;
    const auto part = [](const std::string& content, std::size_t size) {
        return size == 0 ? NONE : content.substr(0, size);
    };
    const std::string filled = makeContent(6000) + std::string(144, '\0');
    EXPECT_EQ(readStream(file, Path{"large"}), part(filled, expected.large)) << what;
    EXPECT_EQ(readStream(file, Path{"small"}), part(makeContent(1000), expected.small)) << what;
}

TEST(OleHostile, BrokenChains) {
    const OleImage image = makeImage();
    const Sectors& large = image.chains[LARGE];
    const Sectors& small = image.chains[SMALL];
    const Sectors& mini = image.miniStream;
    const Sectors& directory = image.directory;
    const std::tuple<const char*, std::int32_t, std::int32_t, Readable> rows[] = {
        {"a stream that returns to its start", large[3], large[0], {true, 0, 1000}},
        {"a sector that follows itself", large[3], large[3], {true, 0, 1000}},
        {"a cycle behind the stream's end", large.back(), large[0], {true, 6000, 1000}},
        {"a stream that ends early", large[3], -2, {true, 0, 1000}},
        {"a stream that goes on into a free sector", large[3], -1, {true, 0, 1000}},
        {"a stream that leaves the table", large[3], 128, {true, 0, 1000}},
        {"a stream that crosses into another", large[3], mini[0], {true, 0, 1000}},
        {"a mini stream whose chain returns", mini[1], mini[0], {true, 6000, 0}},
        {"a mini stream whose chain ends early", mini[0], -2, {true, 6000, 512}},
        {"a directory that returns", directory[1], directory[0], {false, 0, 0}},
        {"a directory that ends with a free sector", directory[1], -1, {false, 0, 0}},
        {"a directory that goes on into a FAT sector", directory[1], image.fat[0], {false, 0, 0}},
        {"a directory that goes on outside", directory[1], 128, {false, 0, 0}},
    };
    for (const auto& [what, sector, next, expected] : rows) {
        OleImage broken = image;
        broken.setNext(sector, next);
        checkReadable(broken, expected, what);
    }
    for (const std::int32_t next : {small[1], -2}) {
        OleImage broken = image;
        broken.setNextMini(small[3], next);
        checkReadable(broken, {true, 6000, 0}, "a chain of mini sectors");
    }
    OleImage beyond = image;
    beyond.setNextMini(small[3], 100);
    for (std::int32_t sector = 100; sector < 112; ++sector) beyond.setNextMini(sector, sector + 1);
    checkReadable(beyond, {true, 6000, 256}, "mini sectors beyond the mini stream");
}

TEST(OleHostile, BrokenStartsAndSizes) {
    const OleImage image = makeImage();
    const std::size_t root = image.entryOffset(0);
    const std::size_t large = image.entryOffset(LARGE);
    const std::tuple<const char*, std::size_t, std::int64_t, Readable> rows[] = {
        {"no mini stream", root + 116, -2, {true, 6000, 0}},
        {"the mini stream begins outside", root + 116, 0x7FFFFFFF, {true, 6000, 0}},
        {"the mini FAT begins outside", 60, 128, {false, 0, 0}},
        {"a size that the chain just holds", large + 120, 6144, {true, 6144, 1000}},
        {"a size beyond the chain", large + 120, 6145, {true, 0, 1000}},
        {"a size of 2^32-1", large + 120, -1, {true, 0, 1000}},
        {"a stream that begins nowhere", large + 116, -2, {true, 0, 1000}},
    };
    for (const auto& [what, offset, number, expected] : rows) {
        OleImage broken = image;
        broken.sink.set32(offset, number);
        checkReadable(broken, expected, what);
    }
    OleImage cyclic = image;
    cyclic.setNext(image.miniFat[0], image.miniFat[0]);
    cyclic.sink.set32(64, 2);
    checkReadable(cyclic, {false, 0, 0}, "a mini FAT that returns");
}

TEST(OleHostile, BrokenTreesOfSiblings) {
    const OleImage image = makeImage();
    // Left, right, child: back to the root, the storage or a sibling, and outside.
    for (const std::size_t field : {68U, 72U, 76U}) {
        for (int id = 3; id < 8; ++id) {
            for (const std::int64_t target : {0L, 3L, 4L, 6L, 8L, 0x7FFFFFFFL}) {
                OleImage broken = image;
                broken.sink.set32(broken.entryOffset(id) + field, target);
                OpenFile file(broken.bytes());
                for (const int start : {3, 4, 5})
                    EXPECT_EQ(file.findDirEntryByName(file.getDirInfo(start), "none"), -1);
                testing::internal::CaptureStderr();
                file.OLEcloseStream(file.OLEopenObject(Path{"storage"}));
                testing::internal::GetCapturedStderr();
            }
        }
    }
}

/// A chain sector by sector, as the table of what follows each says it; ends with what ended it.
Sectors walkStepwise(const Sectors& table, std::int32_t next, std::size_t most) {
    Sectors chain;
    while (chain.size() < most && next >= 0 && static_cast<std::size_t>(next) < table.size() &&
           std::find(chain.begin(), chain.end(), next) == chain.end()) {
        chain.push_back(next);
        next = table[next];
    }
    chain.push_back(next);
    return chain;
}

TEST(OleHostile, ChainsAreWhatAStepwiseWalkFinds) {
    OleImage image = OleWriter({.leastFatSectors = 4}).write();
    std::minstd_rand random(7);
    for (std::size_t round = 0; round < 20; ++round) {
        // Runs of all lengths, with jumps between them that now and then lead outside.
        Sectors table(512);
        for (std::int32_t sector = 0; sector < 512; ++sector) {
            const bool jumps = random() % (2 + round * 10) == 0;
            table[sector] = jumps ? static_cast<std::int32_t>(random() % 530) - 3 : sector + 1;
            image.setNext(sector, table[sector]);
        }
        MemoryIo io(image.bytes());
        ole::OleHeader header;
        ASSERT_TRUE(header.parse(reinterpret_cast<const unsigned char*>(io.bytes.data())));
        const ole::SectorReader reader(&io, header.sectorShift);
        ole::SectorTables tables;
        ASSERT_TRUE(tables.loadDifat(header, reader) && tables.loadFat(header, reader));
        for (std::int32_t start = -2; start < 514; ++start) {
            for (const std::size_t most : {1U, 64U, 512U}) {
                ole::SectorChain found;
                const std::int32_t end = tables.collectChain(start, false, most, found);
                const Sectors expected = walkStepwise(table, start, most);
                ASSERT_EQ(end, expected.back()) << start << " " << most;
                ASSERT_EQ(found.size() + 1, expected.size()) << start << " " << most;
                EXPECT_EQ(found.at(found.size()), -1);
                for (std::size_t i = 0; i < found.size(); ++i) {
                    const std::size_t index = i % 3 == 0 ? found.size() - 1 - i : i;
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
    const std::tuple<std::uint32_t, std::uint32_t, bool, std::size_t, std::size_t> rows[] = {
        {16, 8, true, 6000, 1000}, {15, all, true, 6000, 0}, {12, all, true, 6000, 0},
        {11, all, true, 0, 0},     {1, all, false, 0, 0},    {all, 7, false, 0, 0},
    };
    for (const auto& [chain, entries, opens, large, small] : rows) {
        MemoryIo io(bytes);
        OleCompFile file;
        OleLimits limits;
        limits.chainSectors = chain;
        limits.directoryEntries = entries;
        file.setLimits(limits);
        EXPECT_EQ(file.OLEopen(&io), opens) << chain << " " << entries;
        if (!opens) continue;
        for (const auto& [id, size] : {std::pair(LARGE, large), std::pair(SMALL, small)}) {
            OleStream stream(&file);
            EXPECT_EQ(stream.GetStreamChain(id), size > 0) << chain << " " << id;
            EXPECT_EQ(readAll(stream).size(), size) << chain << " " << id;
        }
    }
}

}  // namespace
}  // namespace RynCommon
