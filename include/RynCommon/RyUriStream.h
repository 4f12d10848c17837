// A stream over one request to a server.
#pragma once

#include <cstddef>
#include <istream>
#include <memory>
#include <streambuf>

#include <RynCommon/Forward.h>

namespace RynCommon {

class RyUri;

/// The body of an `http:` or `https:` resource, read as it arrives.
///
/// Construction sends the request and waits for the answer's head: a connection must stand within
/// 5000 ms, and a transfer that brings no byte for 30 s ends. Up to 16 redirects are followed, to
/// http and https only; credentials never go to another host. TLS certificates are verified,
/// against the file that `CURL_CA_BUNDLE` or `SSL_CERT_FILE` names where one of them is set.
/// Proxies come from the environment. No cached copy is asked for, and no compression. A body that
/// breaks off gives the bytes that came and then ends. Destruction closes the connection. Nothing
/// is thrown. Used by one thread at a time.
class RYNCOMMON_API RyUriStreamBuf : public std::streambuf {
public:
    explicit RyUriStreamBuf(const RyUri& uri);
    ~RyUriStreamBuf() override;

    /// Whether an answer of class 2xx came.
    bool is_open() const;
    /// Why the buffer is not open, such as "HTTP status is 404" or "Cannot open URL: 0007" with the
    /// transfer library's result in hexadecimal; empty on success.
    const UnicodeString& getErrorText() const;
    /// The media type without its parameters, such as "text/xml"; empty when none was sent.
    const UnicodeString& getContentType() const;
    /// The final answer's status code; 0 when no answer came.
    int getStatusCode() const;

protected:
    /// Reads at most as many bytes at a time as had arrived when the request opened (at least one);
    /// the last 16 bytes read can be put back. Reading blocks of bytes knows no such limit.
    int_type underflow() override;
    std::streamsize xsgetn(char* target, std::streamsize count) override;
    std::streamsize showmanyc() override;

private:
    void keepTail(const char* direct, std::size_t count);

    struct Impl;
    std::unique_ptr<Impl> impl_;
};

/// The input stream over an RyUriStreamBuf of its own; failed from the start when that is not open.
class RYNCOMMON_API RyUriStream : public std::istream {
public:
    explicit RyUriStream(const RyUri& uri);
    ~RyUriStream() override;

    bool is_open() const { return buffer_.is_open(); }
    const UnicodeString& getErrorText() const { return buffer_.getErrorText(); }
    const UnicodeString& getContentType() const { return buffer_.getContentType(); }
    int getStatusCode() const { return buffer_.getStatusCode(); }

private:
    RyUriStreamBuf buffer_;
};

}  // namespace RynCommon
