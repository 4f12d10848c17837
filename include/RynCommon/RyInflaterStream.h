// A stream over deflated data in memory.
#pragma once

#include <cstddef>
#include <istream>
#include <memory>
#include <streambuf>

#include <RynCommon/Forward.h>

namespace RynCommon {

/// Inflates one raw deflate stream (RFC 1951) held in memory. Corrupt or truncated data ends the
/// input behind what could be inflated. Ten bytes can be put back after any read. Nothing is
/// thrown.
class RYNCOMMON_API RyInflaterStreamBuf : public std::streambuf {
public:
    /// @param data  the compressed bytes; they must outlive the buffer unless `copy` is true
    RyInflaterStreamBuf(const char* data, std::size_t size, bool copy);
    ~RyInflaterStreamBuf() override;

    /// Begins again at the start of the data.
    void reset();

protected:
    int_type underflow() override;
    std::streamsize xsgetn(char* target, std::streamsize count) override;

private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

/// The input stream over an RyInflaterStreamBuf of its own.
class RYNCOMMON_API RyInflaterStream : public std::istream {
public:
    RyInflaterStream(const char* data, std::size_t size, bool copy);
    ~RyInflaterStream() override;

    /// Clears the stream's state and begins again at the start of the data.
    void reset();

private:
    RyInflaterStreamBuf buffer_;
};

}  // namespace RynCommon
