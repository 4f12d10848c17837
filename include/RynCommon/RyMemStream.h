// Growable memory as a stream, and read-ahead memory in front of other streams.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <istream>
#include <memory>
#include <streambuf>
#include <string>
#include <string_view>

#include <RynCommon/Forward.h>

namespace RynCommon {

class MemStreamPages;

/// A stream buffer that keeps its data in a chain of equal blocks, which never move. What is
/// written can be read, and the data of one or more sources can be read through it, with seeking
/// and searching in what was read already.
///
/// A source is read on demand, block by block, until it ends or fails; it is then dropped (and
/// deleted when owned). Writing while sources are pending behaves as if they were drained first.
/// Positions count from the first byte still held. Nothing is thrown but std::bad_alloc. Used by
/// one thread at a time.
class RYNCOMMON_API RyMemStreamBuf : public std::streambuf {
public:
    /// @param source     first source, or null
    /// @param growBytes  size of a block in bytes; 0 means 8192
    /// @param ownSource  whether the buffer deletes the source
    RyMemStreamBuf(std::istream* source, std::uint64_t growBytes, bool ownSource);
    /// Copies the blocks and both positions, not the sources: they stay with `other`.
    RyMemStreamBuf(const RyMemStreamBuf& other);
    RyMemStreamBuf& operator=(const RyMemStreamBuf&) = delete;
    ~RyMemStreamBuf() override;

    /// Appends a source, which continues the data; null is ignored.
    void setSource(std::istream* source, bool ownSource);
    /// With false, only two blocks are held and only sequential reading is promised.
    void setKeepMemory(bool keep) { keepMemory_ = keep; }
    std::size_t getGrowBytes() const { return static_cast<std::size_t>(growBytes_); }
    /// Sets the size of a block (0 means 8192). Ignored while data is held.
    void setGrowBytes(std::size_t bytes);
    /// Number of bytes that can be read without taking another block.
    std::size_t getRemains() const { return static_cast<std::size_t>(egptr() - gptr()); }

    /// Number of bytes held, all sources drained.
    std::uint64_t length();
    /// Hands out the bytes from the read position to the end of its block, without copying, and
    /// moves past them; called until it gives 0 it walks all data. They stay where they are until
    /// their block is given up.
    std::size_t getBuffer(const char*& bytes);
    /// Appends all data, wherever the read position stands.
    void appendToString(std::string& text);
    /// Copies at most `count` bytes from `source` to the write position; returns how many came.
    std::size_t copyStream(std::istream& source, std::size_t count);

    /// Moves the read position to the next occurrence of `pattern` (`length` bytes; 0 means up to
    /// its NUL) at or behind it. False, with the position unchanged, when there is none or the
    /// pattern is empty. Sources are read as far as needed.
    bool searchSeek(const char* pattern, std::size_t length = 0);
    /// Moves the read position past `pattern` when it stands there, as an empty one does anywhere;
    /// else false.
    bool skipSeek(const char* pattern, std::size_t length = 0);
    /// Moves the read position past the next run of CR and LF bytes, or to the end.
    void seekEOL();

    /// Cuts the data to `length` bytes when it is longer.
    void trim(std::size_t length);
    /// Gives up all data, positions and sources. One block is kept for use again.
    void remove();
    /// Gives up the blocks before the one that is being read. Positions then count from there.
    void abandonBuffer();

    /// The checksum of an OpenType table: the sum modulo 2^32 of the data as big-endian 32-bit
    /// words, the last one padded with zeros.
    std::uint32_t calcOTFTableChecksum();

protected:
    /// Adds a block and fills it from the sources. With `newBlock` false a block already read is
    /// used again when more than one is held.
    void appendBuffer(bool newBlock);
    /// Makes what was written into the last block readable.
    void flushBuffer();
    /// Index of the block that begins at `block`; all ones when there is none.
    std::uint64_t getIndex(const char* block);

    int_type overflow(int_type c) override;
    int_type pbackfail(int_type c) override;
    int_type underflow() override;
    pos_type seekoff(off_type offset, std::ios_base::seekdir way,
                     std::ios_base::openmode which) override;
    pos_type seekpos(pos_type position, std::ios_base::openmode which) override;

private:
    static constexpr std::uint64_t DEFAULT_GROW_BYTES = 8192;

