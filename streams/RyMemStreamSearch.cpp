// Searching in a memory stream buffer.
//
// A pattern that is short beside a block is looked for block by block, in place, and between two
// blocks in a copy of the bytes around the seam. A longer one is looked for in windows that are
// gathered from many blocks: twice its length and more, so that each byte is copied twice at most.
#include <RynCommon/RyMemStream.h>

#include <algorithm>
#include <cstring>

#include "streams/MemStreamFind.h"

namespace RynCommon {

namespace {

constexpr std::size_t WINDOW = 64 * 1024;

/// A length of 0 stands for that of a NUL-terminated text.
std::string_view makePattern(const char* pattern, std::size_t length) {
    if (pattern == nullptr) return {};
    return {pattern, length != 0 ? length : std::strlen(pattern)};
}

}  // namespace

/// Appends at most `count` bytes from position `from` on, which moves past them, to `window`.
void RyMemStreamBuf::gather(std::uint64_t& from, std::size_t count, std::string& window) {
    while (count > 0 && reachBlock(from / growBytes_)) {
        const std::string_view block = getBytes(from / growBytes_);
        const auto offset = static_cast<std::size_t>(from % growBytes_);
        const std::string_view part = block.substr(std::min(offset, block.size()), count);
        if (part.empty()) return;
        window.append(part);
        count -= part.size();
        from += part.size();
    }
}

bool RyMemStreamBuf::findInBlocks(std::string_view pattern) {
    BytePattern search(pattern);
    const std::size_t overlap = pattern.size() - 1;
    std::string seam;
    const bool started = eback() != nullptr;
    std::uint64_t index = started ? getIndex(eback()) : 0;
    std::size_t offset = started ? static_cast<std::size_t>(gptr() - eback()) : 0;
    for (; reachBlock(index); ++index, offset = 0) {
        const std::string_view bytes = getBytes(index);
        std::size_t place = search.find(bytes.substr(offset));
        if (place == BytePattern::NOT_FOUND) {
            // A match across the seam begins in the block's tail, or there would be no room for it.
            offset = std::max(offset, bytes.size() - std::min(overlap, bytes.size()));
            if (offset == bytes.size()) continue;
            seam.assign(bytes.substr(offset));
            std::uint64_t next = (index + 1) * growBytes_;
            gather(next, overlap, seam);
            place = search.find(seam);
        }
        if (place != BytePattern::NOT_FOUND) {
            setGetArea(index, offset + place);
            return true;
        }
    }
    return false;
}

bool RyMemStreamBuf::findInWindows(std::string_view pattern) {
    std::uint64_t from = getReadPosition();
    // Without this a pattern longer than the data would be given a window.
    while (getHeldLength() - from < pattern.size() && !sources_.empty()) appendBuffer(true);
    if (getHeldLength() - from < pattern.size()) return false;
    BytePattern search(pattern);
    const std::size_t overlap = pattern.size() - 1;
    const std::size_t size = 2 * pattern.size() + WINDOW;
    std::string window;
    while (true) {
        gather(from, size - window.size(), window);
        const std::size_t place = search.find(window);
        if (place != BytePattern::NOT_FOUND) {
            seekpos(static_cast<off_type>(from - window.size() + place), std::ios_base::in);
            return true;
        }
        if (window.size() < size) return false;
        window.erase(0, window.size() - overlap);
    }
}

bool RyMemStreamBuf::searchSeek(const char* pattern, std::size_t length) {
    const std::string_view wanted = makePattern(pattern, length);
    if (wanted.empty()) return false;
    flushBuffer();
    return wanted.size() <= growBytes_ / 4 ? findInBlocks(wanted) : findInWindows(wanted);
}

bool RyMemStreamBuf::skipSeek(const char* pattern, std::size_t length) {
    if (pattern == nullptr) return false;
    std::string_view wanted = makePattern(pattern, length);
    if (wanted.size() < getRemains()) {
        if (!std::string_view(gptr(), getRemains()).starts_with(wanted)) return false;
        setg(eback(), gptr() + wanted.size(), egptr());
        return true;
    }
    flushBuffer();
    std::uint64_t at = getReadPosition();
    while (!wanted.empty()) {
        if (!reachBlock(at / growBytes_)) return false;
        const std::string_view block = getBytes(at / growBytes_);
        const auto offset = static_cast<std::size_t>(at % growBytes_);
        const std::string_view part = block.substr(std::min(offset, block.size()), wanted.size());
        if (part.empty() || !wanted.starts_with(part)) return false;
        wanted.remove_prefix(part.size());
        at += part.size();
    }
    seekpos(static_cast<off_type>(at), std::ios_base::in);
    return true;
}

void RyMemStreamBuf::seekEOL() {
    bool seen = false;
    while (!traits_type::eq_int_type(underflow(), traits_type::eof())) {
        const char* p = gptr();
        if (!seen) p = findLineEnd(p, egptr());
        seen = seen || p != egptr();
        while (p != egptr() && (*p == '\r' || *p == '\n')) ++p;
        setg(eback(), eback() + (p - eback()), egptr());
        if (p != egptr()) return;
    }
}

}  // namespace RynCommon
