// Files by path on POSIX systems.
#include "platform/Files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/posix/FileStreams.h"
#include "platform/posix/RegularFile.h"

namespace RynCommon::platform {

namespace {

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
    return openRegular(path, error);
}

FileDescriptor openForWriting(const std::string& path, std::error_code& error) {
    error = checkPath(path);
    if (error) return FileDescriptor();
    if (path == "/dev/stdout") return duplicateStandard(STDOUT_FILENO, error);
    return createRegular(path, error);
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
