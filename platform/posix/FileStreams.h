// Byte streams over file descriptors.
//
// The standard file streams cannot be made from an open descriptor, and only a descriptor lets the
// kind of a file be checked without a race. These buffers also tell how many bytes are ready
// (showmanyc), which the readers above use to take whole blocks without ever waiting for a byte
// that they do not need.
#pragma once

#include <istream>
#include <memory>
#include <ostream>
#include <streambuf>
#include <utility>

namespace RynCommon::platform {

/// Owns an open file descriptor; -1 is none.
class FileDescriptor {
public:
    explicit FileDescriptor(int descriptor = -1) : descriptor_(descriptor) {}
    FileDescriptor(FileDescriptor&& other) noexcept
        : descriptor_(std::exchange(other.descriptor_, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        std::swap(descriptor_, other.descriptor_);
        return *this;
    }
    ~FileDescriptor();

    int get() const { return descriptor_; }
    bool isOpen() const { return descriptor_ >= 0; }
    /// Gives the descriptor to the caller.
    int release() { return std::exchange(descriptor_, -1); }

private:
    int descriptor_;
};

/// Reads a descriptor in blocks. A failed read throws std::ios_base::failure, which a stream turns
/// into its badbit.
class FileInputBuf final : public std::streambuf {
public:
    explicit FileInputBuf(FileDescriptor file);

protected:
    int_type underflow() override;
    std::streamsize xsgetn(char* target, std::streamsize count) override;
    std::streamsize showmanyc() override;
    pos_type seekoff(off_type offset, std::ios_base::seekdir direction,
                     std::ios_base::openmode which) override;
    pos_type seekpos(pos_type position, std::ios_base::openmode which) override;

private:
    std::streamsize readBytes(char* target, std::streamsize count);
    std::streamsize takeBuffered(char* target, std::streamsize count);
    void keepTail(const char* end, std::streamsize available);

    FileDescriptor file_;
    /// The put-back area, then one block. eback() to egptr() are always neighbouring bytes of the
    /// file, and egptr() is where the descriptor stands.
    std::unique_ptr<char[]> buffer_;
};

/// Writes a descriptor in blocks. The destructor writes what is left.
class FileOutputBuf final : public std::streambuf {
public:
    explicit FileOutputBuf(FileDescriptor file);
    ~FileOutputBuf() override;

protected:
    int_type overflow(int_type c) override;
    std::streamsize xsputn(const char* source, std::streamsize count) override;
    int sync() override;
    pos_type seekoff(off_type offset, std::ios_base::seekdir direction,
                     std::ios_base::openmode which) override;
    pos_type seekpos(pos_type position, std::ios_base::openmode which) override;

private:
    bool writeBytes(const char* source, std::streamsize count);
    bool writeBuffered();

    FileDescriptor file_;
    std::unique_ptr<char[]> buffer_;
};

class FileInputStream final : public std::istream {
public:
    explicit FileInputStream(FileDescriptor file)
        : std::istream(nullptr), buffer_(std::move(file)) {
        init(&buffer_);
    }

private:
    FileInputBuf buffer_;
};

class FileOutputStream final : public std::ostream {
public:
    explicit FileOutputStream(FileDescriptor file)
        : std::ostream(nullptr), buffer_(std::move(file)) {
        init(&buffer_);
    }

private:
    FileOutputBuf buffer_;
};

}  // namespace RynCommon::platform
