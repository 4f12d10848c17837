// Writes compound files for tests.
//
// Sectors are given out in ascending order: streams first, then mini stream, mini FAT, directory,
// FAT and DIFAT. With `scattered` the sectors of each stream are given in a mixed order.
#include "tests/resources/OleWriter.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace RynCommon::test {

namespace {

constexpr std::int32_t END = -2;
constexpr std::int32_t FAT_SECTOR = -3;
constexpr std::int32_t DIFAT_SECTOR = -4;
constexpr std::size_t HEADER_ENTRIES = 109;

std::size_t ceilDivide(std::size_t a, std::size_t b) {
    return (a + b - 1) / b;
}

void link(const Sectors& chain, Sectors& table) {
    for (std::size_t i = 0; i < chain.size(); ++i)
        table[chain[i]] = i + 1 < chain.size() ? chain[i + 1] : END;
}

std::int32_t startOf(const Sectors& chain) {
    return chain.empty() ? END : chain[0];
}

}  // namespace

void ByteSink::set(std::size_t offset, std::size_t value, std::size_t size) {
    for (std::size_t i = 0; i < size; ++i) {
        const std::size_t at = offset + (bigEndian_ ? size - 1 - i : i);
        bytes.at(at) = static_cast<char>(value >> 8 * i & 0xFF);
    }
}

std::size_t OleImage::entryOffset(int id) const {
    return offsetIn(directory, id, 128);
}

std::size_t OleImage::offsetIn(const Sectors& table, std::size_t index, std::size_t size) const {
    const std::size_t perSector = (std::size_t{1} << shift) / size;
    return offsetOf(table.at(index / perSector)) + index % perSector * size;
}

OleWriter::OleWriter(const Options& options) : options_(options), entries_(1) {
    entries_[0].name = u"Root Entry";
    entries_[0].type = 5;
}

int OleWriter::add(int parent, Entry entry) {
    entries_.push_back(std::move(entry));
    const int id = static_cast<int>(entries_.size()) - 1;
    entries_[parent].children.push_back(id);
    return id;
}

int OleWriter::addStorage(int parent, const std::u16string& name) {
    return add(parent, {.name = name, .type = 1});
}

int OleWriter::addStream(int parent, const std::u16string& name, std::string content) {
    return add(parent, {.name = name, .type = 2, .content = std::move(content)});
}

int OleWriter::linkBalanced(const std::vector<int>& ids, std::size_t from, std::size_t to) {
    if (from == to) return -1;
    const std::size_t middle = from + (to - from) / 2;
    Entry& entry = entries_[ids[middle]];
    entry.left = linkBalanced(ids, from, middle);
    entry.right = linkBalanced(ids, middle + 1, to);
    return ids[middle];
}

void OleWriter::linkSiblings(Entry& parent) {
    std::vector<int> ids = parent.children;
    if (options_.siblings == Siblings::BALANCED) {
        std::sort(ids.begin(), ids.end(), [this](int a, int b) {
            const std::u16string& first = entries_[a].name;
            const std::u16string& second = entries_[b].name;
            return std::pair(first.size(), first) < std::pair(second.size(), second);
        });
        parent.child = linkBalanced(ids, 0, ids.size());
        return;
    }
    const bool toTheRight = options_.siblings == Siblings::RIGHT_CHAIN;
    for (std::size_t i = ids.size(); i-- > 0; parent.child = ids[i])
        (toTheRight ? entries_[ids[i]].right : entries_[ids[i]].left) = parent.child;
}

void OleWriter::scatter(Sectors& numbers) {
    for (std::size_t i = numbers.size(); i > 1; --i) {
        random_ = random_ * 1664525 + 1013904223;
        std::swap(numbers[i - 1], numbers[(random_ >> 8) % i]);
    }
}

Sectors OleWriter::takeSectors(std::size_t count) {
    Sectors sectors(count);
    for (std::int32_t& sector : sectors) sector = static_cast<std::int32_t>(used_++);
    if (options_.scattered) scatter(sectors);
    fat_.resize(std::max(fat_.size(), used_), -1);
    return sectors;
}

Sectors OleWriter::storeSectors(OleImage& image, const std::string& data) {
    const Sectors chain = takeSectors(ceilDivide(data.size(), std::size_t{1} << options_.shift));
    link(chain, fat_);
    store(image, chain, data);
    return chain;
}

Sectors OleWriter::storeMinis(const std::string& data) {
    const std::size_t size = std::size_t{1} << options_.miniShift;
    Sectors chain(ceilDivide(data.size(), size));
    std::iota(chain.begin(), chain.end(), static_cast<std::int32_t>(miniFat_.size()));
    miniFat_.resize(miniFat_.size() + chain.size());
    if (options_.scattered) scatter(chain);
    link(chain, miniFat_);
    miniStream_.resize(miniFat_.size() * size);
    for (std::size_t i = 0; i < chain.size(); ++i) {
        const std::string piece = data.substr(i * size, size);
        miniStream_.replace(chain[i] * size, piece.size(), piece);
    }
    return chain;
}

