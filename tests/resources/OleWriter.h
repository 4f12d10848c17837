// Writes compound files for tests, with every freedom of the format, and breaks them on purpose.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace RynCommon::test {

/// Numbers of sectors or mini sectors: a chain in order, or what follows each.
using Sectors = std::vector<std::int32_t>;

/// Appends and overwrites integers of one byte order.
class ByteSink {
public:
    explicit ByteSink(bool bigEndian) : bigEndian_(bigEndian) {}

    void put16(std::size_t value) { put(value, 2); }
    void put32(std::size_t value) { put(value, 4); }
    void put64(std::size_t value) { put(value, 8); }
    void put(std::size_t value, std::size_t size) {
        bytes.resize(bytes.size() + size);
        set(bytes.size() - size, value, size);
    }
    /// The low `size` bytes of `value` at `offset`.
    void set(std::size_t offset, std::size_t value, std::size_t size);
    void set32(std::size_t offset, std::int64_t value) { set(offset, value, 4); }
    void pad(std::size_t multiple) {
        bytes.resize((bytes.size() + multiple - 1) / multiple * multiple);
    }

    std::string bytes;

private:
    bool bigEndian_;
};

/// A written file, with what is needed to find the places in it that a test breaks.
struct OleImage {
    explicit OleImage(bool bigEndian) : sink(bigEndian) {}

    const std::string& bytes() const { return sink.bytes; }
    std::size_t offsetOf(std::int32_t sector) const {
        return (static_cast<std::size_t>(sector) << shift) + 512;
    }
    std::size_t entryOffset(int id) const;
    /// Overwrites what follows a sector in the FAT, a mini sector in the mini FAT.
    void setNext(std::int32_t sector, std::int32_t next) {
        sink.set32(offsetIn(fat, sector, 4), next);
    }
    void setNextMini(std::int32_t mini, std::int32_t next) {
        sink.set32(offsetIn(miniFat, mini, 4), next);
    }

    ByteSink sink;
    unsigned shift = 9;
    Sectors fat, difat, miniFat, directory, miniStream;
    /// Those of each entry's stream.
    std::vector<Sectors> chains;

private:
    /// Of a table's or the directory's entry, each of `size` bytes.
    std::size_t offsetIn(const Sectors& table, std::size_t index, std::size_t size) const;
};

class OleWriter {
public:
    /// Trees of siblings: balanced in the format's order of names, or chains in the order of
    /// addition.
    enum class Siblings { BALANCED, RIGHT_CHAIN, LEFT_CHAIN };
    struct Options {
        unsigned shift = 9;
        unsigned miniShift = 6;
        bool bigEndian = false;
        std::uint32_t cutoff = 4096;
        std::size_t leastFatSectors = 0;
        /// Sectors and mini sectors of the streams lie in a mixed order.
        bool scattered = false;
        Siblings siblings = Siblings::BALANCED;
    };

    OleWriter() : OleWriter(Options()) {}
    explicit OleWriter(const Options& options);

    /// Ids; the root's is 0.
    int addStorage(int parent, const std::u16string& name);
    int addStream(int parent, const std::u16string& name, std::string content);
    OleImage write();

private:
    struct Entry {
        std::u16string name = {};
        int type = 0;
        std::string content = {};
        std::vector<int> children = {};
        int left = -1, right = -1, child = -1;
        std::int32_t start = -2;
    };

    int add(int parent, Entry entry);
    void linkSiblings(Entry& parent);
    int linkBalanced(const std::vector<int>& ids, std::size_t from, std::size_t to);
    Sectors takeSectors(std::size_t count);
    Sectors storeSectors(OleImage& image, const std::string& data);
    Sectors storeMinis(const std::string& data);
    void scatter(Sectors& numbers);
    void writeStreams(OleImage& image);
    void writeDirectory(OleImage& image);
    void writeTables(OleImage& image);
    void writeHeader(OleImage& image);
    void store(OleImage& image, const Sectors& sectors, const std::string& data);

    Options options_;
    std::vector<Entry> entries_;
    std::size_t used_ = 0;  ///< sectors given out
    Sectors fat_, miniFat_;
    std::string miniStream_;
    std::uint32_t random_ = 1;
};

}  // namespace RynCommon::test
