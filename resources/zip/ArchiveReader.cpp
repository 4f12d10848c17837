// Reads records of an archive by position, through a window of the stream.
#include "resources/zip/ArchiveReader.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace RynCommon::zip {

namespace {

constexpr std::size_t SMALLEST_READ = 512;
constexpr std::size_t LARGEST_READ = 64 * 1024;

std::int64_t seekBy(std::streambuf& source, std::ios_base::seekdir direction) {
    try {
        return source.pubseekoff(0, direction, std::ios_base::in);
    } catch (...) {
        return -1;
    }
}

}  // namespace

std::int64_t positionOf(std::streambuf& source) {
    return seekBy(source, std::ios_base::cur);
}

/// Leaves the buffer at its end.
std::int64_t endOf(std::streambuf& source) {
    return seekBy(source, std::ios_base::end);
}

bool seekTo(std::streambuf& source, std::int64_t position) {
    try {
        return std::int64_t{source.pubseekpos(position, std::ios_base::in)} == position;
    } catch (...) {
        return false;
    }
}

std::size_t readBytes(std::streambuf& source, char* to, std::size_t count) {
    try {
        const auto got = source.sgetn(to, static_cast<std::streamsize>(count));
        return static_cast<std::size_t>(std::max<std::streamsize>(got, 0));
    } catch (const std::bad_alloc&) {
        throw;
    } catch (...) {
        return 0;
    }
}

ArchiveReader::ArchiveReader(std::streambuf& source)
    : source_(source),
      start_(positionOf(source)),
      end_(start_ < 0 ? -1 : endOf(source)),
      sourcePosition_(end_),
      readAhead_(8 * SMALLEST_READ) {
    if (end_ < 0) start_ = -1;
}

std::string_view ArchiveReader::view(std::int64_t position, std::size_t count) {
    if (position < 0 || position >= end_) return {};
    const auto left = static_cast<std::uint64_t>(end_ - position);
    count = static_cast<std::size_t>(std::min<std::uint64_t>(count, left));
    const std::int64_t windowStart = sourcePosition_ - static_cast<std::int64_t>(windowSize_);
    if (position < windowStart || sourcePosition_ - position < static_cast<std::int64_t>(count)) {
        load(position, count);
    }
    const std::int64_t first = sourcePosition_ - static_cast<std::int64_t>(windowSize_);
    if (position < first || position >= sourcePosition_) return {};
    const auto offset = static_cast<std::size_t>(position - first);
    return {window_.get() + offset, std::min(count, windowSize_ - offset)};
}

/// The bytes that the window has of what is wanted are moved to its front.
void ArchiveReader::load(std::int64_t position, std::size_t count) {
    const std::int64_t windowStart = sourcePosition_ - static_cast<std::int64_t>(windowSize_);
    const bool isNear = position >= windowStart && position <= sourcePosition_;
    const std::size_t kept = isNear ? static_cast<std::size_t>(sourcePosition_ - position) : 0;
    adapt(position);
    const std::size_t wanted = std::max(count, readAhead_);
    if (kept > 0) std::memmove(window_.get(), window_.get() + windowSize_ - kept, kept);
    windowSize_ = kept;
    makeRoom(wanted);
    if (!isNear) {
        if (!seekTo(source_, position)) {
            end_ = std::min(end_, position);
            return;
        }
        sourcePosition_ = position;
    }
    const std::size_t got = readBytes(source_, window_.get() + kept, wanted - kept);
    windowSize_ += got;
    sourcePosition_ += static_cast<std::int64_t>(got);
    if (windowSize_ < count) end_ = sourcePosition_;
}

/// A position within one read of the window's end makes the next read larger.
void ArchiveReader::adapt(std::int64_t position) {
    if (windowSize_ == 0) return;
    const std::int64_t gap = position - sourcePosition_;
    if (gap >= -static_cast<std::int64_t>(windowSize_) &&
        gap < static_cast<std::int64_t>(readAhead_)) {
        readAhead_ = std::min(readAhead_ * 2, LARGEST_READ);
    } else {
        readAhead_ = std::max(readAhead_ / 2, SMALLEST_READ);
    }
}

void ArchiveReader::makeRoom(std::size_t size) {
    if (size <= capacity_) return;
    auto larger = std::make_unique_for_overwrite<char[]>(size);
    if (windowSize_ > 0) std::memcpy(larger.get(), window_.get(), windowSize_);
    window_ = std::move(larger);
    capacity_ = size;
}

void ArchiveReader::leaveAt(std::int64_t position) {
    sourcePosition_ = std::min(position, end_);
    windowSize_ = 0;
    seekTo(source_, sourcePosition_);
}

}  // namespace RynCommon::zip
