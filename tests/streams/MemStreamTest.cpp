// Memory streams: blocks and their ends, sources, seeking and searching, cutting, copies.
#include <RynCommon/RyMemStream.h>

#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "tests/streams/ByteSources.h"

namespace RynCommon {
namespace {

constexpr std::ios_base::openmode IN = std::ios_base::in;
constexpr std::ios_base::openmode OUT = std::ios_base::out;
const std::streampos FAILED(-1);

std::string makeBytes(std::size_t size) {
    std::string text(size, '\0');
    for (std::size_t i = 0; i < size; ++i) text[i] = static_cast<char>(i * 7 + i / 251);
    return text;
}

std::string contentOf(RyMemStream& stream) {
    std::string text;
    stream.appendToString(text);
    return text;
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

/// Counts the sources that are alive.
class CountedSource : public std::istringstream {
public:
    CountedSource(const std::string& text, int& alive) : std::istringstream(text), alive_(alive) {
        ++alive_;
    }
    ~CountedSource() override { --alive_; }

private:
    int& alive_;
};

TEST(MemStreamTest, LastByteOfABlockGoesThroughOverflow) {
    Probe buffer(0);
    EXPECT_EQ(buffer.getGrowBytes(), 8192U);
    buffer.sputc('a');
    EXPECT_EQ(buffer.overflows, 1);
    EXPECT_EQ(buffer.getPutRoom(), 8190);
    for (int i = 1; i < 8191; ++i) buffer.sputc('b');
    EXPECT_EQ(buffer.overflows, 1);
    EXPECT_EQ(buffer.getPutRoom(), 0);
    EXPECT_EQ(buffer.length(), 8191U);
    buffer.sputc('c');
    EXPECT_EQ(buffer.overflows, 2);
    EXPECT_EQ(buffer.getPutRoom(), 8191);
    EXPECT_EQ(buffer.length(), 8192U);
    std::string text;
    buffer.appendToString(text);
    EXPECT_EQ(text, "a" + std::string(8190, 'b') + "c");
    EXPECT_EQ(buffer.getIndex(nullptr), ~std::uint64_t{0});
    EXPECT_EQ(buffer.getIndex(text.data()), ~std::uint64_t{0});
}

TEST(MemStreamTest, ReadsSourcesOnDemandAndOneAfterTheOther) {
    const std::string bytes = makeBytes(20'000);
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
    EXPECT_EQ(chunks.getDelivered(), delivered);
    EXPECT_EQ(stream.rdbuf()->pubseekoff(-1, std::ios_base::beg, IN), FAILED);
    EXPECT_EQ(stream.rdbuf()->pubseekoff(INT64_MAX, std::ios_base::cur, IN), FAILED);
    EXPECT_EQ(chunks.getDelivered(), delivered);
    EXPECT_EQ(stream.length(), 20'000U);
    EXPECT_EQ(stream.tellg(), std::streampos(5000));

    std::istringstream second("second");
    std::istringstream third("third");
    stream.setSource(nullptr, true);
    stream.setSource(&second, false);
    stream.setSource(&third, false);
    EXPECT_EQ(contentOf(stream), bytes + "secondthird");
    stream.seekg(-5, std::ios_base::end);
    std::string word;
    stream >> word;
    EXPECT_EQ(word, "third");
}

TEST(MemStreamTest, DropsSources) {
    int alive = 0;
    const std::string text = makeBytes(100);
    RyMemStream atEnd(new CountedSource(text, alive), 64, true);
    EXPECT_EQ(atEnd.length(), 100U);
    EXPECT_EQ(alive, 0);

    RyMemStream broken(new CountedSource(text, alive), 64, true);
    auto bad = std::make_unique<CountedSource>("unseen", alive);
    bad->setstate(std::ios_base::badbit);
    broken.setSource(bad.release(), true);
    auto throwing = std::make_unique<CountedSource>("seen", alive);
    throwing->exceptions(std::ios_base::failbit | std::ios_base::eofbit);
    broken.setSource(throwing.release(), true);
    EXPECT_EQ(contentOf(broken), text + "seen");
    EXPECT_EQ(alive, 0);

    RyMemStream removed(new CountedSource(text, alive), 64, true);
    removed.remove();
    EXPECT_EQ(alive, 0);
    EXPECT_TRUE(removed.empty());

    CountedSource kept(text, alive);
    { const RyMemStream untouched(new CountedSource(text, alive), 64, true); }
    { RyMemStream(&kept, 64).get(); }
    EXPECT_EQ(alive, 1);

    RyMemStream itself;
    itself << "abc";
    itself.setSource(&itself, false);
    EXPECT_EQ(contentOf(itself), "abc");
}

TEST(MemStreamTest, WritingOverPendingSources) {
    const std::string bytes = makeBytes(1000);
    std::istringstream source(bytes);
    RyMemStream stream(&source, 64);
    const std::string written(200, 'w');
    stream.append(written.substr(0, 64)) += written.substr(64);
    EXPECT_EQ(contentOf(stream), written + bytes.substr(200));
    EXPECT_EQ(stream.tellp(), std::streampos(200));
    EXPECT_EQ(stream.get(), 'w');
}

TEST(MemStreamTest, SeeksInsideOfTheDataOnly) {
    std::istringstream source(makeBytes(128));
    RyMemStream stream(&source, 64);
    const struct {
        const char* what;
        std::streamoff offset;
        std::ios_base::seekdir way;
        std::ios_base::openmode which;
        std::streamoff expected;
    } rows[] = {
        {"into pending data", 100, std::ios_base::beg, IN, 100},
        {"on from there", 20, std::ios_base::cur, IN, 120},
        {"write position is its own", 5, std::ios_base::cur, OUT, 5},
        {"both, from the write position", 10, std::ios_base::cur, IN | OUT, 15},
        {"the length, a block's end", 128, std::ios_base::beg, IN | OUT, 128},
        {"past it", 129, std::ios_base::beg, IN, -1},
        {"the end", 0, std::ios_base::end, OUT, 128},
        {"past the end", 1, std::ios_base::end, IN, -1},
        {"from the end", -128, std::ios_base::end, IN, 0},
        {"before the start", -129, std::ios_base::end, IN, -1},
        {"before the start", -1, std::ios_base::cur, IN, -1},
        {"overflow", INT64_MAX, std::ios_base::end, IN, -1},
        {"underflow", INT64_MIN, std::ios_base::cur, IN, -1},
        {"no such way", 0, static_cast<std::ios_base::seekdir>(7), IN, -1},
        {"failed seeks moved nothing", 0, std::ios_base::cur, IN, 0},
    };
    for (const auto& row : rows)
        EXPECT_EQ(stream.rdbuf()->pubseekoff(row.offset, row.way, row.which),
                  std::streampos(row.expected))
            << row.what;
}

TEST(MemStreamTest, LineEnds) {
    const struct {
        std::string text;
        std::streamoff expected;
    } rows[] = {
        {"ab\r\n\r\ncd", 6},
        {"abcd", 4},
        {"\nx", 1},
        {"ab\r", 3},
        {"", 0},
        {"\n\r", 2},
        {"abcdefghij\nk", 11},
        {std::string(70, '\n') + "z", 70},
        {std::string(100, 'a') + "\r\n" + std::string(40, 'b'), 102},
    };
    for (const auto& row : rows) {
        for (const std::uint64_t growBytes : {1, 2, 3, 4, 64, 8192}) {
            std::istringstream source(row.text);
            RyMemStream stream(&source, growBytes);
            stream.seekEOL();
            EXPECT_EQ(stream.tellg(), std::streampos(row.expected)) << row.text << growBytes;
        }
    }
}

TEST(MemStreamTest, SearchesAcrossBlocksAndSources) {
    // The long patterns are longer than a block, and than what is searched at a time.
    const std::string bytes = makeBytes(300'000);
    const std::string needle("n\0edle\0", 7);
    const std::string longNeedle(bytes.rbegin(), bytes.rbegin() + 150'000);
    const struct {
        const char* what;
        std::string text, pattern;
    } rows[] = {
        {"inside a block", "abc" + needle, needle},
        {"across two blocks", std::string(60, 'a') + needle + "a", needle},
        {"across many", std::string(60, 'a') + bytes.substr(0, 1000), bytes.substr(0, 900)},
        {"begins with its own beginning", "aaaaaab", "aaab"},
        {"longer than the data", "abc", "abcd"},
        {"longer than what is searched at a time", bytes + longNeedle + bytes, longNeedle},
        {"nearly", bytes + longNeedle.substr(1) + bytes, longNeedle},
        {"ends with its beginning", bytes + "abcabcab", "abcabd"},
        {"one byte", bytes + "\x01", bytes.substr(200'000, 1)},
    };
    for (const auto& row : rows) {
        for (const std::uint64_t growBytes : {1, 16, 64, 8192}) {
            if (growBytes < 16 && row.text.size() > 10'000) continue;
            std::istringstream first(row.text.substr(0, row.text.size() / 2));
            std::istringstream second(row.text.substr(row.text.size() / 2));
            RyMemStream stream(&first, growBytes);
            stream.get();
            stream.setSource(&second, false);
            const std::size_t expected = row.text.find(row.pattern, 1);
            const bool found = stream.searchSeek(row.pattern.data(), row.pattern.size());
            ASSERT_EQ(found, expected != std::string::npos) << row.what << growBytes;
            ASSERT_EQ(stream.tellg(),
                      std::streampos(found ? static_cast<std::streamoff>(expected) : 1))
                << row.what << growBytes;
            if (!found) continue;
            EXPECT_FALSE(stream.skipSeek((row.pattern + "\x02").c_str(), row.pattern.size() + 1));
            EXPECT_TRUE(stream.skipSeek(row.pattern.data(), row.pattern.size()));
            EXPECT_EQ(stream.tellg(),
                      std::streampos(static_cast<std::streamoff>(expected + row.pattern.size())));
        }
    }
}

TEST(MemStreamTest, SearchingReadsNoFurtherThanNeeded) {
    ChunkSource chunks(std::string(1000, 'a') + "key" + std::string(100'000, 'b'), 50);
    std::istream source(&chunks);
    RyMemStream stream(&source, 512);
    EXPECT_TRUE(stream.searchSeek("key"));
    EXPECT_LT(chunks.getDelivered(), 2000U);
    EXPECT_TRUE(stream.skipSeek("key\0x", 0));
    EXPECT_EQ(stream.tellg(), std::streampos(1003));
    EXPECT_FALSE(stream.searchSeek(nullptr));
    EXPECT_FALSE(stream.skipSeek(nullptr));
    EXPECT_FALSE(stream.searchSeek(""));
    EXPECT_TRUE(stream.skipSeek(""));
    EXPECT_EQ(stream.tellg(), std::streampos(1003));
    EXPECT_LT(chunks.getDelivered(), 2000U);
}

TEST(MemStreamTest, OpenTypeChecksum) {
    const struct {
        std::string bytes;
        std::uint32_t expected;
    } rows[] = {
        {"", 0},
        {std::string("\0\1\2\3\4", 5), 0x04010203},
        {"\xFF", 0xFF000000},
        {std::string("\xFF\xFF\xFF\xFF\0\0\0\2", 8), 1},
        {std::string("\1\2\3\4\5\6\7", 7), 0x06080A04},
    };
    for (const auto& row : rows) {
        for (const std::uint64_t growBytes : {1, 3, 4, 6, 8, 8192}) {
            std::istringstream source(row.bytes);
            RyMemStream stream(&source, growBytes);
            EXPECT_EQ(stream.calcOTFTableChecksum(), row.expected) << growBytes;
            EXPECT_EQ(contentOf(stream), row.bytes);
        }
    }
}

TEST(MemStreamTest, StepsBackAcrossBlocks) {
    RyMemStream stream(nullptr, 4);
    EXPECT_EQ(stream.rdbuf()->sungetc(), EOF);
    stream << "abcdefgh";
    EXPECT_EQ(stream.rdbuf()->sungetc(), EOF);
    stream.seekg(4);
    EXPECT_EQ(stream.rdbuf()->sputbackc('z'), 'z');
    EXPECT_EQ(stream.get(), 'd');
    EXPECT_EQ(stream.get(), 'e');
    stream.unget();
    stream.unget();
    EXPECT_EQ(stream.tellg(), std::streampos(3));
    EXPECT_EQ(stream.get(), 'd');
    for (int i = 0; i < 4; ++i) EXPECT_TRUE(stream.unget());
    EXPECT_FALSE(stream.unget());
    EXPECT_EQ(contentOf(stream), "abcdefgh");
}

TEST(MemStreamTest, Trims) {
    const std::string bytes = makeBytes(20);
    for (std::size_t length = 0; length <= 21; ++length) {
        for (const std::streamoff position : {0, 3, 8, 11, 16, 20}) {
            std::istringstream source(bytes);
            RyMemStream stream(&source, 8);
            stream.seekg(position);
            stream.seekp(position);
            stream.trim(length);
            const std::streampos expected(std::min(position, static_cast<std::streamoff>(length)));
            EXPECT_EQ(contentOf(stream), bytes.substr(0, length));
            EXPECT_EQ(stream.tellg(), expected) << length;
            EXPECT_EQ(stream.tellp(), expected) << length;
            stream.seekp(0, std::ios_base::end);
            stream.append("end");
            EXPECT_EQ(contentOf(stream), bytes.substr(0, length) + "end") << length;
        }
    }
}

TEST(MemStreamTest, AbandonedBlocksNoLongerCount) {
    const std::string bytes = makeBytes(30);
    RyMemStream stream(nullptr, 8);
    stream.append(bytes);
    stream.abandonBuffer();
    EXPECT_EQ(stream.length(), 30U);
    stream.seekg(18);
    stream.seekp(10);
    stream.abandonBuffer();
    EXPECT_EQ(contentOf(stream), bytes.substr(16));
    EXPECT_EQ(stream.tellg(), std::streampos(2));
    // The block that was written is gone, and writing begins anew.
    EXPECT_EQ(stream.tellp(), std::streampos(0));
    stream.append("xy");
    EXPECT_EQ(contentOf(stream), "xy" + bytes.substr(18));
    EXPECT_EQ(stream.get(), static_cast<unsigned char>(bytes[18]));
}

TEST(MemStreamTest, SequentialReadingHoldsTwoBlocks) {
    const std::string bytes = makeBytes(100'000);
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
    std::istringstream source(makeBytes(10'000));
    RyMemStream stream(&source, 64);
    stream.setKeepMemory(false);
    stream.put('w');
    std::string text(10'000, '\0');
    stream.read(text.data(), 10'000);
    EXPECT_EQ(text, "w" + makeBytes(10'000).substr(1));
    stream.put('x');
    EXPECT_TRUE(stream.good());
}

TEST(MemStreamTest, RemovingLeavesAnEmptyStream) {
    RyMemStream stream(nullptr, 16);
    stream.append(makeBytes(100));
    stream.seekg(90);
    stream.setstate(std::ios_base::failbit | std::ios_base::badbit);
    EXPECT_EQ(&stream.erase(), &stream);
    EXPECT_TRUE(stream.good());
    EXPECT_TRUE(stream.isEmpty());
    EXPECT_EQ(stream.get(), EOF);
    stream.clear();
    stream.writeStr("again").writeStr(nullptr).close();
    EXPECT_EQ(stream.size(), 5U);
    stream.seekg(0, std::ios_base::end);
    EXPECT_EQ(stream.get(), EOF);
    EXPECT_EQ(stream.begin().get(), 'a');
}

TEST(MemStreamTest, BlockSizeChangesWithoutDataOnly) {
    Probe buffer(16);
    buffer.setGrowBytes(0);
    EXPECT_EQ(buffer.getGrowBytes(), 8192U);
    buffer.sputn("abc", 3);
    buffer.setGrowBytes(5);
    EXPECT_EQ(buffer.getGrowBytes(), 8192U);
    buffer.remove();
    buffer.setGrowBytes(100'000);
    EXPECT_EQ(buffer.getGrowBytes(), 100'000U);
    const std::string bytes = makeBytes(150'000);
    buffer.sputn(bytes.data(), 150'000);
    std::string text;
    buffer.appendToString(text);
    EXPECT_EQ(text, bytes);
}

TEST(MemStreamTest, CopiesAreIndependent) {
    std::istringstream source(makeBytes(100));
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
    RyMemStream unflushed(nullptr, 16);
    unflushed << "abc";
    RyMemStream last(unflushed);
    last << "d";
    EXPECT_EQ(contentOf(last), "abcd");
    RyMemStream nothing((RyMemStream()));
    EXPECT_TRUE(nothing.empty());
}

TEST(MemStreamTest, CopiesFromStreams) {
    for (const std::size_t count : {0U, 1U, 15U, 16U, 17U, 32U, 99U, 100U, 1000U}) {
        std::istringstream source(makeBytes(100));
        RyMemStream stream(nullptr, 16);
        stream << "ab";
        const std::size_t copied = stream.copyStream(source, count);
        EXPECT_EQ(copied, std::min<std::size_t>(count, 100));
        EXPECT_EQ(contentOf(stream), "ab" + makeBytes(100).substr(0, count));
        EXPECT_EQ(stream.tellp(), std::streampos(static_cast<std::streamoff>(copied + 2)));
        // The rest, as far as it goes.
        EXPECT_EQ(stream.copyStream(source, 5), std::min<std::size_t>(5, 100 - copied));
    }
    std::istringstream ended("abc");
    ended.setstate(std::ios_base::eofbit);
    EXPECT_EQ(RyMemStream().copyStream(ended, 3), 0U);
}

TEST(MemStreamTest, HandedOutBlocksStay) {
    const std::string bytes = makeBytes(50'000);
    std::istringstream source(bytes);
    RyMemStream stream(&source, 1000);
    stream.seekg(500);
    std::vector<std::string_view> parts;
    const char* start = nullptr;
    while (const std::size_t count = stream.getBuffer(start)) parts.emplace_back(start, count);
    stream.append(std::string(400, 'w'));
    stream.seekp(0, std::ios_base::end);
    stream.append(makeBytes(100'000));
    std::string text;
    for (const std::string_view part : parts) text += part;
    EXPECT_EQ(text, bytes.substr(500));
    EXPECT_EQ(parts.size(), 50U);
}

/// Large streams take their blocks from other memory than small ones.
TEST(MemStreamTest, LargeStreams) {
    const std::string bytes = makeBytes(20'000'000);
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
        stream.trim(expected.size() - 3'000'001);
        expected.resize(expected.size() - 3'000'001);
        stream.seekp(0, std::ios_base::end);
    }
    stream.remove();
    stream.append(bytes);
    EXPECT_TRUE(contentOf(stream) == bytes);
}

}  // namespace
}  // namespace RynCommon