void OleWriter::store(OleImage& image, const Sectors& sectors, const std::string& data) {
    const std::size_t size = std::size_t{1} << options_.shift;
    std::string& bytes = image.sink.bytes;
    for (std::size_t i = 0; i < sectors.size(); ++i) {
        const std::size_t offset = image.offsetOf(sectors[i]);
        if (bytes.size() < offset + size) bytes.resize(offset + size);
        if (i * size < data.size())
            bytes.replace(offset, std::min(size, data.size() - i * size), data, i * size, size);
    }
}

void OleWriter::writeStreams(OleImage& image) {
    image.chains.resize(entries_.size());
    for (const bool mini : {false, true}) {
        for (std::size_t id = 0; id < entries_.size(); ++id) {
            Entry& entry = entries_[id];
            if (entry.type != 2 || (entry.content.size() < options_.cutoff) != mini) continue;
            image.chains[id] =
                mini ? storeMinis(entry.content) : storeSectors(image, entry.content);
            entry.start = startOf(image.chains[id]);
        }
    }
    image.miniStream = storeSectors(image, miniStream_);
    entries_[0].start = startOf(image.miniStream);
    ByteSink table(options_.bigEndian);
    for (const std::int32_t next : miniFat_) table.put32(next);
    const std::size_t sector = std::size_t{1} << options_.shift;
    table.bytes.resize(ceilDivide(table.bytes.size(), sector) * sector, '\xFF');
    image.miniFat = storeSectors(image, table.bytes);
}

void OleWriter::writeDirectory(OleImage& image) {
    ByteSink sink(options_.bigEndian);
    // What is left of the last sector are entries that are not used.
    const std::size_t perSector = std::size_t{1} << (options_.shift - 7);
    entries_.resize(ceilDivide(entries_.size(), perSector) * perSector);
    for (const Entry& entry : entries_) {
        const std::size_t start = sink.bytes.size();
        for (const char16_t unit : entry.name) sink.put16(unit);
        sink.bytes.resize(start + 64);
        sink.put16(entry.type == 0 ? 0 : 2 * (entry.name.size() + 1));
        sink.put(entry.type, 1);
        sink.put(1, 1);
        for (const int id : {entry.left, entry.right, entry.child}) sink.put32(id);
        for (int i = 0; i < 16; ++i) sink.put(0xA0 + i, 1);
        sink.put32(0x12345678);
        sink.put64(0x01D0000000000001);
        sink.put64(0x01D0000000000002);
        sink.put32(entry.start);
        sink.put32(entry.type == 5 ? miniStream_.size() : entry.content.size());
        sink.put32(0);
    }
    image.directory = storeSectors(image, sink.bytes);
}

void OleWriter::writeTables(OleImage& image) {
    const std::size_t perSector = (std::size_t{1} << options_.shift) / 4;
    const std::size_t tables = used_;
    std::size_t fatCount = 0;
    std::size_t difatCount = 0;
    for (std::size_t last = 1; last != fatCount + difatCount;) {
        last = fatCount + difatCount;
        fatCount = std::max(options_.leastFatSectors, ceilDivide(tables + last, perSector));
        const std::size_t further = fatCount > HEADER_ENTRIES ? fatCount - HEADER_ENTRIES : 0;
        difatCount = ceilDivide(further, perSector - 1);
    }
    image.fat = takeSectors(fatCount);
    image.difat = takeSectors(difatCount);
    for (const std::int32_t sector : image.fat) fat_[sector] = FAT_SECTOR;
    for (const std::int32_t sector : image.difat) fat_[sector] = DIFAT_SECTOR;
    fat_.resize(fatCount * perSector, -1);
    ByteSink table(options_.bigEndian);
    for (const std::int32_t next : fat_) table.put32(next);
    store(image, image.fat, table.bytes);

    ByteSink list(options_.bigEndian);
    std::size_t index = HEADER_ENTRIES;
    for (std::size_t i = 0; i < difatCount; ++i) {
        for (std::size_t k = 0; k + 1 < perSector; ++k, ++index)
            list.put32(index < fatCount ? image.fat[index] : -1);
        list.put32(i + 1 < difatCount ? image.difat[i + 1] : END);
    }
    store(image, image.difat, list.bytes);
}

void OleWriter::writeHeader(OleImage& image) {
    ByteSink header(options_.bigEndian);
    header.bytes = "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1";
    header.bytes.resize(24);
    header.put16(0x3E);
    header.put16(options_.shift == 12 ? 4 : 3);
    header.put16(0xFFFE);
    header.put16(options_.shift);
    header.put16(options_.miniShift);
    header.bytes.resize(44);
    header.put32(image.fat.size());
    header.put32(startOf(image.directory));
    header.put32(0);
    header.put32(options_.cutoff);
    header.put32(startOf(image.miniFat));
    header.put32(image.miniFat.size());
    header.put32(startOf(image.difat));
    header.put32(image.difat.size());
    for (std::size_t i = 0; i < HEADER_ENTRIES; ++i)
        header.put32(i < image.fat.size() ? image.fat[i] : -1);
    image.sink.bytes.replace(0, 512, header.bytes);
}

OleImage OleWriter::write() {
    OleImage image(options_.bigEndian);
    image.shift = options_.shift;
    image.sink.bytes.resize(512);
    for (Entry& entry : entries_) linkSiblings(entry);
    writeStreams(image);
    writeDirectory(image);
    writeTables(image);
    writeHeader(image);
    return image;
}

}  // namespace RynCommon::test
