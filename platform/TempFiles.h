// What temporary files need of the system: a directory, a process number, files that are new.
#pragma once

#include <cstdint>
#include <memory>
#include <ostream>
#include <string>
#include <system_error>

namespace RynCommon::platform {

/// The user's directory for temporary files, ending in "/".
std::string getTempDirectory();

std::uint64_t getProcessNumber();

/// Creates an empty file that only the user can read and write. Fails with
/// std::errc::file_exists when anything has that name, a symbolic link that leads nowhere, too.
std::error_code createNewFile(const std::string& path);

/// A stream that writes a regular file from its start, which is created as by createNewFile() when
/// it is not there. Symbolic links are not followed. Null, with `error` set, when it does not open.
std::unique_ptr<std::ostream> openTempFile(const std::string& path, std::error_code& error);

/// Removes what has that name, a symbolic link itself, in up to ten tries; a directory is never
/// removed. No error when nothing has that name afterwards.
std::error_code removeFile(const std::string& path);

}  // namespace RynCommon::platform
