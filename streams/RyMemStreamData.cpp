// What is done with the data of a memory stream buffer as a whole: filled, handed out, cut, summed.
#include <RynCommon/RyMemStream.h>

#include <algorithm>
#include <utility>

#include "streams/MemStreamPages.h"
#include "streams/MemStreamRead.h"

namespace RynCommon {

namespace {

/// Sums big-endian 32-bit words of which the first may have begun in an earlier run.
class WordSum {
public:
    void add(std::string_view bytes) {
        std::size_t i = 0;
        while (pending_ != 0 && i < bytes.size()) addByte(bytes[i++]);
        const std::size_t words = (bytes.size() - i) / 4;
        for (std::size_t word = 0; word < words; ++word) sum_ += load(bytes.data() + i + 4 * word);
        i += 4 * words;
        while (i < bytes.size()) addByte(bytes[i++]);
    }
    std::uint32_t get() const { return sum_; }

private:
    /// The bytes of a word add up in their places, so a word that is never finished counts as if
    /// zeros followed.
    void addByte(char byte) {
        sum_ += static_cast<std::uint32_t>(static_cast<unsigned char>(byte)) << (24 - 8 * pending_);
        pending_ = (pending_ + 1) % 4;
    }
    static std::uint32_t load(const char* p) {
        const auto* const b = reinterpret_cast<const unsigned char*>(p);
        return std::uint32_t{b[0]} << 24 | std::uint32_t{b[1]} << 16 | std::uint32_t{b[2]} << 8 |
               b[3];
    }

    std::uint32_t sum_ = 0;
    unsigned pending_ = 0;  // bytes of the current word that were added
};

/// Gives a variable another value for a while.
template <class T>
class ScopedValue {
public:
    ScopedValue(T& variable, T value)
        : variable_(variable), before_(std::exchange(variable, value)) {}
    ~ScopedValue() { variable_ = before_; }
    ScopedValue(const ScopedValue&) = delete;

private:
    T& variable_;
    T before_;
};

}  // namespace

void RyMemStreamBuf::setSource(std::istream* source, bool ownSource) {
    // A buffer that reads itself would not end.
    if (source == nullptr || source->rdbuf() == this) return;
    flushBuffer();
    addSource(source, ownSource);
    if (!blocks_.empty()) fillLastBlock();
    seekoff(0, std::ios_base::cur, std::ios_base::in);
}

void RyMemStreamBuf::setGrowBytes(std::size_t bytes) {
    flushBuffer();
    if (getHeldLength() != 0) return;
    // A block may be left over for use again, of the old size.
    while (!blocks_.empty()) freeBlock(takeFrontBlock());
    growBytes_ = bytes != 0 ? bytes : DEFAULT_GROW_BYTES;
}

std::uint64_t RyMemStreamBuf::length() {
    flushBuffer();
    while (!sources_.empty()) appendBuffer(true);
    return getHeldLength();
}

std::size_t RyMemStreamBuf::getBuffer(const char*& bytes) {
    seekoff(0, std::ios_base::cur, std::ios_base::in);
    bytes = gptr();
    const std::size_t count = getRemains();
    seekoff(static_cast<off_type>(count), std::ios_base::cur, std::ios_base::in);
    return count;
}

void RyMemStreamBuf::appendToString(std::string& text) {
    const std::uint64_t total = length();
    if (total == 0) return;
    text.reserve(text.size() + static_cast<std::size_t>(total));
    for (std::uint64_t index = 0; index < blocks_.size(); ++index) text.append(getBytes(index));
}

std::size_t RyMemStreamBuf::copyStream(std::istream& source, std::size_t count) {
    // Should the source read this buffer, the block that is written must not be recycled.
    const ScopedValue<bool> keep(keepMemory_, true);
    std::size_t copied = 0;
    while (source.good() && copied < count) {
        seekoff(0, std::ios_base::cur, std::ios_base::out);
        const std::uint64_t room = growBytes_ - static_cast<std::uint64_t>(pptr() - pbase());
        const std::uint64_t got =
            readBytes(source, pptr(), std::min<std::uint64_t>(room, count - copied));
        advancePut(got);
        copied += static_cast<std::size_t>(got);
    }
    return copied;
}

void RyMemStreamBuf::trim(std::size_t length) {
    if (length >= this->length()) return;
    const std::uint64_t readAt = std::min<std::uint64_t>(getReadPosition(), length);
    const std::uint64_t writeAt = std::min<std::uint64_t>(getWritePosition(), length);
    const std::uint64_t blocks = length / growBytes_ + (length % growBytes_ != 0 ? 1 : 0);
    for (; blocks_.size() > blocks; blocks_.pop_back()) {
        clearAreasIn(blocks_.back());
        freeBlock(blocks_.back());
    }
    // The put area would bring back what it wrote.
    setp(nullptr, nullptr);
    fill_ = length - (blocks == 0 ? 0 : (blocks - 1) * growBytes_);
    current_ = 0;
    seekpos(static_cast<off_type>(readAt), std::ios_base::in);
    seekpos(static_cast<off_type>(writeAt), std::ios_base::out);
}

void RyMemStreamBuf::remove() {
    setg(nullptr, nullptr, nullptr);
    setp(nullptr, nullptr);
    for (; blocks_.size() > 1; blocks_.pop_back()) freeBlock(blocks_.back());
    if (pages_ != nullptr) pages_->releaseSpare();
    while (!sources_.empty()) dropSource();
    fill_ = 0;
    current_ = 0;
    if (!blocks_.empty()) seekpos(0, std::ios_base::in | std::ios_base::out);
}

void RyMemStreamBuf::abandonBuffer() {
    flushBuffer();
    if (eback() == nullptr) return;
    for (std::uint64_t count = getIndex(eback()); count > 0; --count) freeBlock(takeFrontBlock());
    current_ = 0;
}

std::uint32_t RyMemStreamBuf::calcOTFTableChecksum() {
    length();
    WordSum sum;
    for (std::uint64_t index = 0; index < blocks_.size(); ++index) sum.add(getBytes(index));
    return sum.get();
}

}  // namespace RynCommon
