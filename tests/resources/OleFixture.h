// What the tests of compound files share.
#pragma once

#include <RynCommon/OleCompFile.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "tests/resources/OleWriter.h"

namespace RynCommon::test {

/// A compound file in memory that remembers what was read of it. Like many readers it seeks
/// anywhere, beyond its end, too; from its end it need not.
class MemoryIo : public JZIOobj {
public:
    explicit MemoryIo(std::string content) : bytes(std::move(content)) {}

    bool isOpen() const override { return open; }
    std::size_t read(void* buffer, std::size_t count) override {
        const std::size_t got =
            position < bytes.size() ? std::min(count, bytes.size() - position) : 0;
        std::memcpy(buffer, bytes.data() + std::min(position, bytes.size()), got);
        reads.emplace_back(position, got);
        position += got;
        return got;
    }
    bool seek(std::int64_t offset, int whence) override {
        if (whence == SEEK_END && !seeksFromEnd) return false;
        if (whence != SEEK_SET) offset += whence == SEEK_CUR ? position : bytes.size();
        if (offset < 0) return false;
        position = offset;
        return true;
    }

    std::string bytes;
    bool open = true;
    bool seeksFromEnd = true;
    std::size_t position = 0;
    std::vector<std::pair<std::size_t, std::size_t>> reads;  ///< offset and count
};

struct HeldIo {
    MemoryIo io;
};
/// A compound file in memory, open.
struct OpenFile : HeldIo, OleCompFile {
    explicit OpenFile(const std::string& bytes) : HeldIo{MemoryIo(bytes)} {
        EXPECT_TRUE(OLEopen(&io));
    }
};

/// Text in which neighbouring sectors and mini sectors differ.
inline std::string makeContent(std::size_t size, std::size_t seed = 1) {
    std::string text(size, '\0');
    for (std::size_t i = 0; i < size; ++i) {
        text[i] = static_cast<char>('0' + (i * 7 + i / 64 * 13 + i / 4096 * 29 + seed * 31) % 75);
    }
    return text;
}

/// A path of names, outermost first.
class Path {
public:
    Path(std::initializer_list<const char*> names)
        : names_(names), path_{static_cast<int>(names_.size()), names_.data()} {}
    Path(const Path&) = delete;
    Path& operator=(const Path&) = delete;
    operator const OleDirPath*() const { return &path_; }

private:
    std::vector<const char*> names_;
    OleDirPath path_;
};

inline std::string readAll(OleStream& stream, std::uint32_t piece = 1000) {
    std::string content;
    std::string buffer(piece, '\0');
    while (const std::uint32_t got =
               stream.OLEread(reinterpret_cast<unsigned char*>(buffer.data()), piece)) {
        content.append(buffer, 0, got);
    }
    return content;
}

/// What stands for the content of a stream that does not open.
inline const std::string NONE = "(none)";

inline std::string readStream(OleCompFile& file, const OleDirPath* path) {
    OleStream* const stream = file.OLEopenStream(path);
    if (stream == nullptr) return NONE;
    const std::string content = readAll(*stream);
    file.OLEcloseStream(stream);
    return content;
}

inline bool opens(const std::string& bytes, bool seeksFromEnd = true) {
    MemoryIo io(bytes);
    io.seeksFromEnd = seeksFromEnd;
    return OleCompFile().OLEopen(&io);
}

}  // namespace RynCommon::test
