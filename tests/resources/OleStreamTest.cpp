// Streams inside of compound files: seeking, copying, the standard stream. That pieces of any size
// give the same is the fuzz target's.
#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <tuple>

#include "tests/Scratch.h"
#include "tests/resources/OleFixture.h"

namespace RynCommon {
namespace {

using namespace test;

class OleStreamTest : public testing::Test {
protected:
    /// Opens a file with the one stream "s", scattered over its sectors.
    OleStream& open(std::size_t size, std::uint32_t cutoff = 4096) {
        OleWriter writer({.cutoff = cutoff, .scattered = true});
        writer.addStream(0, u"s", makeContent(size));
        writer.addStream(0, u"other", makeContent(700, 2));
        image_ = writer.write();
        io_ = std::make_unique<MemoryIo>(image_.bytes());
        EXPECT_TRUE(file_.OLEopen(io_.get()));
        stream_.reset(file_.OLEopenStream(Path{"s"}));
        EXPECT_NE(stream_, nullptr);
        return *stream_;
    }

    OleImage image_{false};
    std::unique_ptr<MemoryIo> io_;
    OleCompFile file_;
    std::unique_ptr<OleStream> stream_;
};

TEST_F(OleStreamTest, SeeksWithinItsBounds) {
    OleStream& stream = open(100);
    constexpr std::int32_t MOST = std::numeric_limits<std::int32_t>::max();
    constexpr std::int32_t LEAST = std::numeric_limits<std::int32_t>::min();
    // Each row goes on from the one before.
    const std::tuple<std::int32_t, int, std::int64_t, std::uint32_t> rows[] = {
        {10, 2, 90, 90},   {-5, 0, 0, 0},        {500, 0, 100, 100}, {-10, 1, 90, 90},
        {99, 1, 100, 100}, {-500, 1, 0, 0},      {101, 2, 0, 0},     {-1, 2, 100, 100},
        {40, 0, 40, 40},   {7, 3, -1, 40},       {7, -1, -1, 40},    {MOST, 1, 100, 100},
        {LEAST, 1, 0, 0},  {LEAST, 2, 100, 100},
    };
    for (const auto& [offset, whence, result, position] : rows) {
        EXPECT_EQ(stream.OLEseek(offset, whence), result) << offset << whence;
        EXPECT_EQ(stream.OLEtell(), position) << offset << " " << whence;
    }
}

TEST_F(OleStreamTest, SeekingPlacesTheReaderOfTheFile) {
    for (const int size : {3000, 9000}) {
        OleStream& stream = open(size);
        const std::string content = makeContent(size);
        for (std::int32_t position = 0; position < size; position += 37) {
            ASSERT_EQ(stream.OLEseek(position, 0), position);
            char byte = 0;
            ASSERT_EQ(file_.ReadIO(&byte, 1), 1U);
            ASSERT_EQ(byte, content[position]) << position;
        }
    }
}

TEST_F(OleStreamTest, TheCutoffTellsWhereAStreamLives) {
    const std::tuple<std::size_t, std::uint32_t, bool> rows[] = {
        {4095, 4096, true}, {4096, 4096, false}, {64, 0, false}, {6000, 0x7FFFFFFF, true}};
    for (const auto& [size, cutoff, mini] : rows) {
        OleStream& stream = open(size, cutoff);
        EXPECT_EQ(readAll(stream), makeContent(size)) << size;
        const Sectors& chain = image_.chains[1];
        EXPECT_EQ(chain.size(), (size + (mini ? 63 : 511)) / (mini ? 64 : 512));
        for (std::size_t i = 0; i < chain.size(); ++i)
            ASSERT_EQ(stream.GetStreamChainIndex(static_cast<std::uint32_t>(i)), chain[i]);
        EXPECT_EQ(stream.GetStreamChainIndex(static_cast<std::uint32_t>(chain.size())), -1);
        EXPECT_EQ(stream.GetStreamChainIndex(0xFFFFFFFF), -1);
    }
}

TEST_F(OleStreamTest, OnlyStreamsHaveAChain) {
    OleStream& stream = open(100);
    for (const std::int32_t id : {0, 3, 4, -1, 0x7FFFFFFF}) {
        EXPECT_FALSE(stream.GetStreamChain(id)) << id;
        EXPECT_EQ(stream.GetStreamSize(), 0U);
        EXPECT_EQ(readAll(stream), "");
    }
    EXPECT_TRUE(stream.GetStreamChain(2));
    EXPECT_EQ(readAll(stream), makeContent(700, 2));
    EXPECT_EQ(stream.OLEread(nullptr, 5), 0U);
    EXPECT_FALSE(OleStream(nullptr).GetStreamChain(1));
}

TEST_F(OleStreamTest, CopiesToAFileAndKeepsItsPlace) {
    const ScratchFolder folder;
    const std::string path = folder.path("copy");
    for (const std::size_t size : {0U, 10240U, 50'000U}) {
        OleStream& stream = open(size);
        stream.OLEseek(77, 0);
        folder.write("copy", "something longer than nothing");
        EXPECT_TRUE(stream.CopyToFile(path.c_str()));
        EXPECT_EQ(stream.OLEtell(), std::min<std::size_t>(77, size));
        EXPECT_EQ(folder.read("copy"), makeContent(size));
    }
    OleStream& stream = *stream_;
    stream.OLEseek(77, 0);
    EXPECT_FALSE(stream.CopyToFile(folder.path().c_str()));
    EXPECT_FALSE(stream.CopyToFile("/dev/full"));
    EXPECT_FALSE(stream.CopyToFile(nullptr));
    io_->bytes.resize(io_->bytes.size() / 2);
    EXPECT_FALSE(stream.CopyToFile(path.c_str())) << "a stream that is cut";
    EXPECT_EQ(stream.OLEtell(), 77U);
}

TEST_F(OleStreamTest, TheStandardStreamEndsAtItsLimit) {
    OleStream& stream = open(9000);
    const std::string content = makeContent(9000);
    const std::tuple<int, std::size_t, std::vector<std::size_t>> rows[] = {
        {5000, 0, {4096, 904}},  {-1, 0, {4096, 4096, 808}}, {0, 0, {}},
        {8192, 0, {4096, 4096}}, {8193, 0, {4096, 4096, 1}}, {5000, 8000, {1000}},
        {-1, 9000, {}},
    };
    for (const auto& [limit, from, expected] : rows) {
        stream.OLEseek(static_cast<std::int32_t>(from), 0);
        RyOleStream in(&stream, limit);
        std::string read;
        std::vector<std::size_t> blocks;
        while (in.peek() != std::char_traits<char>::eof()) {
            blocks.push_back(static_cast<std::size_t>(in.rdbuf()->in_avail()));
            std::string block(blocks.back(), '\0');
            in.read(block.data(), static_cast<std::streamsize>(block.size()));
            read += block;
        }
        EXPECT_EQ(blocks, expected) << limit;
        EXPECT_EQ(read, content.substr(from, read.size()));
        EXPECT_TRUE(in.eof());
    }
    RyOleStream none(nullptr);
    EXPECT_EQ(none.get(), std::char_traits<char>::eof());
}

}  // namespace
}  // namespace RynCommon
