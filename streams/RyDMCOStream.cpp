// The output side of the conversion streams.
//
// Units collect in the put area as UTF-16LE bytes. When it is full, line feeds are converted into a
// second array of units, which the encoder turns into bytes for the destination.
#include <RynCommon/RyDMCStream.h>

#include <algorithm>
#include <array>
#include <string_view>

#include "streams/Converter.h"
#include "streams/Utf16Units.h"

namespace RynCommon {

namespace {

constexpr std::size_t BUFFER_BYTES = 4096;
constexpr std::size_t BUFFER_UNITS = BUFFER_BYTES / sizeof(char16_t);
constexpr char16_t BYTE_ORDER_MARK = 0xFEFF;

constexpr std::u16string_view LINE_ENDS[] = {u"", u"\n", u"\r\n", u"\r"};

}  // namespace

struct RyDMCOStreamBuf::Impl {
    Impl(std::ostream* out, const char* encoding, LF_CONVERT mode, bool strict)
        : destination(out),
          encoder(out != nullptr && encoding != nullptr ? encoding : "", strict),
          lineEnd(mode >= LF_NONE && mode <= LF_CR ? LINE_ENDS[mode] : LINE_ENDS[LF_NONE]) {
        healthy = encoder.isOpen();
    }

    char16_t* addUnit(char16_t c, char16_t* to) {
        const bool secondHalf = c == u'\n' && afterReturn;
        afterReturn = c == u'\r';
        if (secondHalf) return to;
        if (c != u'\r' && c != u'\n') {
            *to = c;
            return to + 1;
        }
        return std::copy(lineEnd.begin(), lineEnd.end(), to);
    }

    /// Every line end of `count` units, CR LF, CR or LF, becomes the wanted one. A pair may be cut
    /// by the end of the units.
    std::u16string_view convertLineEnds(const char16_t* from, std::size_t count) {
        if (lineEnd.empty()) return {from, count};
        char16_t* end = scratch.data();
        for (std::size_t i = 0; i < count; ++i) end = addUnit(from[i], end);
        return {scratch.data(), static_cast<std::size_t>(end - scratch.data())};
    }

    bool writeBytes(const char* data, std::streamsize count) {
        if (count == 0) return healthy;
        try {
            destination->write(data, count);
            healthy = healthy && destination->good();
        } catch (...) {
            // A destination that is set to throw has its trouble in its own state.
            healthy = false;
        }
        if (healthy) length += static_cast<std::uint64_t>(count);
        return healthy;
    }

    /// Encodes and writes. With `last` the encoder ends in its initial state.
    bool writeUnits(std::u16string_view text, bool last) {
        const char16_t* from = text.data();
        const char16_t* const fromEnd = from + text.size();
        streams::Conversion result = streams::Conversion::TargetFull;
        while (healthy && result == streams::Conversion::TargetFull) {
            char* to = bytes.data();
            result = encoder.encode(from, fromEnd, to, bytes.data() + bytes.size(), last);
            writeBytes(bytes.data(), to - bytes.data());
        }
        healthy = healthy && result == streams::Conversion::SourceUsed;
        afterReturn = afterReturn && !last;
        return healthy;
    }

