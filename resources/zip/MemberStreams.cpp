// The streams that hand out a member's data.
#include "resources/zip/MemberStreams.h"

#include <zlib.h>

#include <algorithm>
#include <cstring>

namespace RynCommon::zip {

namespace {

constexpr std::streamsize LARGE_READ = 4096;

}  // namespace

// Bytes in memory.

MemoryBuf::MemoryBuf(SharedBytes data) : data_(std::move(data)) {
    rewind();
}

/// The get area is all of the data. Nothing here ever stores through its pointers: a character that
/// is put back must be the one that stands there.
void MemoryBuf::rewind() {
    char* const start = const_cast<char*>(data_.bytes.get());
    setg(start, start, start + data_.size);
}

MemoryBuf::int_type MemoryBuf::underflow() {
    if (gptr() < egptr()) return traits_type::to_int_type(*gptr());
    if (spoiled_ != nullptr) spoiled_->setstate(std::ios_base::badbit);
    return traits_type::eof();
}

std::streamsize MemoryBuf::showmanyc() {
    return -1;
}

std::streamsize MemoryBuf::xsgetn(char* target, std::streamsize count) {
    const std::streamsize taken = std::min<std::streamsize>(count, egptr() - gptr());
    if (taken > 0) std::memcpy(target, gptr(), static_cast<std::size_t>(taken));
    setg(eback(), gptr() + taken, egptr());
    if (taken < count) underflow();
    return taken;
}

MemoryBuf::pos_type MemoryBuf::seekoff(off_type offset, std::ios_base::seekdir direction,
                                       std::ios_base::openmode which) {
    const off_type size = egptr() - eback();
    off_type origin = 0;
    if (direction == std::ios_base::cur) origin = gptr() - eback();
    if (direction == std::ios_base::end) origin = size;
    const bool inRange = offset >= -origin && offset <= size - origin;
    if ((which & std::ios_base::in) == 0 || !inRange) return pos_type(off_type(-1));
    setg(eback(), eback() + origin + offset, egptr());
    return pos_type(origin + offset);
}

MemoryBuf::pos_type MemoryBuf::seekpos(pos_type position, std::ios_base::openmode which) {
    return seekoff(off_type(position), std::ios_base::beg, which);
}

MemoryStream::MemoryStream(SharedBytes data, bool wrong)
    : std::istream(nullptr), buffer_(std::move(data)) {
    init(&buffer_);
    if (wrong) buffer_.spoilAtEnd(*this);
}

void MemoryStream::rewind() {
    clear();
    buffer_.rewind();
}

// Deflated bytes.

SharedInflaterStream::SharedInflaterStream(SharedBytes data)
    : RyInflaterStream(data.bytes.get(), data.size, false), data_(std::move(data)) {}

CheckedInflaterBuf::CheckedInflaterBuf(SharedBytes data, Expectation expected, std::ios& stream)
    : RyInflaterStreamBuf(data.bytes.get(), data.size, false),
      data_(std::move(data)),
      expected_(expected),
      stream_(stream) {}

void CheckedInflaterBuf::rewind() {
    reset();
    sum_ = {};
}

void CheckedInflaterBuf::add(const char* bytes, std::streamsize count) {
    if (count <= 0) return;
    const auto size = static_cast<std::size_t>(count);
    const auto* const first = reinterpret_cast<const Bytef*>(bytes);
    sum_.crc = static_cast<std::uint32_t>(crc32_z(sum_.crc, first, size));
    sum_.size += size;
}

void CheckedInflaterBuf::checkEnd() {
    const bool isRight = sum_.crc == expected_.crc && sum_.size == expected_.size;
    if (!isRight) stream_.setstate(std::ios_base::badbit);
}

CheckedInflaterBuf::int_type CheckedInflaterBuf::underflow() {
    if (gptr() < egptr()) return traits_type::to_int_type(*gptr());
    const int_type next = RyInflaterStreamBuf::underflow();
    if (isDirect_) return next;
    add(gptr(), egptr() - gptr());
    if (next == traits_type::eof()) checkEnd();
    return next;
}

/// What a large read brings is added up where it lies: behind what was in the get area, which is
/// added up already.
std::streamsize CheckedInflaterBuf::xsgetn(char* target, std::streamsize count) {
    const std::streamsize buffered = egptr() - gptr();
    if (count - buffered < LARGE_READ) return std::streambuf::xsgetn(target, count);
    isDirect_ = true;
    const std::streamsize got = RyInflaterStreamBuf::xsgetn(target, count);
    isDirect_ = false;
    add(target + buffered, got - buffered);
    add(gptr(), egptr() - gptr());
    if (got < count) checkEnd();
    return got;
}

CheckedInflaterStream::CheckedInflaterStream(SharedBytes data, Expectation expected)
    : std::istream(nullptr), buffer_(std::move(data), expected, *this) {
    init(&buffer_);
}

void CheckedInflaterStream::rewind() {
    clear();
    buffer_.rewind();
}

}  // namespace RynCommon::zip
