// The gzip output stream: one member, ended by the first flush.
#include <RynCommon/RyGzipStream.h>
#include <zlib.h>

#include <array>
#include <new>
#include <string>
#include <system_error>

#include <unicode/unistr.h>

#include "platform/Files.h"

namespace RynCommon {

namespace {

constexpr std::size_t BLOCK = 4096;
constexpr int LEVEL = 9;
constexpr int GZIP_WINDOW_BITS = 31;
constexpr int MEMORY_LEVEL = 9;

std::unique_ptr<std::ostream> createFile(const UnicodeString& path) {
    std::string bytes;
    path.toUTF8String(bytes);
    std::error_code error;
    return platform::openOutputFile(bytes, error);
}

}  // namespace

struct RyGzipOStreamBuf::Impl {
    /// Null for a file that could not be created, which takes everything and keeps nothing.
    std::ostream* out = nullptr;
    std::unique_ptr<std::ostream> ownOut;
    z_stream stream{};
    /// From the start of the compression to the member's end, or to trouble.
    bool running = false;
    std::array<char, BLOCK> inBuffer;
    std::array<char, BLOCK> outBuffer;

    void clearRoom() {
        stream.next_out = reinterpret_cast<Bytef*>(outBuffer.data());
        stream.avail_out = static_cast<uInt>(BLOCK);
    }

    void writeOut() {
        const auto count = static_cast<std::streamsize>(BLOCK - stream.avail_out);
        clearRoom();
        if (out == nullptr) return;
        try {
            out->write(outBuffer.data(), count);
        } catch (...) {
            // A destination that is set to throw has its trouble in its own state.
        }
    }

    void end() {
        deflateEnd(&stream);
        running = false;
    }
};

RyGzipOStreamBuf::RyGzipOStreamBuf(std::ostream& destination) : impl_(std::make_unique<Impl>()) {
    impl_->out = &destination;
    initZStream();
}

RyGzipOStreamBuf::RyGzipOStreamBuf(const UnicodeString& path) : impl_(std::make_unique<Impl>()) {
    impl_->ownOut = createFile(path);
    impl_->out = impl_->ownOut.get();
    initZStream();
}

RyGzipOStreamBuf::~RyGzipOStreamBuf() {
    RyGzipOStreamBuf::sync();
    if (impl_->running) impl_->end();
}

void RyGzipOStreamBuf::initZStream() {
    const int status = deflateInit2(&impl_->stream, LEVEL, Z_DEFLATED, GZIP_WINDOW_BITS,
                                    MEMORY_LEVEL, Z_DEFAULT_STRATEGY);
    if (status == Z_MEM_ERROR) throw std::bad_alloc();
    impl_->running = status == Z_OK;
    impl_->clearRoom();
    setp(impl_->inBuffer.data(), impl_->inBuffer.data() + BLOCK);
}

/// Compresses the put area. 0, or -1 when the member has ended, now through trouble or before.
int RyGzipOStreamBuf::encodeBuffer(int flush) {
    if (!impl_->running) return -1;
    z_stream& stream = impl_->stream;
    stream.next_in = reinterpret_cast<Bytef*>(pbase());
    stream.avail_in = static_cast<uInt>(pptr() - pbase());
    int status = deflate(&stream, flush);
    while (status == Z_OK || status == Z_BUF_ERROR) {
        if (stream.avail_out == 0) {
            impl_->writeOut();
        } else if (flush == Z_NO_FLUSH && stream.avail_in == 0) {
            return 0;
        } else if (status == Z_BUF_ERROR) {
            break;
        }
        status = deflate(&stream, flush);
    }
    if (status == Z_STREAM_END) impl_->writeOut();
    impl_->end();
    return status == Z_STREAM_END ? 0 : -1;
}

RyGzipOStreamBuf::int_type RyGzipOStreamBuf::overflow(int_type c) {
    encodeBuffer(Z_NO_FLUSH);
    setp(impl_->inBuffer.data(), impl_->inBuffer.data() + BLOCK);
    if (!traits_type::eq_int_type(c, traits_type::eof())) sputc(traits_type::to_char_type(c));
    return traits_type::not_eof(c);
}

int RyGzipOStreamBuf::sync() {
    encodeBuffer(Z_FINISH);
    setp(impl_->inBuffer.data(), impl_->inBuffer.data() + BLOCK);
    if (impl_->ownOut) impl_->ownOut->flush();
    return 0;
}

RyGzipOStream::RyGzipOStream(std::ostream& destination)
    : std::ostream(nullptr), buffer_(destination) {
    init(&buffer_);
}

RyGzipOStream::RyGzipOStream(const UnicodeString& path) : std::ostream(nullptr), buffer_(path) {
    init(&buffer_);
}

RyGzipOStream::~RyGzipOStream() = default;

}  // namespace RynCommon
