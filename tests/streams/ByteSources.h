// Sources of bytes that behave like slow connections and broken disks.
#pragma once

#include <algorithm>
#include <cstddef>
#include <istream>
#include <sstream>
#include <stdexcept>
#include <streambuf>
#include <string>
#include <utility>
#include <vector>

namespace RynCommon {

/// Has so many bytes in its buffer at a time, of the sizes given over and over again; when they are
/// taken it says that nothing is known to be ready, and counts how many bytes it was made to
/// deliver.
class ChunkSource : public std::streambuf {
public:
    ChunkSource(std::string bytes, std::vector<std::size_t> sizes)
        : bytes_(std::move(bytes)), sizes_(std::move(sizes)) {}
    ChunkSource(std::string bytes, std::size_t size)
        : ChunkSource(std::move(bytes), std::vector{size}) {}

    std::size_t getDelivered() const { return delivered_; }

protected:
    int_type underflow() override {
        const std::size_t size = sizes_[turn_++ % sizes_.size()];
        const std::size_t count = std::min(size, bytes_.size() - delivered_);
        if (count == 0) return traits_type::eof();
        char* const start = bytes_.data() + delivered_;
        setg(start, start, start + count);
        delivered_ += count;
        return traits_type::to_int_type(*start);
    }

private:
    std::string bytes_;
    std::vector<std::size_t> sizes_;
    std::size_t turn_ = 0;
    std::size_t delivered_ = 0;
};

/// Counts how many of its kind there are.
class CountedStream : public std::istringstream {
public:
    explicit CountedStream(const std::string& bytes) : std::istringstream(bytes) { ++count; }
    ~CountedStream() override { --count; }

    static inline int count = 0;
};

/// Counts the bytes that are taken, and throws where more than the first `good` are wanted, as a
/// broken disk does.
class WatchedBuf : public std::stringbuf {
public:
    explicit WatchedBuf(const std::string& bytes, std::size_t good = std::string::npos)
        : std::stringbuf(bytes), good_(good) {}

    std::size_t bytesRead = 0;

protected:
    std::streamsize xsgetn(char* target, std::streamsize count) override {
        const std::streamoff here = seekoff(0, std::ios::cur, std::ios::in);
        if (static_cast<std::size_t>(here + count) > good_) throw std::runtime_error("read");
        const std::streamsize came = std::stringbuf::xsgetn(target, count);
        bytesRead += came;
        return came;
    }

private:
    std::size_t good_;
};

/// Delivers its bytes and throws where more is wanted.
class BreakingSource : public std::streambuf {
public:
    explicit BreakingSource(std::string bytes = {}) : bytes_(std::move(bytes)) {
        setg(bytes_.data(), bytes_.data(), bytes_.data() + bytes_.size());
    }

protected:
    int_type underflow() override { throw std::runtime_error("broken"); }

private:
    std::string bytes_;
};

}  // namespace RynCommon
