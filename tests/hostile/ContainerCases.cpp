// Archives, compressed data, compound files and property sets that lie about themselves.
//
// A family of damaged inputs counts as one case: all truncations of a small sound file, say. What
// its members add up to is what time is allowed for.
#include <RynCommon/OleCompFile.h>
#include <RynCommon/OleSummaryInformation.h>
#include <RynCommon/RyGzipStream.h>
#include <RynCommon/RyInflaterStream.h>
#include <RynCommon/RyValue.h>
#include <RynCommon/RyZipFile.h>

#include <memory>
#include <sstream>

#include "tests/hostile/Proof.h"
#include "tests/resources/OleWriter.h"
#include "tests/resources/PropertySetWriter.h"
#include "tests/resources/ZipWriter.h"
#include "tests/streams/DeflateData.h"

namespace hostile {

namespace {

using namespace RynCommon;
using test::OleImage;
using test::OleWriter;

constexpr std::uint32_t EXTREMES[] = {0,          1,          0x7FFF,     0xFFFF,
                                      0x7FFFFFFF, 0x80000000, 0xFFFFFFFE, 0xFFFFFFFF};

using Reader = std::function<std::size_t(const std::string&)>;

/// Reads to the end without keeping it; the number of bytes.
std::size_t drain(std::istream* in) {
    if (in == nullptr) return 0;
    char piece[16384];
    std::size_t count = 0;
    do {
        in->read(piece, sizeof piece);
        count += static_cast<std::size_t>(in->gcount());
    } while (in->good());
    return count;
}

// Readers.

std::size_t listZip(const std::string& bytes, bool directory, bool members) {
    RyZipFile zip;
    zip.setUseCentralDirectory(directory);
    zip.setVerify(true);
    zip.open(new std::istringstream(bytes), true);
    std::size_t count = 0;
    for (unsigned i = 0; members && i < zip.getFileEntryCount(); ++i)
        count += drain(zip.getFileEntry(i)->getUncompressedStream(false));
    zip.detectOOXDocument();
    return count;
}

std::size_t readZip(const std::string& bytes) {
    return bytes.size() + listZip(bytes, false, true) + listZip(bytes, true, true);
}

std::size_t listOnly(const std::string& bytes) {
    listZip(bytes, false, false);
    listZip(bytes, true, false);
    return 0;
}

std::size_t readGzip(const std::string& bytes) {
    std::istringstream source(bytes);
    RyGzipStream in(source);
    return bytes.size() + drain(&in);
}

std::size_t readDeflate(const std::string& bytes) {
    RyInflaterStream in(bytes.data(), bytes.size(), false);
    return bytes.size() + drain(&in);
}

std::size_t readStorage(OleCompFile& file) {
    std::size_t count = 0;
    for (std::int32_t id = 0; id < file.getDirCount(); ++id) {
        OleStream stream(&file);
        if (!stream.GetStreamChain(id)) continue;
        RyOleStream in(&stream);
        count += drain(&in);
    }
    return count;
}

std::size_t readCompound(const std::string& bytes) {
    std::istringstream source(bytes);
    JZStreamIOobj io(source);
    OleCompFile file;
    std::size_t count = bytes.size();
    if (file.OLEopen(&io)) count += readStorage(file);
    OleCompFile::detectOLEDocument(source);
    return count;
}

std::size_t readProperties(const std::string& bytes) {
    OleWriter writer;
    writer.addStream(0, u"\u0005DocumentSummaryInformation", bytes);
    std::istringstream source(writer.write().bytes());
    JZStreamIOobj io(source);
    OleCompFile file;
    if (!file.OLEopen(&io)) return 0;
    OleSummaryInformation information;
    information.initDocumentSummaryInformation(&file);
    RyValue value;
    for (unsigned long id = 0; id < 32; ++id) information.getPropertyAny(id, value);
    std::vector<UnicodeString> links;
    information.getHyperLinks(links);
    return bytes.size() + source.view().size();
}

// Families.

std::size_t eachTruncation(const std::string& sample, const Reader& read) {
    std::size_t count = 0;
    for (std::size_t length = 0; length <= sample.size(); ++length)
        count += read(sample.substr(0, length));
    return count;
}

std::size_t eachBit(const std::string& sample, std::size_t most, const Reader& read) {
    std::size_t count = 0;
    for (std::size_t bit = 0; bit < 8 * std::min(most, sample.size()); ++bit) {
        std::string damaged = sample;
        damaged[bit / 8] = static_cast<char>(damaged[bit / 8] ^ 1 << bit % 8);
        count += read(damaged);
    }
    return count;
}

/// Every run of four bytes in turn holds every extreme, in both byte orders.
std::size_t eachExtreme(const std::string& sample, std::size_t most, const Reader& read) {
    std::size_t count = 0;
    for (std::size_t at = 0; at + 4 <= std::min(most, sample.size()); ++at) {
        for (const std::uint32_t extreme : EXTREMES) {
            std::string damaged = sample;
            for (std::size_t i = 0; i < 4; ++i)
                damaged[at + i] = static_cast<char>(extreme >> 8 * i & 0xFF);
            count += read(damaged);
        }
    }
    return count;
}

// Samples.

std::string zipSample() {
    return makeZip({{.name = "[Content_Types].xml", .data = "<Types/>"},
                    {.name = "_rels/.rels", .data = "<Relationships/>", .method = 0},
                    {.name = "large", .data = makeText(3000), .descriptor = true},
                    {.name = "wide", .data = "w", .zip64 = true}},
                   {.comment = "a comment", .zip64 = true});
}

std::string gzipSample() {
    std::string sample = deflateData(makeText(2000), Wrapper::Gzip);
    // All optional fields: extra, name, comment, header CRC.
    sample[3] = 0x1E;
    return sample.insert(10, std::string("\3\0abc", 5) + std::string("name\0", 5) +
                                 std::string("comment\0", 8) + "CR");
}

OleImage compoundImage(unsigned shift = 9, std::size_t fatSectors = 0) {
    OleWriter writer({.shift = shift, .leastFatSectors = fatSectors});
    const int storage = writer.addStorage(0, u"storage");
    writer.addStream(storage, u"small", std::string(200, 's'));
    writer.addStream(storage, u"large", std::string(6000, 'l'));
    writer.addStream(0, u"Workbook", std::string(100, 'w'));
    return writer.write();
}

std::string propertySample() {
    test::PropertySetWriter writer;
    writer.section()
        .add(1, 2, writer.number(1252, 2))
        .add(2, 30, writer.narrow("A title"))
        .add(3, 0x1000 | 30, writer.number(1, 4) + writer.narrow("A subject"))
        .add(12, 64, writer.number(0x01DA000000000000, 8));
    writer.section()
        .add(0, 0, writer.dictionary({{2, "_PID_HLINKS"}}))
        .add(2, 65, writer.hyperLinks({u"http://a/", u"b"}));
    return writer.write();
}

// Bombs and cycles.

std::string bomb(std::size_t bytes) {
    return deflateData(std::string(bytes, '\0'));
}

/// Ten thousand directory entries that all name the first member.
std::string overlapping() {
    std::vector<ZipMember> members{{.name = "m", .data = std::string(100'000, '\0')}};
    for (int i = 0; i < 10'000; ++i)
        members.push_back({.name = "n" + std::to_string(i), .data = "", .offset = 0});
    return makeZip(members);
}

std::string backwards() {
    std::vector<ZipMember> members;
    for (int i = 0; i < 1000; ++i)
        members.push_back(
            {.name = std::to_string(i), .data = "x", .offset = i % 2 ? 0xFFFFFFFE : 0});
    return makeZip(members, {.offset = 0});
}

std::string manyMembers(std::size_t count) {
    std::vector<ZipMember> members(count, ZipMember{.name = "", .data = "", .method = 0});
    return makeZip(members);
}

std::string endRecords() {
    std::string comment;
    while (comment.size() < 65'000) comment += std::string("PK\5\6", 4) + std::string(18, '\0');
    return makeZip({{.name = "a", .data = "a"}}, {.comment = comment});
}

std::string descriptors() {
    std::string bytes;
    for (std::size_t i = 0; i < MEGA / 4; ++i)
        bytes += std::string("PK\7\x08", 4) + std::string(12, '\0');
    return bytes;
}

std::string endlessGzipHeader(char flags, const std::string& filler) {
    return std::string("\x1F\x8B\x08", 3) + flags + std::string(6, '\0') + filler;
}

/// The chain that begins at `first` comes back to itself.
std::string cyclic(const std::function<void(OleImage&)>& damage, std::size_t fatSectors = 0) {
    OleImage image = compoundImage(9, fatSectors);
    damage(image);
    return image.bytes();
}

std::string degenerateSiblings(OleWriter::Siblings siblings) {
    OleWriter writer({.siblings = siblings});
    for (int i = 0; i < 200'000; ++i) {
        std::u16string name = u"n";
        for (int rest = i; rest > 0; rest /= 10) name += static_cast<char16_t>(u'0' + rest % 10);
        writer.addStream(0, name, "");
    }
    return writer.write().bytes();
}

std::size_t findSibling(const std::string& bytes) {
    std::istringstream source(bytes);
    JZStreamIOobj io(source);
    OleCompFile file;
    const char* const names[] = {"n999991"};
    const OleDirPath path{1, names};
    if (file.OLEopen(&io)) file.OLEcloseStream(file.OLEopenStream(&path));
    OleCompFile::detectOLEDocument(source);
    return 0;
}

struct Sample {
    const char* name;
    std::function<std::string()> make;
    std::size_t headers;  // bytes that are damaged bit by bit
    Reader read;
};

std::vector<Sample> samples() {
    return {
        {"zip", zipSample, 3000, readZip},
        {"gzip", gzipSample, 100, readGzip},
        {"deflate", [] { return deflateData(makeText(2000)); }, 100, readDeflate},
        {"compound file", [] { return compoundImage().bytes(); }, 512, readCompound},
        {"compound file of large sectors", [] { return compoundImage(12).bytes(); }, 128,
         readCompound},
        {"property set", propertySample, 1000, readProperties},
    };
}

std::vector<Case> cycles() {
    return {
        {"a cycle in the DIFAT", Bound::ALL,
         [] {
             return cyclic(
                 [](OleImage& image) {
                     const std::int32_t first = image.difat.front();
                     image.sink.set32(image.offsetOf(first) + 508, first);
                 },
                 400);
         },
         readCompound},
        {"a cycle in a stream's chain", Bound::ALL,
         [] {
             return cyclic([](OleImage& image) {
                 for (const auto& chain : image.chains)
                     if (chain.size() > 10) image.setNext(chain[5], chain[0]);
             });
         },
         readCompound},
        {"a cycle in a mini chain", Bound::ALL,
         [] {
             return cyclic([](OleImage& image) {
                 for (const auto& chain : image.chains)
                     if (chain.size() > 1 && chain.size() < 10)
                         image.setNextMini(chain[1], chain[0]);
             });
         },
         readCompound},
        {"a cycle in the mini stream", Bound::ALL,
         [] {
             return cyclic([](OleImage& image) {
                 image.setNext(image.miniStream.back(), image.miniStream.front());
             });
         },
         readCompound},
        {"a cycle in the mini FAT", Bound::ALL,
         [] {
             return cyclic([](OleImage& image) {
                 image.setNext(image.miniFat.back(), image.miniFat.front());
             });
         },
         readCompound},
        {"a cycle in the directory", Bound::ALL,
         [] {
             return cyclic([](OleImage& image) {
                 image.setNext(image.directory.back(), image.directory.front());
             });
         },
         readCompound},
        {"200,000 siblings to the right", Bound::ALL,
         [] { return degenerateSiblings(OleWriter::Siblings::RIGHT_CHAIN); }, findSibling},
        {"200,000 siblings to the left", Bound::ALL,
         [] { return degenerateSiblings(OleWriter::Siblings::LEFT_CHAIN); }, findSibling},
    };
}

std::vector<Case> bombs() {
    return {
        {"a zip member of 100 MB in 100 KB", Bound::OUTPUT,
         [] { return makeZip({{.name = "b", .data = std::string(100 * MEGA, '\0')}}); }, readZip},
        {"a gzip member of 100 MB in 100 KB", Bound::OUTPUT,
         [] { return deflateData(std::string(100 * MEGA, '\0'), Wrapper::Gzip); }, readGzip},
        {"deflated data of 100 MB in 100 KB", Bound::OUTPUT, [] { return bomb(100 * MEGA); },
         readDeflate},
        {"a package part of 100 MB in 100 KB", Bound::ALL,
         [] {
             return makeZip(
                 {{.name = "_rels/.rels", .data = std::string(100 * MEGA, ' ')},
                  {.name = "[Content_Types].xml", .data = std::string(100 * MEGA, ' ')}});
         },
         listOnly},
        {"10,000 members in one place", Bound::OUTPUT, overlapping, readZip},
        {"members whose headers lie behind", Bound::ALL, backwards, readZip},
        {"a quarter of a million empty members", Bound::ALL, [] { return manyMembers(MEGA / 4); },
         listOnly},
        {"a comment of end records", Bound::ALL, endRecords, readZip},
        {"a quarter of a million data descriptors", Bound::ALL, descriptors, readZip},
        {"a gzip name without end", Bound::ALL,
         [] { return endlessGzipHeader(0x08, std::string(20 * MEGA, 'n')); }, readGzip},
        {"a gzip comment without end", Bound::ALL,
         [] { return endlessGzipHeader(0x10, std::string(20 * MEGA, 'c')); }, readGzip},
        {"gzip extra data without end", Bound::ALL,
         [] { return endlessGzipHeader(0x04, std::string(20 * MEGA, '\xFF')); }, readGzip},
    };
}

}  // namespace

std::vector<Case> containerCases() {
    std::vector<Case> cases = bombs();
    for (Case& test : cycles()) cases.push_back(std::move(test));
    for (const Sample& sample : samples()) {
        const std::string name = sample.name;
        const Reader read = sample.read;
        const std::size_t headers = sample.headers;
        cases.push_back({"every truncation of a " + name, Bound::OUTPUT, sample.make,
                         [read](const std::string& bytes) { return eachTruncation(bytes, read); }});
        cases.push_back({"every flipped bit in a " + name, Bound::OUTPUT, sample.make,
                         [=](const std::string& bytes) { return eachBit(bytes, headers, read); }});
        cases.push_back(
            {"extreme numbers in a " + name, Bound::OUTPUT, sample.make,
             [=](const std::string& bytes) { return eachExtreme(bytes, headers, read); }});
    }
    return cases;
}

}  // namespace hostile
