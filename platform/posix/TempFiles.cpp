// Temporary files on POSIX systems.
#include "platform/TempFiles.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

#include "platform/posix/FileStreams.h"

namespace RynCommon::platform {

namespace {

constexpr int REMOVE_TRIES = 10;
constexpr mode_t FOR_USER_ALONE = 0600;
/// O_NONBLOCK keeps an open() from waiting at a FIFO; regular files ignore it.
constexpr int OPEN_FLAGS = O_CREAT | O_NOFOLLOW | O_CLOEXEC | O_NOCTTY | O_NONBLOCK;

std::error_code getSystemError() {
    return {errno, std::generic_category()};
}

/// What follows a NUL would not be part of the name that the system sees.
bool hasNul(const std::string& path) {
    return path.find('\0') != std::string::npos;
}

FileDescriptor openFile(const std::string& path, int flags, std::error_code& error) {
    if (hasNul(path)) {
        error = make_error_code(std::errc::invalid_argument);
        return FileDescriptor();
    }
    int descriptor = -1;
    do {
        descriptor = open(path.c_str(), flags | OPEN_FLAGS, FOR_USER_ALONE);
    } while (descriptor < 0 && errno == EINTR);
    error = descriptor < 0 ? getSystemError() : std::error_code();
    return FileDescriptor(descriptor);
}

/// Empties an open file; anything but a regular one is refused.
std::error_code empty(const FileDescriptor& file) {
    struct stat status {};
    if (fstat(file.get(), &status) != 0) return getSystemError();
    if (!S_ISREG(status.st_mode)) return make_error_code(std::errc::not_supported);
    return ftruncate(file.get(), 0) != 0 ? getSystemError() : std::error_code();
}

/// Whether the error tells that nothing has that name.
bool isMissing(int error) {
    return error == ENOENT || error == ENOTDIR || error == ENAMETOOLONG;
}

}  // namespace

std::string getTempDirectory() {
    const char* const set = std::getenv("TMPDIR");
    std::string directory = set != nullptr && *set != '\0' ? set : "/tmp";
    if (directory.back() != '/') directory += '/';
    return directory;
}

std::uint64_t getProcessNumber() {
    return static_cast<std::uint64_t>(getpid());
}

std::error_code createNewFile(const std::string& path) {
    std::error_code error;
    openFile(path, O_WRONLY | O_EXCL, error);
    return error;
}

std::unique_ptr<std::ostream> openTempFile(const std::string& path, std::error_code& error) {
    FileDescriptor file = openFile(path, O_WRONLY, error);
    if (!error) error = empty(file);
    if (error) return nullptr;
    return std::make_unique<FileOutputStream>(std::move(file));
}

std::error_code removeFile(const std::string& path) {
    struct stat status {};
    if (hasNul(path)) return {};  // nothing can have that name
    if (lstat(path.c_str(), &status) == 0) {
        if (S_ISDIR(status.st_mode)) return make_error_code(std::errc::is_a_directory);
    } else if (isMissing(errno)) {
        return {};
    }
    std::error_code error;
    for (int i = 0; i < REMOVE_TRIES; ++i) {
        if (unlink(path.c_str()) == 0 || isMissing(errno)) return {};
        error = getSystemError();
    }
    return error;
}

}  // namespace RynCommon::platform
