// Byte streams over POSIX file descriptors.
#include "platform/posix/FileStreams.h"

#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <system_error>

namespace RynCommon::platform {

namespace {

constexpr std::streamsize PUT_BACK = 16;
constexpr std::streamsize BLOCK = 64 * 1024;

/// Where the descriptor stands; -1 when it cannot seek.
off_t getPosition(int descriptor) {
    return lseek(descriptor, 0, SEEK_CUR);
}

/// The target of a seek as an offset from the start; -1 when there is none.
off_t getSeekTarget(int descriptor, off_t current, std::streamoff offset,
                    std::ios_base::seekdir direction) {
    off_t origin = 0;
    if (direction == std::ios_base::cur) {
        origin = current;
    } else if (direction == std::ios_base::end) {
        struct stat status {};
        if (fstat(descriptor, &status) != 0) return -1;
        origin = status.st_size;
    }
    off_t target = 0;
    if (__builtin_add_overflow(origin, offset, &target) || target < 0) return -1;
    return target;
}

}  // namespace

FileDescriptor::~FileDescriptor() {
    if (isOpen()) close(descriptor_);
}

FileInputBuf::FileInputBuf(FileDescriptor file)
    : file_(std::move(file)), buffer_(std::make_unique_for_overwrite<char[]>(PUT_BACK + BLOCK)) {
    char* const start = buffer_.get() + PUT_BACK;
    setg(start, start, start);
}

std::streamsize FileInputBuf::readBytes(char* target, std::streamsize count) {
    ssize_t got = 0;
    do {
        got = read(file_.get(), target, static_cast<std::size_t>(count));
    } while (got < 0 && errno == EINTR);
    if (got < 0) {
        throw std::ios_base::failure("read", std::error_code(errno, std::generic_category()));
    }
    return got;
}

/// Moves the last bytes before `end` in front of the block, where they can be put back.
void FileInputBuf::keepTail(const char* end, std::streamsize available) {
    const std::streamsize kept = std::min(PUT_BACK, available);
    char* const start = buffer_.get() + PUT_BACK;
    std::memmove(start - kept, end - kept, static_cast<std::size_t>(kept));
    setg(start - kept, start, start);
}

FileInputBuf::int_type FileInputBuf::underflow() {
    if (gptr() < egptr()) return traits_type::to_int_type(*gptr());
    keepTail(gptr(), gptr() - eback());
    const std::streamsize got = readBytes(gptr(), BLOCK);
    if (got == 0) return traits_type::eof();
    setg(eback(), gptr(), gptr() + got);
    return traits_type::to_int_type(*gptr());
}

std::streamsize FileInputBuf::takeBuffered(char* target, std::streamsize count) {
    const std::streamsize taken = std::min<std::streamsize>(count, egptr() - gptr());
    std::memcpy(target, gptr(), static_cast<std::size_t>(taken));
    setg(eback(), gptr() + taken, egptr());
    return taken;
}

std::streamsize FileInputBuf::xsgetn(char* target, std::streamsize count) {
    std::streamsize taken = 0;
    while (taken < count) {
        if (gptr() < egptr()) {
            taken += takeBuffered(target + taken, count - taken);
        } else if (count - taken >= BLOCK) {
            const std::streamsize got = readBytes(target + taken, count - taken);
            if (got == 0) break;
            taken += got;
            keepTail(target + taken, taken);
        } else if (underflow() == traits_type::eof()) {
            break;
        }
    }
    return taken;
}

/// Zero rather than -1 at the end of a regular file: files of /proc have contents and no size.
std::streamsize FileInputBuf::showmanyc() {
    struct stat status {};
    if (fstat(file_.get(), &status) != 0) return 0;
    if (S_ISREG(status.st_mode)) {
        return std::max<off_t>(0, status.st_size - getPosition(file_.get()));
    }
    int ready = 0;
    return ioctl(file_.get(), FIONREAD, &ready) == 0 && ready > 0 ? ready : 0;
}

FileInputBuf::pos_type FileInputBuf::seekoff(off_type offset, std::ios_base::seekdir direction,
                                             std::ios_base::openmode which) {
    const pos_type failure(off_type(-1));
    const off_t end = getPosition(file_.get());
    if (end < 0 || (which & std::ios_base::in) == 0) return failure;
    const off_t target = getSeekTarget(file_.get(), end - (egptr() - gptr()), offset, direction);
    if (target < 0) return failure;
    if (target <= end && target >= end - (egptr() - eback())) {
        setg(eback(), egptr() - (end - target), egptr());
        return pos_type(target);
    }
    if (lseek(file_.get(), target, SEEK_SET) < 0) return failure;
    char* const start = buffer_.get() + PUT_BACK;
    setg(start, start, start);
    return pos_type(target);
}

FileInputBuf::pos_type FileInputBuf::seekpos(pos_type position, std::ios_base::openmode which) {
    return seekoff(off_type(position), std::ios_base::beg, which);
}

FileOutputBuf::FileOutputBuf(FileDescriptor file)
    : file_(std::move(file)), buffer_(std::make_unique_for_overwrite<char[]>(BLOCK)) {
    setp(buffer_.get(), buffer_.get() + BLOCK);
}

FileOutputBuf::~FileOutputBuf() {
    writeBuffered();
}

bool FileOutputBuf::writeBytes(const char* source, std::streamsize count) {
    while (count > 0) {
        const ssize_t written = write(file_.get(), source, static_cast<std::size_t>(count));
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return false;
        source += written;
        count -= written;
    }
    return true;
}

bool FileOutputBuf::writeBuffered() {
    const bool written = writeBytes(pbase(), pptr() - pbase());
    setp(buffer_.get(), buffer_.get() + BLOCK);
    return written;
}

FileOutputBuf::int_type FileOutputBuf::overflow(int_type c) {
    if (!writeBuffered()) return traits_type::eof();
    if (!traits_type::eq_int_type(c, traits_type::eof())) {
        *pptr() = traits_type::to_char_type(c);
        pbump(1);
    }
    return traits_type::not_eof(c);
}

std::streamsize FileOutputBuf::xsputn(const char* source, std::streamsize count) {
    if (count < BLOCK) return std::streambuf::xsputn(source, count);
    return writeBuffered() && writeBytes(source, count) ? count : 0;
}

int FileOutputBuf::sync() {
    return writeBuffered() ? 0 : -1;
}

FileOutputBuf::pos_type FileOutputBuf::seekoff(off_type offset, std::ios_base::seekdir direction,
                                               std::ios_base::openmode which) {
    const pos_type failure(off_type(-1));
    const off_t written = getPosition(file_.get());
    if (written < 0 || (which & std::ios_base::out) == 0) return failure;
    const off_t logical = written + (pptr() - pbase());
    if (direction == std::ios_base::cur && offset == 0) return pos_type(logical);
    if (!writeBuffered()) return failure;
    const off_t target = getSeekTarget(file_.get(), logical, offset, direction);
    if (target < 0 || lseek(file_.get(), target, SEEK_SET) < 0) return failure;
    return pos_type(target);
}

FileOutputBuf::pos_type FileOutputBuf::seekpos(pos_type position, std::ios_base::openmode which) {
    return seekoff(off_type(position), std::ios_base::beg, which);
}

}  // namespace RynCommon::platform
