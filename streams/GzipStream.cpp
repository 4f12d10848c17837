// The gzip input stream.
//
// One engine serves files and other streams: compressed bytes come from an istream in blocks, and
// produce() turns them into bytes for whoever asks, the get area or the target of a large read. The
// two differ in what they accept. A stream holds one member; what is no header that can be read
// comes through unchanged, and nothing is read behind the deflate data. A file is what gzip
// programs make of it: any number of members, and whatever follows the last one ignored; without
// gzip's first two bytes it comes through unchanged. Checksums are not looked at: there would be no
// way to tell of a wrong one.
//
// Whatever the source does wrong is the end of the data; nothing leaves as an exception.
#include <RynCommon/RyGzipStream.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <string>
#include <system_error>

#include <unicode/unistr.h>

#include "platform/Files.h"
#include "streams/GzipHeader.h"
#include "streams/Inflation.h"
#include "streams/PutBack.h"

namespace RynCommon {

namespace {

constexpr std::size_t BLOCK = 4096;
/// Input of files: as much as the file's own buffer holds, which such reads bypass.
constexpr std::size_t FILE_BLOCK = 64 * 1024;

std::size_t readBytes(std::istream& source, char* to, std::size_t count) {
    try {
        source.read(to, static_cast<std::streamsize>(count));
    } catch (...) {
        // A source that is set to throw has its trouble in its own state.
    }
    return static_cast<std::size_t>(source.gcount());
}

/// Makes the source readable again, at its start if it can seek.
void rewind(std::istream& source) {
    try {
        source.clear();
        if (source.rdbuf() != nullptr) source.rdbuf()->pubseekpos(0, std::ios_base::in);
    } catch (...) {
        // It is read from where it stands.
    }
}

bool stepBack(std::streambuf& source, std::size_t count) {
    try {
        const auto offset = -static_cast<std::streamoff>(count);
        return source.pubseekoff(offset, std::ios_base::cur, std::ios_base::in) !=
               std::streampos(std::streamoff(-1));
    } catch (...) {
        return false;
    }
}

std::string toUtf8(const UnicodeString& path) {
    std::string bytes;
    return path.toUTF8String(bytes);
}

std::string toUtf8(const wchar_t* path) {
    if (path == nullptr) return {};
    std::u32string units;
    for (; *path != L'\0'; ++path) units += static_cast<char32_t>(*path);
    return toUtf8(UnicodeString::fromUTF32(reinterpret_cast<const UChar32*>(units.data()),
                                           static_cast<int32_t>(units.size())));
}

}  // namespace

struct RyGzipStreamBuf::Impl {
    enum class Kind : unsigned char { Closed, Plain, Member, Members };

    void open(const std::string& path) {
        std::error_code error;
        file = platform::openInputFile(path, error);
        source = file.get();
        if (source == nullptr) return;
        inSize = FILE_BLOCK;
        topUp();
        become(atMember() ? Kind::Members : Kind::Plain);
    }

    void become(Kind to) {
        using Format = streams::Inflation::Format;
        kind = to;
        if (kind == Kind::Member) inflation = std::make_unique<streams::Inflation>(Format::Raw);
        if (kind == Kind::Members) inflation = std::make_unique<streams::Inflation>(Format::Gzip);
    }

    /// Moves the pending input to the front of its block and reads more behind it.
    void topUp() {
        if (!in) in = std::make_unique_for_overwrite<char[]>(inSize);
        const auto pending = static_cast<std::size_t>(inEnd - inNext);
        if (pending > 0) std::memmove(in.get(), inNext, pending);
        const std::size_t got = readBytes(*source, in.get() + pending, inSize - pending);
        inNext = in.get();
        inEnd = in.get() + pending + got;
        if (got == 0) sourceEnded = true;
    }

    bool atMember() const {
        return inEnd - inNext >= 2 && std::memcmp(inNext, streams::GZIP_MAGIC, 2) == 0;
    }

    /// Keeps bytes that were taken from a source that cannot step back.
    void keepPending(const char* bytes, std::size_t count) {
        in = std::make_unique_for_overwrite<char[]>(inSize);
        std::memcpy(in.get(), bytes, count);
        inNext = in.get();
        inEnd = in.get() + count;
    }

    /// Delivers bytes at `to`; less than `room` at the end of the data only.
    std::size_t produce(char* to, std::size_t room) {
        char* next = to;
        char* const end = to + room;
        while (next < end && !ended) {
            if (kind == Kind::Closed) ended = true;
            if (kind == Kind::Plain) pass(next, end);
            if (kind == Kind::Member || kind == Kind::Members) inflate(next, end);
        }
        return static_cast<std::size_t>(next - to);
    }

