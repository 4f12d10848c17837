// Progress of archives that are fetched to reach into them.
#include "Downloads.h"

#include <RynCommon/RyUriStream.h>

#include <algorithm>
#include <array>
#include <memory>
#include <streambuf>

#include "Progress.h"

using namespace RynCommon;

namespace {

// Reads what has arrived, and counts it.
class WatchedBuf : public std::streambuf {
public:
    explicit WatchedBuf(std::unique_ptr<std::istream> source) : source_(std::move(source)) {}

protected:
    int_type underflow() override {
        std::streambuf& source = *source_->rdbuf();
        if (traits_type::eq_int_type(source.sgetc(), traits_type::eof())) return traits_type::eof();
        const std::streamsize ready = std::max<std::streamsize>(source.in_avail(), 1);
        const std::streamsize count = source.sgetn(
            bytes_.data(), std::min(ready, static_cast<std::streamsize>(bytes_.size())));
        progress_.add(static_cast<std::uint64_t>(count));
        setg(bytes_.data(), bytes_.data(), bytes_.data() + count);
        return traits_type::to_int_type(bytes_[0]);
    }

private:
    std::unique_ptr<std::istream> source_;
    Progress progress_{"downloading", "bytes"};
    std::array<char, 16384> bytes_;
};

class WatchedStream : public std::istream {
public:
    explicit WatchedStream(std::unique_ptr<std::istream> source)
        : std::istream(nullptr), buffer_(std::move(source)) {
        init(&buffer_);
    }

private:
    WatchedBuf buffer_;
};

}  // namespace

Downloads::Downloads(const UnicodeString& target)
    : target_(target), previous_(RyUri::setUriReferenceResolver(this)) {}

Downloads::~Downloads() {
    RyUri::setUriReferenceResolver(previous_);
}

// Where nothing opens, the library tries once more and says why.
std::istream* Downloads::getStream(const UnicodeString& uri, UnicodeString* contentType) {
    const RyUri source(uri);
    const UnicodeString scheme = source.getScheme();
    if (source == RyUri(target_) || (scheme != u"http" && scheme != u"https")) return nullptr;
    auto stream = std::make_unique<RyUriStream>(source);
    if (!stream->is_open()) return nullptr;
    if (contentType != nullptr) *contentType = stream->getContentType();
    return new WatchedStream(std::move(stream));
}
