// The readers that compound files are read through.
#pragma once

#include <cstddef>
#include <cstdint>
#include <istream>
#include <memory>

#include <RynCommon/Forward.h>

namespace RynCommon {

/// An abstract reader of bytes at positions. Nothing is thrown. Not copyable; used by one thread at
/// a time.
class RYNCOMMON_API JZIOobj {
public:
    JZIOobj() = default;
    JZIOobj(const JZIOobj&) = delete;
    JZIOobj& operator=(const JZIOobj&) = delete;
    virtual ~JZIOobj();

    virtual bool isOpen() const = 0;
    /// Reads at most `count` bytes at the position and moves it; returns how many came, which is
    /// less only at the end or after an error.
    virtual std::size_t read(void* buffer, std::size_t count) = 0;
    /// Moves the position. `whence` is SEEK_SET, SEEK_CUR or SEEK_END of <cstdio>; `offset` counts
    /// forwards from there. False, with the position as it was, where there is no such position.
    virtual bool seek(std::int64_t offset, int whence) = 0;
};

/// A file by path. Reading is buffered for pieces that are small, writing is not.
class RYNCOMMON_API JZFileIOobj : public JZIOobj {
public:
    /// @param path  in UTF-8; only regular files open, directories and devices do not
    /// @param mode  "rb" to read; "wb" to create or empty the file and write it. Any other mode
    ///              opens nothing.
    JZFileIOobj(const char* path, const char* mode);
    JZFileIOobj(const UnicodeString& path, const char* mode);
    ~JZFileIOobj() override;

    bool isOpen() const override;
    std::size_t read(void* buffer, std::size_t count) override;
    /// A file that is read can be sought up to its end, one that is written beyond it, too.
    bool seek(std::int64_t offset, int whence) override;
    /// Writes at the position of a file opened with "wb"; returns how many bytes were taken.
    std::size_t write(const void* buffer, std::size_t count);
    /// Closes the file; false when it was not open, or when anything could not be written.
    bool close();

private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

/// A stream, which is not owned and must outlive the reader. Open while the stream is not bad; the
/// end of the stream can be left by seeking. Whether positions beyond the end exist is the stream's
/// to say.
class RYNCOMMON_API JZStreamIOobj : public JZIOobj {
public:
    explicit JZStreamIOobj(std::istream& stream);
    ~JZStreamIOobj() override;

    bool isOpen() const override;
    std::size_t read(void* buffer, std::size_t count) override;
    bool seek(std::int64_t offset, int whence) override;

private:
    std::istream& stream_;
};

}  // namespace RynCommon
