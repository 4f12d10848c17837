// Archives and gzip files to measure on, in files that go when they are no longer used.
#pragma once

#include <cstddef>
#include <string>

namespace RynCommon {

/// A temporary file with these bytes.
class BenchFile {
public:
    explicit BenchFile(const std::string& bytes);
    ~BenchFile();
    BenchFile(const BenchFile&) = delete;
    BenchFile& operator=(const BenchFile&) = delete;

    const std::string& getPath() const { return path_; }

private:
    std::string path_;
};

/// Text like word processing markup.
std::string makeMarkup(std::size_t size);
/// Bytes that do not compress.
std::string makeNoise(std::size_t size);

/// Members of the same size, deflated or stored.
BenchFile makeArchive(int count, std::size_t memberSize, bool deflated);
/// Markup parts and pictures of that size together.
BenchFile makePackage(std::size_t size);
BenchFile makeGzip(const std::string& data);

}  // namespace RynCommon
