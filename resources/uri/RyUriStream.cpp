// The stream over one request to a server.
#include <RynCommon/RyUriStream.h>

#include <algorithm>
#include <cstdio>
#include <cstring>

#include <RynCommon/RyUri.h>

#include "resources/uri/Escapes.h"
#include "resources/uri/HttpTransfer.h"
#include "resources/uri/UriText.h"

namespace RynCommon {

namespace {

constexpr std::size_t PUT_BACK = 16;

UnicodeString toHex(int code) {
    char digits[16];
    std::snprintf(digits, sizeof digits, "%04X", static_cast<unsigned>(code));
    return UnicodeString::fromUTF8(digits);
}

UnicodeString describe(uri::HttpTransfer::Failure failure, int result) {
    using Failure = uri::HttpTransfer::Failure;
    switch (failure) {
        case Failure::NO_ACCESS:
            return u"Cannot access the Internet: " + toHex(result);
        case Failure::NOT_OPENED:
            return u"Cannot open URL: " + toHex(result);
        case Failure::NO_STATUS:
            return u"Cannot get HTTP status: " + toHex(result);
        case Failure::NONE:
            break;
    }
    return {};
}

UnicodeString describeStatus(int status) {
    return u"HTTP status is " + UnicodeString::fromUTF8(std::to_string(status));
}

/// A header's bytes are Latin-1 where they are not ASCII (RFC 9110, section 5.5).
UnicodeString toMediaType(const std::string& header) {
    std::u16string text;
    for (const char c : header.substr(0, header.find(';'))) {
        text += static_cast<char16_t>(static_cast<unsigned char>(c));
    }
    return uri::toText(uri::trim(text));
}

}  // namespace

struct RyUriStreamBuf::Impl {
    explicit Impl(const RyUri& uri);

    char* start() const { return buffer.get() + PUT_BACK; }

    uri::HttpTransfer transfer;
    UnicodeString errorText;
    UnicodeString contentType;
    /// What had arrived when the request opened; never more is read at a time.
    std::size_t chunk = 0;
    /// PUT_BACK bytes that were read, then a chunk. Null when not open.
    std::unique_ptr<char[]> buffer;
};

RyUriStreamBuf::Impl::Impl(const RyUri& uri) {
    const auto failure = transfer.open(uri::toRequestUrl(uri::viewOf(uri.toString())));
    errorText = describe(failure, transfer.getResult());
    if (!errorText.isEmpty()) return;
    contentType = toMediaType(transfer.getContentType());
    if (transfer.getStatus() / 100 != 2) {
        errorText = describeStatus(transfer.getStatus());
        return;
    }
    chunk = std::max<std::size_t>(transfer.available(), 1);
    buffer = std::make_unique_for_overwrite<char[]>(PUT_BACK + chunk);
}

RyUriStreamBuf::RyUriStreamBuf(const RyUri& uri) : impl_(std::make_unique<Impl>(uri)) {
    if (is_open()) setg(impl_->start(), impl_->start(), impl_->start());
}

RyUriStreamBuf::~RyUriStreamBuf() = default;

bool RyUriStreamBuf::is_open() const {
    return impl_->buffer != nullptr;
}

const UnicodeString& RyUriStreamBuf::getErrorText() const {
    return impl_->errorText;
}

const UnicodeString& RyUriStreamBuf::getContentType() const {
    return impl_->contentType;
}

int RyUriStreamBuf::getStatusCode() const {
    return impl_->transfer.getStatus();
}

/// Empties the get area and moves the last bytes read in front of it: those before gptr() and the
/// `count` bytes of `direct`, which went past it.
void RyUriStreamBuf::keepTail(const char* direct, std::size_t count) {
    const std::size_t fromDirect = std::min(count, PUT_BACK);
    const std::size_t fromArea =
        std::min(static_cast<std::size_t>(gptr() - eback()), PUT_BACK - fromDirect);
    char* const start = impl_->start();
    char* const kept = start - fromDirect - fromArea;
    std::memmove(kept, gptr() - fromArea, fromArea);
    if (fromDirect > 0) std::memcpy(start - fromDirect, direct + count - fromDirect, fromDirect);
    setg(kept, start, start);
}

RyUriStreamBuf::int_type RyUriStreamBuf::underflow() {
    if (gptr() < egptr()) return traits_type::to_int_type(*gptr());
    if (!is_open()) return traits_type::eof();
    keepTail(nullptr, 0);
    const std::size_t got = impl_->transfer.read(gptr(), impl_->chunk);
    if (got == 0) return traits_type::eof();
    setg(eback(), gptr(), gptr() + got);
    return traits_type::to_int_type(*gptr());
}

/// What does not come from the get area goes straight to the caller, in pieces of any size.
std::streamsize RyUriStreamBuf::xsgetn(char* target, std::streamsize count) {
    std::streamsize taken = std::min<std::streamsize>(count, egptr() - gptr());
    if (taken > 0) {
        std::memcpy(target, gptr(), static_cast<std::size_t>(taken));
        setg(eback(), gptr() + taken, egptr());
    }
    while (is_open() && taken < count) {
        const std::size_t got =
            impl_->transfer.read(target + taken, static_cast<std::size_t>(count - taken));
        if (got == 0) break;
        keepTail(target + taken, got);
        taken += static_cast<std::streamsize>(got);
    }
    return std::max<std::streamsize>(taken, 0);
}

std::streamsize RyUriStreamBuf::showmanyc() {
    const std::size_t ready = impl_->transfer.available();
    return ready == 0 && impl_->transfer.isAtEnd() ? -1 : static_cast<std::streamsize>(ready);
}

RyUriStream::RyUriStream(const RyUri& uri) : std::istream(nullptr), buffer_(uri) {
    init(&buffer_);
    if (!is_open()) setstate(std::ios_base::failbit);
}

RyUriStream::~RyUriStream() = default;

}  // namespace RynCommon
