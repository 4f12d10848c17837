// Streams that read and write gzip data (RFC 1952).
#pragma once

#include <istream>
#include <memory>
#include <ostream>
#include <streambuf>

#include <RynCommon/Forward.h>

namespace RynCommon {

/// Reads a gzip file, or another stream that may hold one gzip member; data that is not gzip comes
/// through unchanged. The member's trailer is not checked. Corrupt or truncated data ends the input
/// behind what could be inflated. Ten bytes can be put back after any read. Nothing is thrown.
class RYNCOMMON_API RyGzipStreamBuf : public std::streambuf {
public:
    /// Opens a file: gzip with any number of members, or plain. `path` in UTF-8.
    explicit RyGzipStreamBuf(const char* path);
    explicit RyGzipStreamBuf(const wchar_t* path);
    explicit RyGzipStreamBuf(const UnicodeString& path);
    /// Reads `source` from its start (a stream that cannot seek: from where it stands). It is not
    /// owned and must outlive the buffer.
    explicit RyGzipStreamBuf(std::istream& source);
    ~RyGzipStreamBuf() override;

    /// False when the file did not open; reading then ends at once.
    bool is_open() const;

protected:
    /// Reads a member header. False, with the stream back where it stood, when there is none.
    bool checkHeader(std::istream& source);

    int_type underflow() override;
    std::streamsize xsgetn(char* target, std::streamsize count) override;

private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

/// The input stream over an RyGzipStreamBuf of its own.
class RYNCOMMON_API RyGzipStream : public std::istream {
public:
    explicit RyGzipStream(const char* path);
    explicit RyGzipStream(const wchar_t* path);
    explicit RyGzipStream(const UnicodeString& path);
    explicit RyGzipStream(std::istream& source);
    ~RyGzipStream() override;

    bool is_open() const { return buffer_.is_open(); }

private:
    RyGzipStreamBuf buffer_;
};

/// Compresses what is written into one gzip member. The first flush ends the member: flush once,
/// at the end, or leave it to the destructor. What is written later is dropped. Nothing is thrown.
class RYNCOMMON_API RyGzipOStreamBuf : public std::streambuf {
public:
    /// `out` is not owned and must outlive the buffer.
    explicit RyGzipOStreamBuf(std::ostream& out);
    /// Creates or replaces a file. A path that cannot be created takes the data and loses it.
    explicit RyGzipOStreamBuf(const UnicodeString& path);
    ~RyGzipOStreamBuf() override;

protected:
    int_type overflow(int_type c) override;
    int sync() override;

private:
    void initZStream();
    int encodeBuffer(int flush);

    struct Impl;
    std::unique_ptr<Impl> impl_;
};

/// The output stream over an RyGzipOStreamBuf of its own.
class RYNCOMMON_API RyGzipOStream : public std::ostream {
public:
    explicit RyGzipOStream(std::ostream& out);
    explicit RyGzipOStream(const UnicodeString& path);
    ~RyGzipOStream() override;

private:
    RyGzipOStreamBuf buffer_;
};

}  // namespace RynCommon
