// The inflater stream: raw deflate data in memory, read in place.
#include <RynCommon/RyInflaterStream.h>

#include <algorithm>
#include <array>
#include <cstring>

#include "streams/Inflation.h"
#include "streams/PutBack.h"

namespace RynCommon {

namespace {

constexpr std::size_t BUFFER_SIZE = 4096;

std::unique_ptr<char[]> copyOf(const char* data, std::size_t size) {
    auto copy = std::make_unique_for_overwrite<char[]>(size);
    if (size > 0) std::memcpy(copy.get(), data, size);
    return copy;
}

}  // namespace

struct RyInflaterStreamBuf::Impl {
    Impl(const char* data, std::size_t size, bool copy)
        : owned(copy ? copyOf(data, size) : nullptr),
          start(copy ? owned.get() : data),
          end(start + size),
          next(start) {}

    void reset() {
        inflation.restart();
        next = start;
        ended = false;
    }

    /// Inflates to `to`; less than `room` at the end of the data only.
    std::size_t produce(char* to, std::size_t room) {
        if (ended) return 0;
        char* out = to;
        const auto result = inflation.run(next, end, out, to + room, true);
        const auto count = static_cast<std::size_t>(out - to);
        ended = result != streams::Inflation::Result::Running || count < room;
        // The members of an archive keep their streams: thousands of them may stand at their ends.
        if (ended) inflation.close();
        return count;
    }

    std::unique_ptr<char[]> owned;
    const char* start;
    const char* end;
    const char* next;
    streams::Inflation inflation{streams::Inflation::Format::Raw};
    bool ended = false;
    /// What can be put back, then the bytes to read.
    std::array<char, BUFFER_SIZE> buffer;
};

RyInflaterStreamBuf::RyInflaterStreamBuf(const char* data, std::size_t size, bool copy)
    : impl_(std::make_unique<Impl>(data, data != nullptr ? size : 0, copy)) {
    char* const start = impl_->buffer.data();
    setg(start, start, start);
}

RyInflaterStreamBuf::~RyInflaterStreamBuf() = default;

void RyInflaterStreamBuf::reset() {
    impl_->reset();
    char* const start = impl_->buffer.data();
    setg(start, start, start);
}

RyInflaterStreamBuf::int_type RyInflaterStreamBuf::underflow() {
    if (gptr() < egptr()) return traits_type::to_int_type(*gptr());
    char* const start = impl_->buffer.data();
    const std::size_t kept = streams::keepPutBack(start, eback(), gptr());
    const std::size_t count = impl_->produce(start + kept, BUFFER_SIZE - kept);
    setg(start, start + kept, start + kept + count);
    return count > 0 ? traits_type::to_int_type(*gptr()) : traits_type::eof();
}

/// Large reads inflate straight into the target.
std::streamsize RyInflaterStreamBuf::xsgetn(char* target, std::streamsize count) {
    if (count - (egptr() - gptr()) < static_cast<std::streamsize>(BUFFER_SIZE)) {
        return std::streambuf::xsgetn(target, count);
    }
    const std::streamsize buffered = egptr() - gptr();
    if (buffered > 0) std::memcpy(target, gptr(), static_cast<std::size_t>(buffered));
    setg(eback(), egptr(), egptr());
    char* const direct = target + buffered;
    const std::size_t produced = impl_->produce(direct, static_cast<std::size_t>(count - buffered));
    char* const start = impl_->buffer.data();
    const std::size_t kept = streams::keepPutBack(start, eback(), gptr(), direct, produced);
    setg(start, start + kept, start + kept);
    return buffered + static_cast<std::streamsize>(produced);
}

RyInflaterStream::RyInflaterStream(const char* data, std::size_t size, bool copy)
    : std::istream(nullptr), buffer_(data, size, copy) {
    init(&buffer_);
}

RyInflaterStream::~RyInflaterStream() = default;

void RyInflaterStream::reset() {
    clear();
    buffer_.reset();
}

}  // namespace RynCommon
