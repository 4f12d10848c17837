// Memory streams: all operations against the model, and what the model does not show: when sources
// are read and dropped, what stays in memory, copies.
#include <RynCommon/RyMemStream.h>

#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "tests/streams/ByteSources.h"
#include "tests/streams/DeflateData.h"
#include "tests/streams/MemStreamModel.h"

namespace RynCommon {
namespace {

std::string contentOf(RyMemStream& stream) {
    std::string text;
    stream.appendToString(text);
    return text;
}

TEST(MemStreamTest, RandomOperationsGiveWhatTheModelGives) {
    for (const std::uint64_t blockSize : {1, 2, 3, 4, 7, 8, 16, 61, 64, 256, 1000}) {
        std::mt19937 random(static_cast<unsigned>(blockSize));
        for (int round = 0; round < 300; ++round) {
            std::string bytes(400, '\0');
            for (char& byte : bytes) byte = static_cast<char>(random());
            ASSERT_EQ(MemStreamModel(blockSize).run(Operations(bytes)), "") << "round " << round;
        }
    }
}

/// Shows what only derived classes see.
class Probe : public RyMemStreamBuf {
public:
    explicit Probe(std::uint64_t growBytes) : RyMemStreamBuf(nullptr, growBytes, false) {}

    std::ptrdiff_t getPutRoom() const { return epptr() - pptr(); }
    int overflows = 0;

