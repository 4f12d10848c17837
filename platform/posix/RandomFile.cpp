// Files read and written at positions on POSIX systems.
#include "platform/RandomFile.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <limits>

#include "platform/posix/RegularFile.h"

namespace RynCommon::platform {

namespace {

constexpr std::uint64_t LAST_OFFSET = std::numeric_limits<off_t>::max();

/// Owned by the caller; -1 when the file does not open.
int openFile(const std::string& path, RandomFile::Mode mode) {
    std::error_code error = checkPath(path);
    if (error) return -1;
    const bool reads = mode == RandomFile::Mode::READ;
    return (reads ? openRegular(path, error) : createRegular(path, error)).release();
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

RandomFile::RandomFile(const std::string& path, Mode mode) : handle_(openFile(path, mode)) {}

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
