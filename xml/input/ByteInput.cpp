// Blocks of bytes from a stream; see the header.
#include "xml/input/ByteInput.h"

#include <algorithm>
#include <cstring>
#include <streambuf>

namespace RynCommon {

void ByteInput::open(std::istream* in) {
    begin_ = end_ = 0;
    replaceStream(in);
}

void ByteInput::replaceStream(std::istream* in) {
    in_ = in;
    ended_ = in == nullptr || in->rdbuf() == nullptr;
    if (!ended_ && data_ == nullptr)
        data_ = std::make_unique_for_overwrite<std::uint8_t[]>(BLOCK + SLACK);
}

bool ByteInput::fill(bool single) {
    if (ended_) return false;
    const std::size_t kept = size();
    if (begin_ != 0) {
        std::memmove(data_.get(), data_.get() + begin_, kept);
        begin_ = 0;
        end_ = kept;
    }
    if (single) return fillSingle();
    std::streambuf* const buffer = in_->rdbuf();
    const std::streamsize ready = buffer->in_avail();
    if (ready <= 1) return fillSingle();
    const auto room = static_cast<std::streamsize>(BLOCK + SLACK - end_);
    const std::streamsize got =
        buffer->sgetn(reinterpret_cast<char*>(data_.get() + end_), std::min(ready, room));
    if (got <= 0) return fillSingle();
    end_ += static_cast<std::size_t>(got);
    return true;
}

bool ByteInput::fillSingle() {
    using Traits = std::streambuf::traits_type;
    const Traits::int_type c = in_->rdbuf()->sbumpc();
    if (Traits::eq_int_type(c, Traits::eof())) {
        finish();
        return false;
    }
    data_[end_++] = static_cast<std::uint8_t>(Traits::to_char_type(c));
    return true;
}

bool ByteInput::need(std::size_t bytes) {
    while (size() < bytes)
        if (!fill(true)) return false;
    return true;
}

/// The stream's end is remembered, so that a terminal is not asked twice, and shown in the stream's
/// own state.
void ByteInput::finish() {
    ended_ = true;
    try {
        in_->setstate(std::ios_base::eofbit);
    } catch (const std::ios_base::failure&) {
        // The caller's stream throws at its end; the document's end is nothing unusual here.
    }
}

}  // namespace RynCommon
