// Bytes of a document, taken from a stream no further ahead than it has them ready.
#pragma once

#include <cstddef>
#include <cstdint>
#include <istream>
#include <memory>

namespace RynCommon {

/// A block of bytes in front of an std::istream.
///
/// fill() takes what the stream's buffer holds, at most a block; when nothing is known to be ready
/// it takes one byte. So files and memory run in blocks, and a slow connection is waited for only
/// when its next byte is really needed.
class ByteInput {
public:
    /// One block; the decoded form of it stays within the second-level cache.
    static constexpr std::size_t BLOCK = 16384;
    /// Bytes that may stand in front of a block: an unfinished character.
    static constexpr std::size_t SLACK = 16;

    /// Reads from `in`, which is not owned. Null closes.
    void open(std::istream* in);
    /// Goes on with another stream behind the same unread bytes: a converter around the first one.
    void replaceStream(std::istream* in);

    /// Frees the block of a closed input.
    void releaseBuffer() { data_.reset(); }

    const std::uint8_t* begin() const { return data_.get() + begin_; }
    const std::uint8_t* end() const { return data_.get() + end_; }
    std::size_t size() const { return end_ - begin_; }
    void consume(std::size_t bytes) { begin_ += bytes; }

    /// Adds at least one byte behind the unread ones, of which there must be less than SLACK; false
    /// at the end of input. With `single`, adds exactly one.
    bool fill(bool single);
    /// Makes `bytes` unread bytes available (at most SLACK), reading one by one; false when the
    /// input ends before.
    bool need(std::size_t bytes);
    bool atEnd() const { return ended_; }
    std::istream* stream() const { return in_; }

private:
    bool fillSingle();
    void finish();

    std::unique_ptr<std::uint8_t[]> data_;
    std::size_t begin_ = 0;
    std::size_t end_ = 0;
    std::istream* in_ = nullptr;
    bool ended_ = true;
};

}  // namespace RynCommon
