// Files by path on POSIX systems.
#include "platform/Files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "platform/posix/FileStreams.h"

namespace RynCommon::platform {

namespace {

/// O_NONBLOCK keeps an open() from waiting should a FIFO take the file's place after it was looked
/// at; regular files ignore it.
constexpr int OPEN_FLAGS = O_CLOEXEC | O_NOCTTY | O_NONBLOCK;

std::error_code getSystemError() {
    return {errno, std::generic_category()};
}

std::error_code checkPath(const std::string& path) {
    if (path.find('\0') != std::string::npos) return make_error_code(std::errc::invalid_argument);
    if (path.empty()) return make_error_code(std::errc::no_such_file_or_directory);
    return {};
}

std::error_code checkKind(mode_t mode) {
    if (S_ISREG(mode)) return {};
    return make_error_code(S_ISDIR(mode) ? std::errc::is_a_directory : std::errc::not_supported);
}

std::error_code checkDescriptorKind(int descriptor) {
    struct stat status {};
    if (fstat(descriptor, &status) != 0) return getSystemError();
    return checkKind(status.st_mode);
}

/// The kind is looked at before opening, since opening some devices has effects, and again on the
/// descriptor, which nobody can exchange.
FileDescriptor openRegular(const std::string& path, int flags, std::error_code& error) {
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

/// A standard stream under a descriptor of its own, so that closing it leaves the process's one
/// open.
FileDescriptor duplicateStandard(int standard, std::error_code& error) {
    FileDescriptor file(fcntl(standard, F_DUPFD_CLOEXEC, 3));
    if (!file.isOpen()) {
        error = getSystemError();
        return file;
    }
    if (checkDescriptorKind(file.get()) == std::errc::is_a_directory) {
        error = make_error_code(std::errc::is_a_directory);
        return FileDescriptor();
    }
    return file;
}

FileDescriptor openForReading(const std::string& path, std::error_code& error) {
    error = checkPath(path);
    if (error) return FileDescriptor();
    if (path == "/dev/stdin") return duplicateStandard(STDIN_FILENO, error);
    return openRegular(path, O_RDONLY, error);
}

FileDescriptor openForWriting(const std::string& path, std::error_code& error) {
    error = checkPath(path);
    if (error) return FileDescriptor();
    if (path == "/dev/stdout") return duplicateStandard(STDOUT_FILENO, error);
    FileDescriptor file = openRegular(path, O_WRONLY | O_CREAT, error);
    if (file.isOpen() && ftruncate(file.get(), 0) != 0) {
        error = getSystemError();
        return FileDescriptor();
    }
    return file;
}

}  // namespace

std::unique_ptr<std::istream> openInputFile(const std::string& path, std::error_code& error) {
    FileDescriptor file = openForReading(path, error);
    if (!file.isOpen()) return nullptr;
    return std::make_unique<FileInputStream>(std::move(file));
}

std::unique_ptr<std::ostream> openOutputFile(const std::string& path, std::error_code& error) {
    FileDescriptor file = openForWriting(path, error);
    if (!file.isOpen()) return nullptr;
    return std::make_unique<FileOutputStream>(std::move(file));
}

bool isExistingFile(const std::string& path) {
    if (checkPath(path)) return false;
    struct stat status {};
    if (path == "/dev/stdin") return fstat(STDIN_FILENO, &status) == 0 && !S_ISDIR(status.st_mode);
    return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

bool isSameFile(const std::string& first, const std::string& second) {
    struct stat a {};
    struct stat b {};
    return !checkPath(first) && !checkPath(second) && stat(first.c_str(), &a) == 0 &&
           stat(second.c_str(), &b) == 0 && a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

}  // namespace RynCommon::platform
