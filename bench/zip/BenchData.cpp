// Archives and gzip files to measure on.
#include "BenchData.h"

#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string_view>
#include <vector>

#include "tests/resources/ZipWriter.h"
#include "tests/streams/DeflateData.h"

namespace RynCommon {

namespace {

/// The same sequence in every run.
class Random {
public:
    std::uint32_t next() {
        state_ = state_ * 6364136223846793005u + 1442695040888963407u;
        return static_cast<std::uint32_t>(state_ >> 33);
    }

private:
    std::uint64_t state_ = 1;
};

}  // namespace

BenchFile::BenchFile(const std::string& bytes) {
    path_ = (std::filesystem::temp_directory_path() / "ryn-bench-XXXXXX").string();
    const int descriptor = mkstemp(path_.data());
    if (descriptor < 0) throw std::runtime_error("no temporary file");
    close(descriptor);
    std::ofstream(path_, std::ios::binary) << bytes;
}

BenchFile::~BenchFile() {
    std::filesystem::remove(path_);
}

std::string makeMarkup(std::size_t size) {
    static constexpr std::string_view WORDS[] = {
        "the ",  "document ", "margin ", "of ",     "a ",    "page, ", "which ",  "is ",
        "line ", "height ",   "table ",  "column ", "cell ", "and ",   "border ", "text. "};
    Random random;
    std::string text;
    while (text.size() < size) {
        text += "<w:p w:rsidR=\"00" + std::to_string(random.next() % 1'000'000) +
                "\"><w:r><w:rPr><w:sz w:val=\"" + std::to_string(random.next() % 40) +
                "\"/></w:rPr><w:t>";
        for (std::uint32_t i = random.next() % 30; i > 0; --i) text += WORDS[random.next() % 16];
        text += "</w:t></w:r></w:p>";
    }
    text.resize(size);
    return text;
}

std::string makeNoise(std::size_t size) {
    Random random;
    std::string noise;
    noise.reserve(size);
    while (noise.size() < size) noise += static_cast<char>(random.next() >> 8);
    return noise;
}

BenchFile makeArchive(int count, std::size_t memberSize, bool deflated) {
    const std::string data = deflated ? makeMarkup(memberSize) : makeNoise(memberSize);
    std::vector<ZipMember> members;
    for (int i = 0; i < count; ++i) {
        members.push_back({"word/parts/part" + std::to_string(i) + ".xml", data,
                           static_cast<std::uint16_t>(deflated ? 8 : 0)});
    }
    return BenchFile(makeZip(members));
}

BenchFile makePackage(std::size_t size) {
    const std::string markup = makeMarkup(16'000'000);
    const std::string picture = makeNoise(500'000);
    std::vector<ZipMember> members;
    Random random;
    for (int i = 0; size > 0; ++i) {
        const bool isPicture = i % 4 == 3;
        const std::size_t scale = std::size_t{4'000} << random.next() % 11;
        const std::size_t wanted = std::min({size, scale, isPicture ? picture.size() : scale});
        const std::string& from = isPicture ? picture : markup;
        members.push_back({"part" + std::to_string(i), from.substr(0, wanted),
                           static_cast<std::uint16_t>(isPicture ? 0 : 8)});
        size -= wanted;
    }
    return BenchFile(makeZip(members));
}

BenchFile makeGzip(const std::string& data) {
    return BenchFile(deflateData(data, Wrapper::Gzip));
}

}  // namespace RynCommon
