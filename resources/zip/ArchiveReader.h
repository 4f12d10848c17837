// Reads records of an archive by position.
//
// Headers lie anywhere from 30 bytes to gigabytes apart, and a seek costs system calls. The reader
// therefore keeps a window of the stream: headers that lie close together come out of one read, and
// the window grows as long as they do; a far jump makes it small again, so that little is read in
// vain. It works on the stream buffer, which leaves the stream's state alone, and takes whatever
// the buffer throws for the end of the data, save lack of memory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <streambuf>
#include <string_view>

namespace RynCommon::zip {

/// Where the buffer reads next, and where its data ends; -1 when it cannot tell.
std::int64_t positionOf(std::streambuf& source);
std::int64_t endOf(std::streambuf& source);
bool seekTo(std::streambuf& source, std::int64_t position);
/// Reads up to `count` bytes from where the buffer stands.
std::size_t readBytes(std::streambuf& source, char* to, std::size_t count);

class ArchiveReader {
public:
    /// `source` must outlive the reader. Nobody else may use it meanwhile.
    explicit ArchiveReader(std::streambuf& source);

    /// Where the source stood in the beginning, and its end; both -1 when it cannot seek.
    std::int64_t getStart() const { return start_; }
    std::int64_t getEnd() const { return end_; }

    /// `count` bytes from `position` on, fewer at the end of the data. Good until the next call.
    std::string_view view(std::int64_t position, std::size_t count);

    /// Leaves the source at `position`, at its end at most.
    void leaveAt(std::int64_t position);

private:
    void load(std::int64_t position, std::size_t count);
    void makeRoom(std::size_t size);
    void adapt(std::int64_t position);

    std::streambuf& source_;
    std::int64_t start_;
    std::int64_t end_;
    /// Where the source stands: always the window's end.
    std::int64_t sourcePosition_;
    /// The bytes before sourcePosition_.
    std::unique_ptr<char[]> window_;
    std::size_t windowSize_ = 0;
    std::size_t capacity_ = 0;
    std::size_t readAhead_;
};

}  // namespace RynCommon::zip
