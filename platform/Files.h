// Files by path, as the rest of the library sees the file system.
//
// Paths are bytes, UTF-8 by convention, and go to the system unchanged. Only regular files open, so
// that a document cannot make a process wait at a FIFO, read without end from a device, or list a
// directory. The names of the standard streams, "/dev/stdin" and "/dev/stdout", are the two
// exceptions.
#pragma once

#include <istream>
#include <memory>
#include <ostream>
#include <string>
#include <system_error>

namespace RynCommon::platform {

/// A stream over the bytes of the file, which can seek when the file can. Null, with `error` set,
/// when it does not open. "/dev/stdin" continues standard input where it stands. A read error sets
/// the stream's badbit.
std::unique_ptr<std::istream> openInputFile(const std::string& path, std::error_code& error);

/// A stream that writes the file from its start; a file that exists is emptied first. Null, with
/// `error` set, when it does not open. What is still buffered is written when the stream is
/// destroyed.
std::unique_ptr<std::ostream> openOutputFile(const std::string& path, std::error_code& error);

/// Whether `path` names a file that openInputFile() takes, leaving permissions aside.
bool isExistingFile(const std::string& path);

/// Whether both paths lead to one existing file.
bool isSameFile(const std::string& first, const std::string& second);

}  // namespace RynCommon::platform
