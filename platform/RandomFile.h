// A regular file that is read or written at positions, for readers that jump.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace RynCommon::platform {

/// An open file, closed with the object. It has no position of its own. Only regular files open:
/// directories, devices and FIFOs do not.
class RandomFile {
public:
    enum class Mode : unsigned char {
        READ,
        CREATE  ///< for writing only; a file that exists is emptied
    };

    /// @param path  bytes, UTF-8 by convention, that go to the system unchanged
    RandomFile(const std::string& path, Mode mode);
    RandomFile(const RandomFile&) = delete;
    RandomFile& operator=(const RandomFile&) = delete;
    ~RandomFile();

    bool isOpen() const { return handle_ >= 0; }
    /// In bytes, at this moment; 0 when that cannot be told.
    std::uint64_t getSize() const;
    /// Reads at most `count` bytes from `offset` on; returns how many came, which is less only at
    /// the end or after an error.
    std::size_t readAt(std::uint64_t offset, void* target, std::size_t count) const;
    /// Returns how many bytes were written, which is less only after an error.
    std::size_t writeAt(std::uint64_t offset, const void* source, std::size_t count) const;
    /// Closes the file; false when it was not open, or when the system tells only now that it could
    /// not write.
    bool close();

private:
    int handle_ = -1;
};

}  // namespace RynCommon::platform
