// Files read and written at positions on POSIX systems.
#include "platform/RandomFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <limits>

namespace RynCommon::platform {

namespace {

constexpr std::uint64_t LAST_OFFSET = std::numeric_limits<off_t>::max();

bool isRegular(const struct stat& status) {
    return S_ISREG(status.st_mode);
}

/// The kind is looked at before opening, since opening some devices has effects, and again on the
/// descriptor, which nobody can exchange. O_NONBLOCK keeps open() from waiting at a FIFO.
int openRegular(const std::string& path, int flags) {
    struct stat status {};
    if (path.find('\0') != std::string::npos) return -1;
    if (stat(path.c_str(), &status) == 0 && !isRegular(status)) return -1;
    const int handle = open(path.c_str(), flags | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, 0666);
    if (handle < 0) return -1;
    if (fstat(handle, &status) == 0 && isRegular(status)) return handle;
    close(handle);
    return -1;
}

/// Opened without O_TRUNC, so that a file which took the place of another after it was looked at
/// is not emptied unless it is a regular one.
int create(const std::string& path) {
    const int handle = openRegular(path, O_WRONLY | O_CREAT);
    if (handle < 0 || ftruncate(handle, 0) == 0) return handle;
    close(handle);
    return -1;
}

/// Calls `transfer(done)` until `count` bytes are through or no more get through.
template <class Transfer>
std::size_t repeat(std::uint64_t offset, std::size_t count, Transfer transfer) {
    std::size_t done = 0;
    while (done < count && offset <= LAST_OFFSET - done) {
        const ssize_t moved = transfer(done);
        if (moved < 0 && errno == EINTR) continue;
        if (moved <= 0) break;
        done += static_cast<std::size_t>(moved);
    }
    return done;
}

}  // namespace

RandomFile::RandomFile(const std::string& path, Mode mode)
    : handle_(mode == Mode::READ ? openRegular(path, O_RDONLY) : create(path)) {}

RandomFile::~RandomFile() {
    if (isOpen()) close();
}

std::uint64_t RandomFile::getSize() const {
    struct stat status {};
    if (!isOpen() || fstat(handle_, &status) != 0) return 0;
    return static_cast<std::uint64_t>(status.st_size);
}

std::size_t RandomFile::readAt(std::uint64_t offset, void* target, std::size_t count) const {
    return repeat(offset, count, [&](std::size_t done) {
        return pread(handle_, static_cast<char*>(target) + done, count - done,
                     static_cast<off_t>(offset + done));
    });
}

std::size_t RandomFile::writeAt(std::uint64_t offset, const void* source, std::size_t count) const {
    return repeat(offset, count, [&](std::size_t done) {
        return pwrite(handle_, static_cast<const char*>(source) + done, count - done,
                      static_cast<off_t>(offset + done));
    });
}

bool RandomFile::close() {
    const int handle = handle_;
    handle_ = -1;
    return handle >= 0 && ::close(handle) == 0;
}

}  // namespace RynCommon::platform
