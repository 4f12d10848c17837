// zlib's inflate() as a step from one block of bytes to another.
#include "streams/Inflation.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <new>

namespace RynCommon::streams {

namespace {

constexpr int RAW_WINDOW_BITS = -15;
constexpr int GZIP_WINDOW_BITS = 31;

/// zlib counts in 32 bits.
uInt pieceOf(std::ptrdiff_t length) {
    constexpr std::ptrdiff_t MOST = std::numeric_limits<uInt>::max();
    return static_cast<uInt>(std::min(length, MOST));
}

}  // namespace

Inflation::Inflation(Format format) : format_(format) {
    open();
}

void Inflation::open() {
    const bool isRaw = format_ == Format::Raw;
    const int status = inflateInit2(&stream_, isRaw ? RAW_WINDOW_BITS : GZIP_WINDOW_BITS);
    if (status == Z_MEM_ERROR) throw std::bad_alloc();
    open_ = status == Z_OK;
    if (open_ && !isRaw) inflateValidate(&stream_, 0);
}

void Inflation::close() {
    if (open_) inflateEnd(&stream_);
    open_ = false;
}

void Inflation::restart() {
    if (open_)
        inflateReset(&stream_);
    else
        open();
}

int Inflation::step(const char*& from, const char* fromEnd, char*& to, char* toEnd, int flush) {
    const uInt inCount = pieceOf(fromEnd - from);
    const uInt outCount = pieceOf(toEnd - to);
    // zlib only reads through the pointer.
    stream_.next_in = const_cast<Bytef*>(reinterpret_cast<const Bytef*>(from));
    stream_.avail_in = inCount;
    stream_.next_out = reinterpret_cast<Bytef*>(to);
    stream_.avail_out = outCount;
    const int status = inflate(&stream_, flush);
    from += inCount - stream_.avail_in;
    to += outCount - stream_.avail_out;
    return status;
}

Inflation::Result Inflation::run(const char*& from, const char* fromEnd, char*& to, char* toEnd,
                                 bool last) {
    if (!open_) return Result::Broken;
    while (to < toEnd) {
        const char* const fromBefore = from;
        const char* const toBefore = to;
        const int status = step(from, fromEnd, to, toEnd, last ? Z_FINISH : Z_NO_FLUSH);
        if (status == Z_STREAM_END) return Result::Ended;
        if (status == Z_MEM_ERROR) throw std::bad_alloc();
        if (status != Z_OK && status != Z_BUF_ERROR) return Result::Broken;
        if (from == fromBefore && to == toBefore) break;
    }
    return Result::Running;
}

}  // namespace RynCommon::streams
