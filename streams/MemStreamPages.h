// The memory of large memory streams.
//
// What writing a large stream costs is mostly what the system takes for memory it hands out for the
// first time, 4 KB a fault. In pages of 2 MB that takes less than half. So the blocks of a stream
// that has grown large are cut off such pages, one after the other; a page goes back to the system
// when the last of its blocks does. The block that was cut off last can be taken back, so that a
// stream whose end is cut and written again does not use up pages; any other block's room rests
// until its page goes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>

namespace RynCommon {

class MemStreamPages {
public:
    MemStreamPages() = default;
    MemStreamPages(const MemStreamPages&) = delete;
    MemStreamPages& operator=(const MemStreamPages&) = delete;
    ~MemStreamPages();

    /// Whether blocks of that size are cut off pages at all.
    static bool takesBlocksOf(std::uint64_t size);
    /// Null when there is no page; throws std::bad_alloc.
    char* allocate(std::size_t size);
    /// False when the block is not from here.
    bool release(const char* block) noexcept;
    /// Gives the page back that blocks are cut off when none of its blocks is in use; release()
    /// keeps it for the next block.
    void releaseSpare() noexcept;

private:
    using Live = std::map<char*, std::size_t>;  // pages by address, with their blocks in use

    Live::iterator findPage(const char* block);

    Live live_;
    char* next_ = nullptr;  // free room of the page that blocks are cut off
    char* end_ = nullptr;
    char* last_ = nullptr;  // the block cut off last, until it is released
};

}  // namespace RynCommon