    using RyMemStreamBuf::getIndex;

protected:
    int_type overflow(int_type c) override {
        ++overflows;
        return RyMemStreamBuf::overflow(c);
    }
};

TEST(MemStreamTest, LastByteOfABlockGoesThroughOverflow) {
    Probe buffer(16);
    buffer.setGrowBytes(0);
    EXPECT_EQ(buffer.getGrowBytes(), 8192U);
    buffer.sputc('a');
    EXPECT_EQ(buffer.overflows, 1);
    EXPECT_EQ(buffer.getPutRoom(), 8190);
    for (int i = 1; i < 8191; ++i) buffer.sputc('b');
    EXPECT_EQ(buffer.overflows, 1);
    EXPECT_EQ(buffer.getPutRoom(), 0);
    buffer.sputc('c');
    EXPECT_EQ(buffer.overflows, 2);
    EXPECT_EQ(buffer.getPutRoom(), 8191);
    std::string text;
    buffer.appendToString(text);
    EXPECT_EQ(text, "a" + std::string(8190, 'b') + "c");
    EXPECT_EQ(buffer.getIndex(text.data()), ~std::uint64_t{0}) << "no block of the stream";
}

TEST(MemStreamTest, ReadsSourcesOnDemand) {
    const std::string bytes = makeText(20'000);
    ChunkSource chunks(bytes, 100);
    std::istream source(&chunks);
    RyMemStream stream(&source);
    EXPECT_EQ(chunks.getDelivered(), 0U);
    EXPECT_EQ(stream.get(), static_cast<unsigned char>(bytes[0]));
    const std::size_t delivered = chunks.getDelivered();
    EXPECT_GE(delivered, 8192U);
    EXPECT_LT(delivered, 8192U + 100);
    EXPECT_EQ(static_cast<RyMemStreamBuf*>(stream.rdbuf())->getRemains(), 8191U);
    EXPECT_TRUE(stream.seekg(5000));
    EXPECT_EQ(stream.rdbuf()->pubseekoff(0, static_cast<std::ios_base::seekdir>(7)),
              std::streampos(-1));
    EXPECT_EQ(chunks.getDelivered(), delivered);
    EXPECT_EQ(stream.length(), 20'000U);
}

TEST(MemStreamTest, DropsSources) {
    const std::string text = makeText(100);
    RyMemStream atEnd(new CountedStream(text), 64, true);
    auto bad = std::make_unique<CountedStream>("unseen");
    bad->setstate(std::ios_base::badbit);
    atEnd.setSource(bad.release(), true);
    EXPECT_EQ(contentOf(atEnd), text);
    EXPECT_EQ(CountedStream::count, 0);

    RyMemStream removed(new CountedStream(text), 64, true);
    removed.remove();
    EXPECT_EQ(CountedStream::count, 0);
    EXPECT_TRUE(removed.empty());

    CountedStream kept(text);
    { const RyMemStream untouched(new CountedStream(text), 64, true); }
    { RyMemStream(&kept, 64).get(); }
    EXPECT_EQ(CountedStream::count, 1);
    RyMemStream itself;
    itself << "abc";
    itself.setSource(&itself, false);
    EXPECT_EQ(contentOf(itself), "abc");
}

/// Patterns longer than a block, and than what is searched at a time.
TEST(MemStreamTest, FindsLongPatterns) {
    const std::string bytes = makeText(300'000);
    const std::string pattern(bytes.rbegin(), bytes.rbegin() + 150'000);
    for (const std::string& text : {bytes + pattern + bytes, bytes + pattern.substr(1) + bytes}) {
        for (const std::uint64_t growBytes : {64, 8192}) {
            std::istringstream source(text);
            RyMemStream stream(&source, growBytes);
            const std::size_t expected = text.find(pattern);
            const bool found = expected != std::string::npos;
            ASSERT_EQ(stream.searchSeek(pattern.data(), pattern.size()), found);
            const std::size_t place = found ? expected : 0;
            EXPECT_EQ(stream.tellg(), std::streampos(static_cast<std::streamoff>(place)));
            EXPECT_EQ(stream.skipSeek(pattern.data(), pattern.size()), found);
        }
    }
}

TEST(MemStreamTest, SearchingReadsNoFurtherThanNeeded) {
    ChunkSource chunks(std::string(1000, 'a') + "key" + std::string(100'000, 'b'), 50);
    std::istream source(&chunks);
    RyMemStream stream(&source, 512);
    EXPECT_TRUE(stream.searchSeek("key"));
    EXPECT_TRUE(stream.skipSeek("key\0x", 0));
    EXPECT_FALSE(stream.searchSeek(nullptr));
    EXPECT_FALSE(stream.skipSeek(nullptr));
    EXPECT_TRUE(stream.skipSeek(""));
    EXPECT_EQ(stream.tellg(), std::streampos(1003));
    EXPECT_LT(chunks.getDelivered(), 2000U);
}

TEST(MemStreamTest, SequentialReadingHoldsTwoBlocks) {
    const std::string bytes = makeText(100'000);
    std::istringstream source(bytes);
    RyMemStream stream(&source, 64);
    stream.setKeepMemory(false);
    std::string text;
    for (std::size_t piece = 1; stream; piece = piece % 200 + 1) {
        std::string part(piece, '\0');
        stream.read(part.data(), static_cast<std::streamsize>(piece));
        text.append(part, 0, static_cast<std::size_t>(stream.gcount()));
        if (!stream) break;
        EXPECT_LE(stream.tellg(), std::streampos(3 * 64));
        stream.unget();
        ASSERT_EQ(stream.get(), static_cast<unsigned char>(text.back()));
    }
    EXPECT_EQ(text, bytes);
    EXPECT_LE(stream.length(), 3U * 64);
}

/// A put area in a block that is recycled must not be written through.
TEST(MemStreamTest, RecyclingClearsThePutArea) {
    std::istringstream source(makeText(10'000));
    RyMemStream stream(&source, 64);
    stream.setKeepMemory(false);
    stream.put('w');
    std::string text(10'000, '\0');
    stream.read(text.data(), 10'000);
    EXPECT_EQ(text, "w" + makeText(10'000).substr(1));
    stream.put('x');
    EXPECT_TRUE(stream.good());
}

TEST(MemStreamTest, ErasingClearsTheState) {
    RyMemStream stream;
    stream.writeStr("some").setstate(std::ios_base::failbit | std::ios_base::badbit);
    EXPECT_EQ(&stream.erase(), &stream);
    EXPECT_TRUE(stream.good());
    EXPECT_TRUE(stream.isEmpty());
    stream.writeStr("again").writeStr(nullptr).close();
    stream.seekg(0, std::ios_base::end);
    EXPECT_EQ(stream.begin().get(), 'a');
}

TEST(MemStreamTest, CopiesAreIndependent) {
    std::istringstream source(makeText(100));
    RyMemStream stream(&source, 16);
    stream.append(std::string(20, 'a'));
    stream.seekg(5);
    RyMemStream copy(stream);
    // What was read of the source is in the copy; the rest stays with the original.
    EXPECT_EQ(copy.length(), 32U);
    EXPECT_EQ(copy.tellg(), std::streampos(5));
    copy.put('c');
    stream.put('s');
    EXPECT_EQ(contentOf(copy).substr(18, 3), "aac");
    EXPECT_EQ(contentOf(stream).substr(18, 3), "aas");
    EXPECT_EQ(stream.length(), 100U);
    std::istringstream ended("abc");
    ended.setstate(std::ios_base::eofbit);
    EXPECT_EQ(RyMemStream().copyStream(ended, 3), 0U);
}

TEST(MemStreamTest, HandedOutBlocksStay) {
    const std::string bytes = makeText(50'000);
    std::istringstream source(bytes);
    RyMemStream stream(&source, 1000);
    stream.seekg(500);
    std::vector<std::string_view> parts;
    const char* start = nullptr;
    while (const std::size_t count = stream.getBuffer(start)) parts.emplace_back(start, count);
    stream.seekp(0, std::ios_base::end);
    stream.append(makeText(100'000));
    std::string text;
    for (const std::string_view part : parts) text += part;
    EXPECT_EQ(text, bytes.substr(500));
}

/// Large streams take their blocks from other memory than small ones.
TEST(MemStreamTest, LargeStreams) {
    const std::string bytes = makeText(20'000'000);
    RyMemStream stream;
    std::string expected;
    for (int round = 0; round < 3; ++round) {
        for (std::size_t at = 0; at < bytes.size(); at += 500'000)
            stream.append(bytes.substr(at, 500'000));
        expected += bytes;
        ASSERT_TRUE(contentOf(stream) == expected) << round;
        stream.seekg(13'000'000);
        stream.abandonBuffer();
        expected.erase(0, 13'000'000 - 13'000'000 % 8192);
        RyMemStream copy(stream);
        ASSERT_TRUE(contentOf(copy) == expected) << round;
        stream.trim(expected.size() - 3'000'000);
        expected.resize(expected.size() - 3'000'000);
        stream.seekp(0, std::ios_base::end);
    }
    stream.remove();
    stream.append(bytes);
    EXPECT_TRUE(contentOf(stream) == bytes);
}

}  // namespace
}  // namespace RynCommon
