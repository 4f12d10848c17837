// The input side of the conversion streams.
//
// Bytes are taken from the source into a raw block: all that it has ready, or, when nothing is
// known to be ready, one byte at a time until a character is complete. The decoder turns the block
// into units directly in the get area. The decoder holds on to a character that is cut at the
// block's end, so the raw block is empty again before it is topped up, except when the get area was
// too small for it.
#include <RynCommon/RyDMCStream.h>

#include <algorithm>
#include <array>

#include "streams/Converter.h"
#include "streams/Utf16Units.h"

namespace RynCommon {

namespace {

constexpr std::size_t RAW_SIZE = 4096;
constexpr std::size_t PUT_BACK_UNITS = 8;
constexpr std::size_t UNITS_SIZE = 4096;
constexpr char16_t BYTE_ORDER_MARK = 0xFEFF;

}  // namespace

struct RyDMCStreamBuf::Impl {
    enum class Wait { Never, ForOneByte };

    Impl(std::istream* in, const char* encoding) : source(in) {
        if (in != nullptr && encoding != nullptr) decoder = streams::openDecoder(encoding);
    }

    char16_t* blockStart() { return units.data() + PUT_BACK_UNITS; }

    /// How many bytes to ask the source for; 0 when none is ready and none is to be waited for.
    std::streamsize chooseCount(Wait wait) {
        const std::streamsize ready = source->rdbuf() ? source->rdbuf()->in_avail() : 0;
        if (ready > 0) return std::min(ready, static_cast<std::streamsize>(RAW_SIZE));
        return wait == Wait::Never ? 0 : 1;
    }

    /// False when there was nothing to take without waiting. The end of the source, and trouble
    /// with it, set `sourceEnded`.
    bool topUp(Wait wait) {
        rawNext = rawEnd = raw.data();
        try {
            const std::streamsize wanted = chooseCount(wait);
            if (wanted == 0) return false;
            source->read(raw.data(), wanted);
            rawEnd += source->gcount();
        } catch (...) {
            // A source that is set to throw has its trouble in its own state.
        }
        sourceEnded = rawEnd == raw.data();
        return true;
    }

    /// Decodes what is in the raw block and returns the number of units at blockStart().
    std::size_t decodeBlock() {
        char16_t* end = blockStart();
        const streams::Conversion result =
            decoder->decode(rawNext, rawEnd, end, units.data() + units.size(), sourceEnded);
        using enum streams::Conversion;
        ended = result == Failed || (sourceEnded && result == SourceUsed);
        leftover = result == TargetFull;
        return static_cast<std::size_t>(end - blockStart());
    }

    /// Takes a mark off the start of the data.
    std::size_t dropMark(std::size_t count) {
        if (started || count == 0) return count;
        started = true;
        if (*blockStart() != BYTE_ORDER_MARK) return count;
        std::copy(blockStart() + 1, blockStart() + count, blockStart());
        return count - 1;
    }

    /// Produces at least one unit, unless the data ends or `wait` forbids it.
    std::size_t produce(Wait wait) {
        std::size_t count = 0;
        while (count == 0 && !ended) {
            if (!leftover && rawNext == rawEnd && !sourceEnded && !topUp(wait)) break;
            count = dropMark(decodeBlock());
        }
        streams::swapToLittleEndian(blockStart(), count);
        return count;
    }

    std::istream* source;
    std::unique_ptr<streams::Decoder> decoder;
    std::array<char, RAW_SIZE> raw;
    const char* rawNext = raw.data();
    char* rawEnd = raw.data();
    /// The put-back area and the block behind it.
    std::array<char16_t, PUT_BACK_UNITS + UNITS_SIZE> units;
    bool started = false;
    bool leftover = false;
    bool sourceEnded = false;
    bool ended = false;
};

RyDMCStreamBuf::RyDMCStreamBuf(std::istream* source, const char* encoding)
    : impl_(std::make_unique<Impl>(source, encoding)) {
    char* const start = streams::bytesOf(impl_->blockStart());
    setg(start, start, start);
    impl_->ended = !is_open();
}

RyDMCStreamBuf::~RyDMCStreamBuf() = default;

bool RyDMCStreamBuf::is_open() const {
    return impl_->decoder != nullptr;
}

RyDMCStreamBuf::int_type RyDMCStreamBuf::underflow() {
    if (gptr() == egptr()) fill(true);
    return gptr() < egptr() ? traits_type::to_int_type(*gptr()) : traits_type::eof();
}

/// Converts what the source has ready, so that the answer is exact.
std::streamsize RyDMCStreamBuf::showmanyc() {
    if (gptr() == egptr()) fill(false);
    if (gptr() < egptr()) return egptr() - gptr();
    return impl_->ended ? -1 : 0;
}

/// Replaces the used-up get area by the next block; the last bytes of the old one stay in front of
/// it.
void RyDMCStreamBuf::fill(bool mayWait) {
    char* const start = streams::bytesOf(impl_->blockStart());
    const auto kept = std::min<std::ptrdiff_t>(gptr() - eback(), PUT_BACK_UNITS * sizeof(char16_t));
    std::copy(gptr() - kept, gptr(), start - kept);
    const std::size_t count = impl_->produce(mayWait ? Impl::Wait::ForOneByte : Impl::Wait::Never);
    setg(start - kept, start, start + count * sizeof(char16_t));
}

RyDMCStream::RyDMCStream(std::istream* source, const char* encoding)
    : std::istream(nullptr), buffer_(source, encoding) {
    init(&buffer_);
}

RyDMCStream::~RyDMCStream() = default;

}  // namespace RynCommon
