// Resources that are gzip data (RFC 1952).
#include <RynCommon/RyUri.h>

#include <memory>
#include <streambuf>

#include <RynCommon/RyGzipStream.h>

namespace RynCommon {

namespace {

using Traits = std::streambuf::traits_type;

struct SourceHolder {
    std::unique_ptr<std::istream> source;
};

/// Deletes its source after itself.
class OwningGzipStream : private SourceHolder, public RyGzipStream {
public:
    explicit OwningGzipStream(std::unique_ptr<std::istream> input)
        : SourceHolder{std::move(input)}, RyGzipStream(*source) {}
};

/// Magic number, the method "deflate", and flags without the reserved bits.
bool isHeaderByte(int index, Traits::int_type c) {
    constexpr Traits::int_type START[] = {0x1F, 0x8B, 8};
    if (index < 3) return c == START[index];
    return !Traits::eq_int_type(c, Traits::eof()) && (c & 0xE0) == 0;
}

/// Looks at the bytes ahead; `taken` receives how many were taken, and is no more than that
/// matched.
bool matchHeader(std::streambuf& bytes, int& taken) {
    for (taken = 0; isHeaderByte(taken, bytes.sgetc()); ++taken) {
        if (taken == 3) return true;
        bytes.sbumpc();
    }
    return false;
}

/// Works on the buffer: the stream's state is not even looked at.
bool hasHeader(std::streambuf& bytes) {
    const std::streampos failure(std::streamoff(-1));
    const std::streampos position = bytes.pubseekoff(0, std::ios_base::cur, std::ios_base::in);
    int taken = 0;
    if (position == failure || bytes.pubseekpos(0, std::ios_base::in) == failure) {
        const bool isMatch = matchHeader(bytes, taken);
        for (; taken > 0; --taken) bytes.sungetc();
        return isMatch;
    }
    const bool isMatch = matchHeader(bytes, taken);
    bytes.pubseekpos(position, std::ios_base::in);
    return isMatch;
}

}  // namespace

bool RyUri::isGzip(std::istream& source) {
    if (source.rdbuf() == nullptr) return false;
    try {
        return hasHeader(*source.rdbuf());
    } catch (const std::ios_base::failure&) {
        return false;  // a file that cannot be read
    }
}

bool RyUri::isGzip() const {
    const std::unique_ptr<std::istream> source(getStream());
    return source && isGzip(*source);
}

std::istream* RyUri::getGzipStream(std::istream& source) {
    return isGzip(source) ? new RyGzipStream(source) : nullptr;
}

std::istream* RyUri::getGzipStream() const {
    std::unique_ptr<std::istream> source(getStream());
    if (!source || !isGzip(*source)) return nullptr;
    return new OwningGzipStream(std::move(source));
}

}  // namespace RynCommon
