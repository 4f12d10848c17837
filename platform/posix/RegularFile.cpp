// Opening regular files on POSIX systems.
#include "platform/posix/RegularFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace RynCommon::platform {

namespace {

/// O_NONBLOCK keeps an open() from waiting should a FIFO take the file's place after it was looked
/// at; regular files ignore it.
constexpr int OPEN_FLAGS = O_CLOEXEC | O_NOCTTY | O_NONBLOCK;

std::error_code checkKind(mode_t mode) {
    if (S_ISREG(mode)) return {};
    return make_error_code(S_ISDIR(mode) ? std::errc::is_a_directory : std::errc::not_supported);
}

/// The kind is looked at before opening, since opening some devices has effects, and again on the
/// descriptor, which nobody can exchange.
FileDescriptor openChecked(const std::string& path, int flags, std::error_code& error) {
    struct stat status {};
    const bool exists = stat(path.c_str(), &status) == 0;
    if (!exists && (flags & O_CREAT) == 0) {
        error = getSystemError();
        return FileDescriptor();
    }
    if (exists) error = checkKind(status.st_mode);
    if (error) return FileDescriptor();
    FileDescriptor file(open(path.c_str(), flags | OPEN_FLAGS, 0666));
    error = file.isOpen() ? checkDescriptorKind(file.get()) : getSystemError();
    return error ? FileDescriptor() : std::move(file);
}

}  // namespace

std::error_code getSystemError() {
    return {errno, std::generic_category()};
}

std::error_code checkPath(const std::string& path) {
    if (path.find('\0') != std::string::npos) return make_error_code(std::errc::invalid_argument);
    if (path.empty()) return make_error_code(std::errc::no_such_file_or_directory);
    return {};
}

std::error_code checkDescriptorKind(int descriptor) {
    struct stat status {};
    if (fstat(descriptor, &status) != 0) return getSystemError();
    return checkKind(status.st_mode);
}

FileDescriptor openRegular(const std::string& path, std::error_code& error) {
    return openChecked(path, O_RDONLY, error);
}

/// Opened without O_TRUNC, so that a file which took the place of another after it was looked at
/// is not emptied unless it is a regular one.
FileDescriptor createRegular(const std::string& path, std::error_code& error) {
    FileDescriptor file = openChecked(path, O_WRONLY | O_CREAT, error);
    if (file.isOpen() && ftruncate(file.get(), 0) != 0) {
        error = getSystemError();
        return FileDescriptor();
    }
    return file;
}

}  // namespace RynCommon::platform