    std::uint64_t getHeldLength() const;
    std::string_view getBytes(std::uint64_t index) const;
    bool reachBlock(std::uint64_t index);
    void addSource(std::istream* source, bool owned);
    void dropSource();
    void fillLastBlock();
    char* makeBlock();
    void freeBlock(char* block) noexcept;
    void pushBlock(char* block);
    char* takeFrontBlock();
    void clearAreasIn(const char* block);
    void setGetArea(std::uint64_t index, std::uint64_t offset);
    void setPutArea(std::uint64_t index, std::uint64_t offset);
    void advancePut(std::uint64_t count);
    void putLastByte(int_type c);
    bool advanceGetArea();
    std::uint64_t getReadPosition();
    std::uint64_t getWritePosition();
    void gather(std::uint64_t& from, std::size_t count, std::string& window);
    bool findInBlocks(std::string_view pattern);
    bool findInWindows(std::string_view pattern);

    std::deque<char*> blocks_;   // each of growBytes_ bytes; all but the last are full
    std::uint64_t current_ = 0;  // index of the block used last
    std::uint64_t fill_ = 0;     // valid bytes of the last block
    std::deque<std::istream*> sources_;
    std::deque<bool> owned_;  // for each source, whether it is deleted here
    std::uint64_t growBytes_;
    bool keepMemory_ = true;
    // Where the areas' blocks were when the areas were set: looked at first by getIndex().
    std::uint64_t readIndex_ = 0;
    std::uint64_t writeIndex_ = 0;
    std::unique_ptr<MemStreamPages> pages_;  // once the data is large
};

/// The stream over an RyMemStreamBuf of its own; see there for what each operation does.
class RYNCOMMON_API RyMemStream : public std::iostream {
public:
    RyMemStream(std::istream* source = nullptr, std::uint64_t growBytes = 8192,
                bool ownSource = false);
    /// Copies the data, not the sources.
    RyMemStream(const RyMemStream& other);
    RyMemStream& operator=(const RyMemStream&) = delete;
    ~RyMemStream() override;

    void setKeepMemory(bool keep) { buffer_.setKeepMemory(keep); }
    void setSource(std::istream* source, bool ownSource) { buffer_.setSource(source, ownSource); }
    std::uint64_t length() { return buffer_.length(); }
    std::uint64_t size() { return buffer_.length(); }
    bool isEmpty() { return buffer_.length() == 0; }
    bool empty() { return buffer_.length() == 0; }
    std::size_t getBuffer(const char*& bytes) { return buffer_.getBuffer(bytes); }
    void appendToString(std::string& text) { buffer_.appendToString(text); }
    std::size_t copyStream(std::istream& source, std::size_t count) {
        return buffer_.copyStream(source, count);
    }
    bool searchSeek(const char* pattern, std::size_t length = 0) {
        return buffer_.searchSeek(pattern, length);
    }
    bool skipSeek(const char* pattern, std::size_t length = 0) {
        return buffer_.skipSeek(pattern, length);
    }
    void seekEOL() { buffer_.seekEOL(); }
    void trim(std::size_t length) { buffer_.trim(length); }
    void setGrowBytes(std::size_t bytes) { buffer_.setGrowBytes(bytes); }
    void abandonBuffer() { buffer_.abandonBuffer(); }
    std::uint32_t calcOTFTableChecksum() { return buffer_.calcOTFTableChecksum(); }

    /// Gives up the data and clears a failed state.
    void remove();
    /// The same as remove().
    RyMemStream& erase();
    /// Moves the read position to the start and clears a failed state.
    RyMemStream& begin();
    RyMemStream& append(const std::string& text);
    RyMemStream& operator+=(const std::string& text) { return append(text); }
    /// Writes a NUL-terminated text without its NUL.
    RyMemStream& writeStr(const char* text);
    /// Does nothing: memory needs no closing.
    void close() {}

private:
    RyMemStreamBuf buffer_;
};

}  // namespace RynCommon
