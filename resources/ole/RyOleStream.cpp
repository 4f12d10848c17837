// A standard stream over a stream of a compound file.
#include <RynCommon/OleCompFile.h>

#include <algorithm>

namespace RynCommon {

namespace {

constexpr int BLOCK_SIZE = 4096;

}  // namespace

RyOleStreamBuf::RyOleStreamBuf(OleStream* stream, int limit) : stream_(stream), limit_(limit) {}

RyOleStreamBuf::~RyOleStreamBuf() = default;

RyOleStreamBuf::int_type RyOleStreamBuf::underflow() {
    if (gptr() < egptr()) return traits_type::to_int_type(*gptr());
    if (stream_ == nullptr) return traits_type::eof();
    std::uint64_t wanted = BLOCK_SIZE;
    if (limit_ >= 0) {
        const auto limit = static_cast<std::uint64_t>(limit_);
        const std::uint64_t read = blocksRead_ * BLOCK_SIZE;
        if (read >= limit) return traits_type::eof();
        wanted = std::min(wanted, limit - read);
    }
    if (!buffer_) buffer_ = std::make_unique_for_overwrite<char[]>(BLOCK_SIZE);
    const std::uint32_t got = stream_->OLEread(reinterpret_cast<unsigned char*>(buffer_.get()),
                                               static_cast<std::uint32_t>(wanted));
    ++blocksRead_;
    setg(buffer_.get(), buffer_.get(), buffer_.get() + got);
    return got == 0 ? traits_type::eof() : traits_type::to_int_type(*gptr());
}

RyOleStream::RyOleStream(OleStream* stream, int limit)
    : std::istream(nullptr), buffer_(stream, limit) {
    init(&buffer_);
}

RyOleStream::~RyOleStream() = default;

}  // namespace RynCommon