    std::ostream* destination;
    streams::Encoder encoder;
    std::u16string_view lineEnd;
    std::uint64_t length = 0;
    std::uint64_t limit = 0;
    /// Cleared for good when the destination fails, or in strict mode by a character that the
    /// encoding lacks.
    bool healthy = false;
    bool afterReturn = false;
    std::array<char16_t, BUFFER_UNITS> units;
    std::array<char16_t, 2 * BUFFER_UNITS> scratch;
    std::array<char, 2 * BUFFER_BYTES> bytes;
};

RyDMCOStreamBuf::RyDMCOStreamBuf(std::ostream* destination, const char* encoding,
                                 bool byteOrderMark, LF_CONVERT mode, bool strict)
    : impl_(std::make_unique<Impl>(destination, encoding, mode, strict)) {
    if (!is_open()) return;
    char* const start = streams::bytesOf(impl_->units.data());
    setp(start, start + BUFFER_BYTES);
    if (byteOrderMark && impl_->encoder.isUnicode()) writeString(UnicodeString(BYTE_ORDER_MARK));
}

RyDMCOStreamBuf::~RyDMCOStreamBuf() {
    convert(true);
}

bool RyDMCOStreamBuf::is_open() const {
    return impl_->encoder.isOpen();
}

/// Converts the put area and empties it. A byte that is half a unit stays, or is dropped with
/// `last`.
bool RyDMCOStreamBuf::convert(bool last) {
    if (!is_open()) return false;
    const auto pending = static_cast<std::size_t>(pptr() - pbase());
    const std::size_t count = pending / sizeof(char16_t);
    streams::swapToLittleEndian(impl_->units.data(), count);
    const bool written =
        impl_->writeUnits(impl_->convertLineEnds(impl_->units.data(), count), last);
    const bool half = pending % sizeof(char16_t) != 0 && !last;
    if (half) *pbase() = *(pptr() - 1);
    setp(pbase(), epptr());
    pbump(half ? 1 : 0);
    return written;
}

RyDMCOStreamBuf::int_type RyDMCOStreamBuf::overflow(int_type c) {
    if (!convert(false)) return traits_type::eof();
    if (!traits_type::eq_int_type(c, traits_type::eof())) {
        *pptr() = traits_type::to_char_type(c);
        pbump(1);
    }
    return traits_type::not_eof(c);
}

int RyDMCOStreamBuf::sync() {
    if (!convert(false)) return -1;
    try {
        impl_->destination->flush();
    } catch (...) {
        impl_->healthy = false;
    }
    impl_->healthy = impl_->healthy && impl_->destination->good();
    return impl_->healthy ? 0 : -1;
}

bool RyDMCOStreamBuf::writeString(const UnicodeString& text) {
    std::array<char16_t, 256> block;
    for (std::int32_t start = 0; start < text.length() && impl_->healthy;) {
        const auto count = std::min<std::int32_t>(block.size(), text.length() - start);
        text.extract(start, count, block.data());
        streams::swapToLittleEndian(block.data(), static_cast<std::size_t>(count));
        const std::streamsize size = count * static_cast<std::streamsize>(sizeof(char16_t));
        if (sputn(streams::bytesOf(block.data()), size) != size) return false;
        start += count;
    }
    return impl_->healthy;
}

bool RyDMCOStreamBuf::writeRawBuffer(const char* bytes, std::uint64_t length) {
    if (!convert(true)) return false;
    return impl_->writeBytes(bytes, static_cast<std::streamsize>(length));
}

bool RyDMCOStreamBuf::writeRawStream(std::istream& source) {
    if (!convert(true)) return false;
    std::array<char, BUFFER_BYTES> block;
    try {
        while (impl_->healthy && source.read(block.data(), block.size()).gcount() > 0) {
            impl_->writeBytes(block.data(), source.gcount());
        }
        return impl_->healthy && !source.bad();
    } catch (...) {
        return false;
    }
}

void RyDMCOStreamBuf::setLimit(std::uint64_t bytes) {
    impl_->limit = bytes;
}

bool RyDMCOStreamBuf::isLimitOver() const {
    return impl_->limit != 0 && impl_->length > impl_->limit;
}

std::uint64_t RyDMCOStreamBuf::getOutputLength() const {
    return impl_->length;
}

std::ostream* RyDMCOStreamBuf::getOutputStream() const {
    return impl_->destination;
}

RyDMCOStream::RyDMCOStream(std::ostream* destination, const char* encoding, bool byteOrderMark,
                           LF_CONVERT mode, bool strict)
    : std::ostream(nullptr), buffer_(destination, encoding, byteOrderMark, mode, strict) {
    init(&buffer_);
}

RyDMCOStream::~RyDMCOStream() = default;

}  // namespace RynCommon
