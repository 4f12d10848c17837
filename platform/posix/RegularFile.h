// Opening regular files, and nothing else.
#pragma once

#include <string>
#include <system_error>

#include "platform/posix/FileStreams.h"

namespace RynCommon::platform {

/// What the last system call failed with.
std::error_code getSystemError();
/// An error for a path that names nothing: an empty one, or one with a NUL in it.
std::error_code checkPath(const std::string& path);
/// An error for a descriptor of anything but a regular file; a directory's is its own.
std::error_code checkDescriptorKind(int descriptor);

/// For reading. No descriptor is open when `error` is set. `path` goes through checkPath() before.
FileDescriptor openRegular(const std::string& path, std::error_code& error);
/// For writing only; a file that exists is emptied.
FileDescriptor createRegular(const std::string& path, std::error_code& error);

}  // namespace RynCommon::platform