    void pass(char*& next, char* end) {
        const auto room = static_cast<std::size_t>(end - next);
        const std::size_t pending = std::min(room, static_cast<std::size_t>(inEnd - inNext));
        if (pending > 0) {
            std::memcpy(next, inNext, pending);
            inNext += pending;
            next += pending;
            return;
        }
        const std::size_t got = readBytes(*source, next, room);
        next += got;
        ended = got == 0;
    }

    void inflate(char*& next, char* end) {
        if (inNext == inEnd && !sourceEnded) topUp();
        const char* const before = next;
        const auto result = inflation->run(inNext, inEnd, next, end, false);
        switch (result) {
            case streams::Inflation::Result::Running:
                ended = sourceEnded && next == before;
                break;
            case streams::Inflation::Result::Ended:
                ended = kind == Kind::Member || !beginNextMember();
                break;
            case streams::Inflation::Result::Broken:
                ended = true;
                break;
        }
    }

    bool beginNextMember() {
        while (inEnd - inNext < 2 && !sourceEnded) topUp();
        inflation->restart();
        return atMember();
    }

    std::unique_ptr<std::istream> file;
    std::istream* source = nullptr;
    Kind kind = Kind::Closed;
    std::unique_ptr<streams::Inflation> inflation;
    /// One block of input, of which inNext to inEnd is pending.
    std::unique_ptr<char[]> in;
    std::size_t inSize = BLOCK;
    const char* inNext = nullptr;
    const char* inEnd = nullptr;
    bool sourceEnded = false;
    bool ended = false;
    /// What can be put back, then the bytes to read.
    std::array<char, streams::PUT_BACK + BLOCK> buffer;
};

RyGzipStreamBuf::RyGzipStreamBuf(const char* path) : impl_(std::make_unique<Impl>()) {
    impl_->open(path != nullptr ? path : "");
}

RyGzipStreamBuf::RyGzipStreamBuf(const wchar_t* path) : impl_(std::make_unique<Impl>()) {
    impl_->open(toUtf8(path));
}

RyGzipStreamBuf::RyGzipStreamBuf(const UnicodeString& path) : impl_(std::make_unique<Impl>()) {
    impl_->open(toUtf8(path));
}

RyGzipStreamBuf::RyGzipStreamBuf(std::istream& source) : impl_(std::make_unique<Impl>()) {
    rewind(source);
    impl_->source = &source;
    impl_->become(checkHeader(source) ? Impl::Kind::Member : Impl::Kind::Plain);
}

RyGzipStreamBuf::~RyGzipStreamBuf() = default;

bool RyGzipStreamBuf::is_open() const {
    return impl_->kind != Impl::Kind::Closed;
}

/// Bytes of a source that cannot step back are kept here instead.
bool RyGzipStreamBuf::checkHeader(std::istream& source) {
    if (!source.good()) return false;
    const streams::GzipHeader header = streams::readGzipHeader(*source.rdbuf());
    if (!header.accepted && !stepBack(*source.rdbuf(), header.takenCount)) {
        impl_->keepPending(header.taken, header.takenCount);
    }
    return header.accepted;
}

RyGzipStreamBuf::int_type RyGzipStreamBuf::underflow() {
    if (gptr() < egptr()) return traits_type::to_int_type(*gptr());
    char* const start = impl_->buffer.data();
    const std::size_t kept = streams::keepPutBack(start, eback(), gptr());
    const std::size_t count = impl_->produce(start + kept, BLOCK);
    setg(start, start + kept, start + kept + count);
    return count > 0 ? traits_type::to_int_type(*gptr()) : traits_type::eof();
}

/// Large reads inflate straight into the target.
std::streamsize RyGzipStreamBuf::xsgetn(char* target, std::streamsize count) {
    const std::streamsize buffered = egptr() - gptr();
    if (count - buffered < static_cast<std::streamsize>(BLOCK)) {
        return std::streambuf::xsgetn(target, count);
    }
    if (buffered > 0) std::memcpy(target, gptr(), static_cast<std::size_t>(buffered));
    setg(eback(), egptr(), egptr());
    char* const direct = target + buffered;
    const std::size_t produced = impl_->produce(direct, static_cast<std::size_t>(count - buffered));
    char* const start = impl_->buffer.data();
    const std::size_t kept = streams::keepPutBack(start, eback(), gptr(), direct, produced);
    setg(start, start + kept, start + kept);
    return buffered + static_cast<std::streamsize>(produced);
}

RyGzipStream::RyGzipStream(const char* path) : std::istream(nullptr), buffer_(path) {
    init(&buffer_);
}

RyGzipStream::RyGzipStream(const wchar_t* path) : std::istream(nullptr), buffer_(path) {
    init(&buffer_);
}

RyGzipStream::RyGzipStream(const UnicodeString& path) : std::istream(nullptr), buffer_(path) {
    init(&buffer_);
}

RyGzipStream::RyGzipStream(std::istream& source) : std::istream(nullptr), buffer_(source) {
    init(&buffer_);
}

RyGzipStream::~RyGzipStream() = default;

}  // namespace RynCommon
