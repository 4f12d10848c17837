// Fuzz target of compound files: whatever the bytes say, opening, walking, looking up, classifying
// and reading everything ends; no stream gives more than its size, and giving it in other pieces
// gives the same.
#include <RynCommon/OleCompFile.h>
#include <RynCommon/OleSummaryInformation.h>
#include <RynCommon/RyValue.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

using namespace RynCommon;

namespace {

/// Streams may share sectors, so all of them together can be far longer than the file.
constexpr std::uint64_t MOST_READ = 4 << 20;

void require(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "%s\n", what);
    std::abort();
}

std::string readPieces(OleStream& stream, std::uint32_t piece) {
    std::string content;
    std::vector<unsigned char> buffer(piece);
    while (const std::uint32_t got = stream.OLEread(buffer.data(), piece)) {
        require(got <= piece, "more than asked for");
        content.append(reinterpret_cast<const char*>(buffer.data()), got);
    }
    return content;
}

std::uint64_t readStream(OleStream& stream) {
    const std::uint32_t size = stream.GetStreamSize();
    const std::string content = readPieces(stream, 4096);
    require(content.size() <= size, "more than the size");
    require(stream.OLEtell() == content.size(), "position");
    if (content.size() < 20'000) {
        stream.OLEseek(0, 0);
        require(readPieces(stream, 7) == content, "pieces differ");
    }
    for (const std::int32_t offset : {0, 1, 63, 64, 511, 512, 4096}) {
        const std::int64_t position = stream.OLEseek(offset, 2);
        const auto expected = std::max<std::int64_t>(0, std::int64_t{size} - offset);
        require(position == -1 || position == expected, "seek");
        unsigned char byte = 0;
        if (stream.OLEread(&byte, 1) == 1 && stream.OLEtell() - 1 < content.size()) {
            require(static_cast<char>(byte) == content[stream.OLEtell() - 1], "byte differs");
        }
    }
    stream.OLEseek(0, 0);
    RyOleStream in(&stream, 5000);
    std::uint64_t count = 0;
    while (in.get() != std::char_traits<char>::eof()) ++count;
    require(count <= 5000, "more than the limit");
    return content.size();
}

void walk(OleCompFile& file) {
    std::uint64_t total = 0;
    for (const OleDirInfo& entry : file.getDirVec()) {
        if (total > MOST_READ) break;
        OleStream stream(&file);
        if (stream.GetStreamChain(entry.getDirID())) total += readStream(stream);
    }
    std::size_t looked = 0;
    for (const OleDirInfo& entry : file.getDirVec()) {
        if (++looked > 200) break;
        std::string name;
        entry.getName().toUTF8String(name);
        const std::int32_t found = file.findDirEntryByName(&entry, name.c_str());
        const OleDirInfo copy = entry;
        require(found == file.findDirEntryByName(&copy, name.c_str()), "lookups differ");
        require(file.findDirEntryByName(&entry, "not a name of it") < 0, "found nothing");
    }
    const OleDirPath root{0, nullptr};
    file.OLEcloseStream(file.OLEopenObject(&root));
}

/// Missing names are reported on standard error, so only what is there is opened.
bool hasStream(OleCompFile& file, const char* name) {
    const OleDirInfo* const root = file.getDirInfo(0);
    return root != nullptr && root->isRoot() &&
           file.findDirEntryByName(file.getDirInfo(root->getChildID()), name) >= 0;
}

void readProperties(OleCompFile& file, bool ofDocument) {
    if (!hasStream(file, ofDocument ? "\5DocumentSummaryInformation" : "\5SummaryInformation")) {
        return;
    }
    OleSummaryInformation information;
    const int result = ofDocument ? information.initDocumentSummaryInformation(&file)
                                  : information.initSummaryInformation(&file);
    if (result != 1) return;
    for (unsigned long id = 0; id < 32; ++id) {
        RyValue value;
        const int served = information.getPropertyAny(id, value);
        require((served == 1) == !value.isNull(), "value without success");
    }
    std::vector<UnicodeString> links;
    const int count = information.getHyperLinks(links);
    require(static_cast<int>(links.size()) == std::max(count, 0), "links");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    std::istringstream stream(bytes);
    const auto type = OleCompFile::detectOLEDocument(stream);
    JZStreamIOobj io(stream);
    OleCompFile file;
    if (!file.OLEopen(&io)) {
        require(type == OleCompFile::OLEDOC_NONE, "a kind of nothing");
        require(file.getDirCount() == 0, "a directory of nothing");
        return 0;
    }
    walk(file);
    readProperties(file, false);
    readProperties(file, true);
    return 0;
}
