// The blocks of a memory stream buffer, its positions and its areas.
//
// A position p is byte p % growBytes of block p / growBytes. Both areas lie in one block each: the
// get area covers the block's valid bytes, the put area all but the block's last byte, so that
// overflow() always has room for its byte and moves to the next block with it. An area that was
// never set stands at position 0. Blocks are neither moved nor joined; whoever frees one clears the
// areas inside.
//
// What was written past `fill_` of the last block counts only after flushBuffer(), which every
// operation calls that looks at the data.
//
// While a source is pending the last block is full: a block is filled when it is added, from as
// many sources as that takes, and a source that ends or fails is dropped at once. So blocks can be
// added one by one, on demand, and writing into data that was not read from its source yet gives
// what it would give had the source been drained: the next block is taken in full before the first
// byte of it is overwritten.
//
// Nothing is changed until the allocations that a step needs have succeeded, so that an exhausted
// heap leaves areas inside their blocks.
#include <RynCommon/RyMemStream.h>

#include <algorithm>
#include <cstring>
#include <limits>

#include "streams/MemStreamPages.h"
#include "streams/MemStreamRead.h"

namespace RynCommon {

namespace {

constexpr std::uint64_t NO_BLOCK = ~std::uint64_t{0};

const std::streambuf::pos_type NO_POSITION{std::streambuf::off_type{-1}};

/// From this length on, blocks come from pages.
constexpr std::uint64_t LARGE_STREAM = 4 << 20;

}  // namespace

RyMemStreamBuf::RyMemStreamBuf(std::istream* source, std::uint64_t growBytes, bool ownSource)
    : growBytes_(growBytes != 0 ? growBytes : DEFAULT_GROW_BYTES) {
    if (source != nullptr) addSource(source, ownSource);
}

RyMemStreamBuf::RyMemStreamBuf(const RyMemStreamBuf& other)
    : std::streambuf(), growBytes_(other.growBytes_), keepMemory_(other.keepMemory_) {
    // The destructor does not run when a constructor throws; this one frees what was copied.
    RyMemStreamBuf copy(nullptr, growBytes_, false);
    for (const char* block : other.blocks_) {
        const bool last = block == other.blocks_.back();
        const bool written = last && other.pbase() == block;
        if (last) copy.fill_ = other.fill_;
        if (written)
            copy.fill_ = std::max(copy.fill_, static_cast<std::uint64_t>(other.pptr() - block));
        copy.pushBlock(copy.makeBlock());
        std::memcpy(copy.blocks_.back(), block,
                    static_cast<std::size_t>(last ? copy.fill_ : growBytes_));
    }
    blocks_.swap(copy.blocks_);
    pages_.swap(copy.pages_);
    fill_ = copy.fill_;
    if (other.eback() != nullptr)
        setGetArea(other.readIndex_, static_cast<std::uint64_t>(other.gptr() - other.eback()));
    if (other.pbase() != nullptr)
        setPutArea(other.writeIndex_, static_cast<std::uint64_t>(other.pptr() - other.pbase()));
    current_ = other.current_;
}

RyMemStreamBuf::~RyMemStreamBuf() {
    // Front first: the heap joins the blocks as they come and gives them back to the system once.
    for (char* block : blocks_) freeBlock(block);
    while (!sources_.empty()) dropSource();
}

void RyMemStreamBuf::addSource(std::istream* source, bool owned) {
    sources_.push_back(source);
    try {
        owned_.push_back(owned);
    } catch (...) {
        sources_.pop_back();
        throw;
    }
}

void RyMemStreamBuf::dropSource() {
    const std::unique_ptr<std::istream> owned(owned_.front() ? sources_.front() : nullptr);
    sources_.pop_front();
    owned_.pop_front();
}

/// Reads into the free room of the last block until it is full or the sources are used up.
void RyMemStreamBuf::fillLastBlock() {
    while (!sources_.empty() && fill_ < growBytes_) {
        std::istream& source = *sources_.front();
        fill_ += readBytes(source, blocks_.back() + fill_, growBytes_ - fill_);
        if (!source.good()) dropSource();
    }
}

void RyMemStreamBuf::clearAreasIn(const char* block) {
    if (eback() == block) setg(nullptr, nullptr, nullptr);
    if (pbase() == block) setp(nullptr, nullptr);
}

char* RyMemStreamBuf::makeBlock() {
    const auto size = static_cast<std::size_t>(growBytes_);
    if (blocks_.size() * growBytes_ >= LARGE_STREAM && MemStreamPages::takesBlocksOf(size)) {
        if (pages_ == nullptr) pages_ = std::make_unique<MemStreamPages>();
        if (char* const block = pages_->allocate(size)) return block;
    }
    return new char[size];
}

void RyMemStreamBuf::freeBlock(char* block) noexcept {
    if (pages_ == nullptr || !pages_->release(block)) delete[] block;
}

void RyMemStreamBuf::pushBlock(char* block) {
    try {
        blocks_.push_back(block);
    } catch (...) {
        freeBlock(block);
        throw;
    }
}

/// Takes the oldest block out; the caller uses it again or frees it.
char* RyMemStreamBuf::takeFrontBlock() {
    char* const block = blocks_.front();
    clearAreasIn(block);
    blocks_.pop_front();
    if (current_ > 0) --current_;
    if (readIndex_ > 0) --readIndex_;
    if (writeIndex_ > 0) --writeIndex_;
    return block;
}

void RyMemStreamBuf::appendBuffer(bool newBlock) {
    const bool recycle = !newBlock && blocks_.size() > 1;
    while (recycle && blocks_.size() > 2) freeBlock(takeFrontBlock());
    pushBlock(recycle ? takeFrontBlock() : makeBlock());
    fill_ = 0;
    current_ = blocks_.size() - 1;
    fillLastBlock();
}

void RyMemStreamBuf::flushBuffer() {
    if (pbase() == nullptr || pbase() != blocks_.back()) return;
    fill_ = std::max(fill_, static_cast<std::uint64_t>(pptr() - pbase()));
}

std::uint64_t RyMemStreamBuf::getIndex(const char* block) {
    if (block == nullptr) return NO_BLOCK;
    const std::uint64_t count = blocks_.size();
    for (const std::uint64_t index : {readIndex_, writeIndex_})
        if (index < count && blocks_[index] == block) return current_ = index;
    const std::uint64_t start = std::min(current_, count);
    for (std::uint64_t index = start; index < count; ++index)
        if (blocks_[index] == block) return current_ = index;
    for (std::uint64_t index = start; index-- > 0;)
        if (blocks_[index] == block) return current_ = index;
    return NO_BLOCK;
}

/// The number of bytes held; sources are left alone.
std::uint64_t RyMemStreamBuf::getHeldLength() const {
    return blocks_.empty() ? 0 : (blocks_.size() - 1) * growBytes_ + fill_;
}

std::string_view RyMemStreamBuf::getBytes(std::uint64_t index) const {
    const std::uint64_t valid = index + 1 == blocks_.size() ? fill_ : growBytes_;
    return {blocks_[index], static_cast<std::size_t>(valid)};
}

/// Whether there is a block of that index, once the sources have been read as far.
bool RyMemStreamBuf::reachBlock(std::uint64_t index) {
    while (index >= blocks_.size() && !sources_.empty()) appendBuffer(true);
    return index < blocks_.size();
}

void RyMemStreamBuf::setGetArea(std::uint64_t index, std::uint64_t offset) {
    const std::uint64_t valid = getBytes(index).size();
    char* const block = blocks_[index];
    setg(block, block + std::min(offset, valid), block + valid);
    current_ = readIndex_ = index;
}

void RyMemStreamBuf::setPutArea(std::uint64_t index, std::uint64_t offset) {
    char* const block = blocks_[index];
    setp(block, block + (growBytes_ - 1));
    // pbump() takes an int, and blocks may be larger.
    constexpr int MOST = std::numeric_limits<int>::max();
    for (; offset > MOST; offset -= MOST) pbump(MOST);
    pbump(static_cast<int>(offset));
    current_ = writeIndex_ = index;
}

/// Moves the write position past `count` bytes that were stored at it; a block that is full now is
/// left for the next one.
void RyMemStreamBuf::advancePut(std::uint64_t count) {
    const std::uint64_t index = getIndex(pbase());
    const std::uint64_t offset = static_cast<std::uint64_t>(pptr() - pbase()) + count;
    if (index + 1 == blocks_.size()) fill_ = std::max(fill_, offset);
    if (offset < growBytes_) return setPutArea(index, offset);
    if (index + 1 == blocks_.size()) appendBuffer(true);
    setPutArea(index + 1, 0);
}

std::uint64_t RyMemStreamBuf::getReadPosition() {
    if (eback() == nullptr) return 0;
    return getIndex(eback()) * growBytes_ + static_cast<std::uint64_t>(gptr() - eback());
}

std::uint64_t RyMemStreamBuf::getWritePosition() {
    if (pbase() == nullptr) return 0;
    return getIndex(pbase()) * growBytes_ + static_cast<std::uint64_t>(pptr() - pbase());
}

/// Moves an exhausted get area to the bytes that follow it; false when there are none.
bool RyMemStreamBuf::advanceGetArea() {
    std::uint64_t index = getIndex(eback());
    auto offset = static_cast<std::uint64_t>(egptr() - eback());
    if (offset >= getBytes(index).size()) {
        ++index;
        offset = 0;
    }
    if (index < blocks_.size()) {
        setGetArea(index, offset);
    } else if (!sources_.empty()) {
        appendBuffer(keepMemory_);
        setGetArea(blocks_.size() - 1, 0);
    }
    return gptr() < egptr();
}

RyMemStreamBuf::int_type RyMemStreamBuf::underflow() {
    flushBuffer();
    if (eback() == nullptr) {
        if (blocks_.empty()) appendBuffer(keepMemory_);
        setGetArea(0, 0);
    }
    if (gptr() == egptr() && !advanceGetArea()) return traits_type::eof();
    return traits_type::to_int_type(*gptr());
}

/// Stores into the last byte of the put area's block, behind the area, and moves to the next block.
void RyMemStreamBuf::putLastByte(int_type c) {
    const std::uint64_t index = getIndex(pbase());
    if (index + 1 == blocks_.size()) appendBuffer(true);
    *pptr() = traits_type::to_char_type(c);
    setPutArea(index + 1, 0);
}

RyMemStreamBuf::int_type RyMemStreamBuf::overflow(int_type c) {
    if (pbase() == nullptr) {
        if (blocks_.empty()) appendBuffer(true);
        setPutArea(0, 0);
    }
    if (traits_type::eq_int_type(c, traits_type::eof())) return c;
    if (pptr() == epptr()) {
        putLastByte(c);
    } else {
        *pptr() = traits_type::to_char_type(c);
        pbump(1);
    }
    flushBuffer();
    return c;
}

RyMemStreamBuf::int_type RyMemStreamBuf::pbackfail(int_type c) {
    const std::uint64_t index = getIndex(eback());
    if (index == NO_BLOCK) return traits_type::eof();
    if (gptr() > eback()) {
        gbump(-1);
    } else if (index > 0) {
        setGetArea(index - 1, growBytes_ - 1);
    } else {
        return traits_type::eof();
    }
    return traits_type::not_eof(c);
}

RyMemStreamBuf::pos_type RyMemStreamBuf::seekoff(off_type offset, std::ios_base::seekdir way,
                                                 std::ios_base::openmode which) {
    flushBuffer();
    std::uint64_t base = 0;
    if (way == std::ios_base::end) {
        base = length();
    } else if (way == std::ios_base::cur) {
        base = which == std::ios_base::in ? getReadPosition() : getWritePosition();
    } else if (way != std::ios_base::beg) {
        return NO_POSITION;
    }
    off_type target = 0;
    if (__builtin_add_overflow(base, offset, &target)) return NO_POSITION;
    return seekpos(pos_type(target), which);
}

RyMemStreamBuf::pos_type RyMemStreamBuf::seekpos(pos_type position, std::ios_base::openmode which) {
    flushBuffer();
    const off_type wanted = position;
    if (wanted < 0) return NO_POSITION;
    const auto target = static_cast<std::uint64_t>(wanted);
    if (blocks_.empty()) appendBuffer(true);
    while (target >= getHeldLength() && !sources_.empty()) appendBuffer(true);
    if (target > getHeldLength()) return NO_POSITION;
    const std::uint64_t index = target / growBytes_;
    if (index == blocks_.size()) appendBuffer(true);
    if ((which & std::ios_base::in) != 0) setGetArea(index, target % growBytes_);
    if ((which & std::ios_base::out) != 0) setPutArea(index, target % growBytes_);
    return pos_type(wanted);
}

}  // namespace RynCommon
