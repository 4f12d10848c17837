// The streams that hand out a member's data.
#pragma once

#include <RynCommon/RyInflaterStream.h>

#include <cstddef>
#include <cstdint>
#include <istream>
#include <memory>
#include <streambuf>

namespace RynCommon::zip {

/// Bytes in memory that any number of streams read and nobody changes.
struct SharedBytes {
    std::shared_ptr<const char[]> bytes;
    std::size_t size = 0;
};

/// What the archive says of a member's data when it is unpacked.
struct Expectation {
    std::uint32_t crc = 0;
    std::uint64_t size = 0;
};

/// Reads bytes in memory in place; seeks anywhere in them.
class MemoryBuf final : public std::streambuf {
public:
    explicit MemoryBuf(SharedBytes data);

    /// Makes reading at the end turn `stream` bad; the data is known to be wrong.
    void spoilAtEnd(std::ios& stream) { spoiled_ = &stream; }
    void rewind();

protected:
    int_type underflow() override;
    std::streamsize showmanyc() override;
    std::streamsize xsgetn(char* target, std::streamsize count) override;
    pos_type seekoff(off_type offset, std::ios_base::seekdir direction,
                     std::ios_base::openmode which) override;
    pos_type seekpos(pos_type position, std::ios_base::openmode which) override;

private:
    SharedBytes data_;
    std::ios* spoiled_ = nullptr;
};

/// A member's bytes as they are stored.
class MemoryStream final : public std::istream {
public:
    /// @param wrong  whether the stream turns bad at its end
    explicit MemoryStream(SharedBytes data, bool wrong = false);

    /// Clears the state and goes back to the start.
    void rewind();

private:
    MemoryBuf buffer_;
};

/// An inflater stream that keeps the bytes it reads alive.
class SharedInflaterStream final : public RyInflaterStream {
public:
    explicit SharedInflaterStream(SharedBytes data);

private:
    SharedBytes data_;
};

/// Inflates and adds up what comes out; at the end the stream turns bad when that is not what is
/// expected.
class CheckedInflaterBuf final : public RyInflaterStreamBuf {
public:
    CheckedInflaterBuf(SharedBytes data, Expectation expected, std::ios& stream);

    void rewind();

protected:
    int_type underflow() override;
    std::streamsize xsgetn(char* target, std::streamsize count) override;

private:
    void add(const char* bytes, std::streamsize count);
    void checkEnd();

    SharedBytes data_;
    Expectation expected_;
    std::ios& stream_;
    /// Of what was inflated so far.
    Expectation sum_;
    /// While the base class reads into a caller's memory, which is added up afterwards.
    bool isDirect_ = false;
};

class CheckedInflaterStream final : public std::istream {
public:
    CheckedInflaterStream(SharedBytes data, Expectation expected);

    /// Clears the state and goes back to the start.
    void rewind();

private:
    CheckedInflaterBuf buffer_;
};

}  // namespace RynCommon::zip
