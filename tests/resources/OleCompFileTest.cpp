// Compound files: header, tables and directory of sound files, finding entries, opening again.
#include <gtest/gtest.h>

#include "tests/Scratch.h"
#include "tests/resources/OleFixture.h"

namespace RynCommon {
namespace {

using namespace test;

TEST(OleCompFile, ReadsEveryLayout) {
    using Row = std::pair<unsigned, unsigned>;
    for (const auto& [shift, miniShift] :
         {Row{9, 6}, Row{12, 6}, Row{7, 7}, Row{8, 0}, Row{20, 6}}) {
        for (const int bits : {0, 1, 2, 3}) {
            OleWriter writer({.shift = shift,
                              .miniShift = miniShift,
                              .bigEndian = (bits & 1) != 0,
                              .scattered = (bits & 2) != 0});
            std::vector<std::pair<std::string, std::string>> streams;
            const int storage = writer.addStorage(0, u"Storage");
            for (const std::size_t size : {0U, 1U, 64U, 65U, 512U, 4095U, 4096U, 30000U}) {
                const std::string name = "s" + std::to_string(size);
                streams.emplace_back(name, makeContent(size, size));
                writer.addStream(size % 2 == 0 ? 0 : storage,
                                 std::u16string(name.begin(), name.end()), streams.back().second);
            }
            const OleImage image = writer.write();
            OpenFile file(image.bytes());
            EXPECT_EQ(file.isLittleEndian(), (bits & 1) == 0);
            EXPECT_EQ(file.getMinisPerBlock(), 1U << (shift - miniShift));
            EXPECT_EQ(file.getMiniStartSect(), image.miniStream[0]);
            EXPECT_EQ(file.getNextBlock(image.fat[0], false), -3);
            for (const auto& [name, content] : streams) {
                const bool even = content.size() % 2 == 0;
                const Path atRoot{name.c_str()};
                const Path inStorage{"Storage", name.c_str()};
                EXPECT_EQ(readStream(file, even ? atRoot : inStorage), content) << name;
            }
        }
    }
}

TEST(OleCompFile, TellsWhatTheEntriesSay) {
    OleWriter writer;
    const int storage = writer.addStorage(0, u"St\u00F6rage");
    const int stream =
        writer.addStream(storage, u"\u0005Str\0eam" + std::u16string(1, u'\0'), makeContent(70));
    OpenFile file(writer.write().bytes());
    EXPECT_EQ(file.getVersion(), "03 00");
    EXPECT_EQ(file.getBytesPerBlock(), 512U);
    EXPECT_EQ(file.getLongsPerBlock(), 128U);
    EXPECT_EQ(file.getBytesPerMini(), 64U);
    EXPECT_EQ(file.getMiniFatCutoff(), 4096);
    EXPECT_EQ(file.getMiniFatBlockCount(), 1);
    EXPECT_EQ(file.getIndirectFatStartBlock(), -2);
    ASSERT_EQ(file.getDirCount(), 4);
    EXPECT_EQ(file.getDirInfo(-1), nullptr);
    EXPECT_EQ(file.getDirInfo(4), nullptr);
    EXPECT_TRUE(file.getDirInfo(0)->isRoot());
    const OleDirInfo& folder = *file.getDirInfo(storage);
    EXPECT_TRUE(folder.isStorage() && folder.compareName("St\u00F6rage"));
    EXPECT_EQ(folder.getStartSect(), -1);
    EXPECT_EQ(folder.getClassID()[15], 0xAF);
    EXPECT_EQ(folder.getStateBits(), 0x12345678U);
    EXPECT_EQ(folder.getCreationTime(), 0x01D0000000000001U);
    EXPECT_EQ(folder.getModificationTime(), 0x01D0000000000002U);
    // The name ends at a NUL, and a stream has no class and no times.
    const OleDirInfo& leaf = *file.getDirInfo(stream);
    EXPECT_EQ(leaf.getName(), UnicodeString(u"\u0005Str"));
    EXPECT_FALSE(leaf.compareName("\005str"));
    EXPECT_EQ(leaf.getStreamSize(), 70U);
    EXPECT_EQ(leaf.getClassID()[15], 0);
    EXPECT_EQ(leaf.getCreationTime(), 0U);
    EXPECT_EQ(file.getDirInfo(3)->getStorageType(), OLE_INVALID);
}

TEST(OleCompFile, ChecksTheHeader) {
    OleWriter writer;
    writer.addStream(0, u"s", makeContent(5000));
    writer.addStream(0, u"m", makeContent(50));
    const OleImage image = writer.write();
    const std::tuple<const char*, std::size_t, std::size_t, std::int64_t, bool> rows[] = {
        {"signature", 0, 1, 0xD1, false},
        {"sector shift 6", 30, 2, 6, false},
        {"sector shift 21", 30, 2, 21, false},
        {"mini shift of a sector", 32, 2, 9, true},
        {"mini shift above it", 32, 2, 10, false},
        {"no FAT", 44, 4, 0, false},
        {"FAT sectors 2^31-1", 44, 4, 0x7FFFFFFF, false},
        {"directory -2", 48, 4, -2, false},
        {"mini FAT -2", 60, 4, -2, false},
        {"no mini FAT sectors", 64, 4, 0, true},
        {"mini FAT sectors 2", 64, 4, 2, false},
        {"DIFAT -1", 68, 4, -1, false},
        {"DIFAT 0", 68, 4, 0, true},
        {"DIFAT sectors 2^32-1", 72, 4, -1, true},
        {"first FAT sector -1", 76, 4, -1, false},
        {"the same FAT sector again", 44, 4, 2, false},
    };
    for (const auto& [what, offset, size, value, expected] : rows) {
        OleImage broken = image;
        broken.sink.set32(80, image.fat[0]);
        broken.sink.set(offset, value, size);
        EXPECT_EQ(opens(broken.bytes()), expected) << what;
        EXPECT_EQ(opens(broken.bytes(), false), expected) << what;
    }
    for (const std::size_t nameBytes : {64U, 66U}) {
        OleImage unused = image;
        unused.sink.set(unused.entryOffset(3) + 64, nameBytes, 2);
        EXPECT_EQ(opens(unused.bytes()), nameBytes == 64) << "in an entry that is not used";
    }
}

TEST(OleCompFile, AnyOtherByteOrderMarkIsBigEndian) {
    OleWriter writer({.bigEndian = true});
    writer.addStream(0, u"s", "content");
    OleImage image = writer.write();
    for (const char* const mark : {"\xFF\xFE", "\x12\x34"}) {
        image.sink.bytes.replace(28, 2, mark, 2);
        OpenFile file(image.bytes());
        EXPECT_EQ(file.getVersion(), "00 03");
        EXPECT_EQ(readStream(file, Path{"s"}), "content");
    }
}

TEST(OleCompFile, FollowsTheListOfFatSectors) {
    for (const std::size_t count : {109U, 110U, 110U + 127U}) {
        OleWriter writer({.leastFatSectors = count});
        const std::string content = makeContent(6'900'000);
        writer.addStream(0, u"s", content);
        const OleImage image = writer.write();
        ASSERT_EQ(image.fat.size(), count);
        OpenFile file(image.bytes());
        EXPECT_EQ(file.getIndirectFatBlockCount(), static_cast<int>((count + 17) / 127));
        EXPECT_EQ(readStream(file, Path{"s"}), content);
        if (count == 109) continue;
        OleImage broken = image;
        broken.sink.set32(68, -2);
        EXPECT_FALSE(opens(broken.bytes()));
        OleImage cyclic = image;
        cyclic.sink.set32(cyclic.offsetOf(cyclic.difat[0]) + 508, cyclic.difat[0]);
        EXPECT_EQ(opens(cyclic.bytes()), image.difat.size() == 1) << count;
    }
}

TEST(OleCompFile, SearchesEntryThenLeftThenRight) {
    OleWriter writer;
    for (const char16_t* name : {u"a", u"b", u"c", u"d", u"e", u"f", u"g"})
        writer.addStream(0, name, "x");
    // The balanced tree: 4 (2 (1, 3), 6 (5, 7)). Names are then given without any order.
    OleImage image = writer.write();
    const auto rename = [&](int id, char name) { image.sink.set(image.entryOffset(id), name, 2); };
    for (const int id : {7, 5, 3}) rename(id, 'z');
    rename(1, 'y');
    rename(6, 'y');
    OpenFile file(image.bytes());
    const std::tuple<int, const char*, int> rows[] = {
        {4, "d", 4}, {4, "z", 3}, {6, "z", 5}, {4, "y", 1}, {6, "y", 6}, {6, "b", -1}, {4, "", -1},
    };
    for (const auto& [start, name, found] : rows)
        EXPECT_EQ(file.findDirEntryByName(file.getDirInfo(start), name), found) << start << name;
    EXPECT_EQ(file.findDirEntryByName(nullptr, "d"), -1);
    EXPECT_EQ(file.findDirEntryByName(file.getDirInfo(4), nullptr), -1);
    const OleDirInfo copy = *file.getDirInfo(6);
    EXPECT_EQ(file.findDirEntryByName(&copy, "z"), 5);
}

/// Directories large enough for an index give what walking them gives, shared trees included.
TEST(OleCompFile, FindsTheSameInLargeDirectories) {
    for (const bool shared : {false, true}) {
        OleWriter writer;
        const int storages[] = {writer.addStorage(0, u"one"), writer.addStorage(0, u"two")};
        for (int i = 0; i < 60; ++i) {
            const std::u16string name{static_cast<char16_t>(u'a' + i % 20)};
            writer.addStream(storages[i % 2], name, std::to_string(i));
        }
        OleImage image = writer.write();
        const std::int32_t child = OpenFile(image.bytes()).getDirInfo(storages[0])->getChildID();
        if (shared) image.sink.set32(image.entryOffset(storages[1]) + 76, child);
        OpenFile file(image.bytes());
        for (const int storage : storages) {
            const OleDirInfo* const start = file.getDirInfo(file.getDirInfo(storage)->getChildID());
            const OleDirInfo elsewhere = *start;  // a copy is walked
            for (char name = 'a'; name <= 'z'; ++name) {
                const std::string text(1, name);
                const std::int32_t found = file.findDirEntryByName(start, text.c_str());
                EXPECT_EQ(found, file.findDirEntryByName(&elsewhere, text.c_str())) << text;
                const bool isFirst = shared || storage == storages[0];
                EXPECT_EQ(found >= 0, name < 'u' && isFirst == (name % 2 == 1)) << text;
            }
        }
    }
}

TEST(OleCompFile, ReportsMissingNamesOnStandardError) {
    OleWriter writer;
    writer.addStream(0, u"s", "x");
    OpenFile file(writer.write().bytes());
    const auto report = [](const std::string& name) {
        return "\nError - OleStream::getDirIndex - Unable to find directory '" + name + "'\n";
    };
    const std::tuple<std::vector<const char*>, std::int32_t, std::string> rows[] = {
        {{"s"}, 1, ""},
        {{"S"}, -1, report("S")},
        {{"s", "below"}, -1, report("below")},
        {{"\x05\x1B[2Jx\x7F"}, -1, report("\\x05\\x1b[2Jx\\x7f")},
        {{nullptr}, -1, ""},
    };
    for (const auto& [names, expected, output] : rows) {
        const OleDirPath path{static_cast<int>(names.size()), names.data()};
        testing::internal::CaptureStderr();
        const std::int32_t index = file.getDirIndex(&path);
        EXPECT_EQ(testing::internal::GetCapturedStderr(), output);
        EXPECT_EQ(index, expected) << output;
    }
    EXPECT_EQ(file.getDirIndex(nullptr), -1);
}

TEST(OleCompFile, OpensTheObjectBesideThePresentation) {
    const char16_t* const presentation = u"\u0002OlePres000";
    const std::tuple<const char*, std::vector<std::u16string>, std::string> rows[] = {
        {"stops at the name", {u"a", presentation, u"b"}, "1"},
        {"first is the name", {presentation, u"b"}, "0"},
        {"the name is last", {u"a", presentation}, "0"},
        {"no such name", {u"a", u"b", u"c"}, "1"},
        {"a single child", {u"a"}, NONE},
    };
    for (const auto& [what, siblings, content] : rows) {
        OleWriter writer({.siblings = OleWriter::Siblings::RIGHT_CHAIN});
        const int storage = writer.addStorage(0, u"object");
        for (std::size_t i = 0; i < siblings.size(); ++i)
            writer.addStream(storage, siblings[i], std::to_string(i));
        OpenFile file(writer.write().bytes());
        OleStream* const stream = file.OLEopenObject(Path{"object"});
        EXPECT_EQ(stream == nullptr ? NONE : readAll(*stream), content) << what;
        file.OLEcloseStream(stream);
        testing::internal::CaptureStderr();
        EXPECT_EQ(file.OLEopenObject(Path{"object", "a"}), nullptr) << "a stream has no child";
        testing::internal::GetCapturedStderr();
    }
}

TEST(OleCompFile, OpeningAgainReleasesTheFirst) {
    const ScratchFolder folder;
    const std::string path = folder.path("file");
    OleWriter writer;
    writer.addStream(0, u"first", makeContent(9000));
    folder.write("file", writer.write().bytes());
    OleWriter second;
    second.addStream(0, u"second", "2");
    MemoryIo io(second.write().bytes());
    MemoryIo closed(io.bytes);
    closed.open = false;
    MemoryIo garbage("no compound file");
    OleCompFile file;
    EXPECT_FALSE(file.OLEopenSub());
    ASSERT_TRUE(file.OLEopen(path.c_str()));
    EXPECT_EQ(readStream(file, Path{"first"}), makeContent(9000));
    ASSERT_TRUE(file.OLEopen(&io));
    EXPECT_EQ(readStream(file, Path{"second"}), "2");
    EXPECT_TRUE(file.OLEopenSub());
    EXPECT_EQ(file.getDirCount(), 4);
    for (JZIOobj* const bad : std::initializer_list<JZIOobj*>{&closed, &garbage, nullptr}) {
        ASSERT_TRUE(file.OLEopen(&io));
        EXPECT_FALSE(file.OLEopen(bad));
        EXPECT_EQ(file.getDirCount(), 0);
        EXPECT_EQ(file.getNextBlock(0, false), -1);
        EXPECT_EQ(file.OLEopenStream(Path{"second"}), nullptr);
    }
    EXPECT_FALSE(file.OLEopen(folder.path().c_str()));
}

/// Opening reads header, tables and directory and nothing else; neighbours come together.
TEST(OleCompFile, ReadsNoMoreThanNeeded) {
    OleWriter writer;
    writer.addStream(0, u"large", makeContent(1'000'000));
    writer.addStream(0, u"small", makeContent(4000));
    const OleImage image = writer.write();
    OpenFile file(image.bytes());
    const auto firstTable = static_cast<std::size_t>(image.offsetOf(image.miniFat[0]));
    std::size_t total = 0;
    for (const auto& [offset, count] : file.io.reads) {
        EXPECT_TRUE(offset == 0 || offset >= firstTable) << offset;
        total += count;
    }
    const std::size_t sectors = image.fat.size() + image.miniFat.size() + image.directory.size();
    EXPECT_LE(total, 512 + sectors * 512);

    for (const char* const name : {"large", "small"}) {
        OleStream* const stream = file.OLEopenStream(Path{name});
        ASSERT_NE(stream, nullptr);
        file.io.reads.clear();
        std::string content(stream->GetStreamSize(), '\0');
        EXPECT_EQ(stream->OLEread(reinterpret_cast<unsigned char*>(content.data()),
                                  stream->GetStreamSize()),
                  content.size());
        EXPECT_EQ(file.io.reads.size(), 1U) << name;
        EXPECT_EQ(content, makeContent(content.size()));
        file.OLEcloseStream(stream);
    }
}

}  // namespace
}  // namespace RynCommon
