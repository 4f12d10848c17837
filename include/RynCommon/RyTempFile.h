// Temporary files with unique names.
#pragma once

#include <ostream>
#include <string>

#include <RynCommon/Forward.h>

namespace RynCommon {

/// A text that also hands itself out as a NUL-terminated narrow string, UTF-8 on this system.
class RYNCOMMON_API RyCStr : public UnicodeString {
public:
    RyCStr();
    RyCStr(const UnicodeString& text);
    RyCStr(const RyCStr& other);
    RyCStr& operator=(const RyCStr& other);
    ~RyCStr() override;

    /// The narrow form, made at each call; valid until the next call or the object's end.
    const char* c_str() const;
    operator const char*() const { return c_str(); }

private:
    mutable std::string narrow_;
};

/// A temporary file that is removed with its object.
///
/// The object owns a path, or none when the path is empty. Copies share the path: the first of them
/// that ends removes the file. Files are created for the user alone (mode 0600), never through a
/// symbolic link, and never over a file that exists. Narrow texts are UTF-8. Names are handed out
/// under one lock, so threads never share one; an object is used by one thread at a time.
///
/// Errors thrown: 4109 "Cannot remove temporary file: " with the path, ": " and the system's text;
/// 4110 "Cannot create temporary file: " with the path, " (cannot create)", a line feed and the
/// system's text.
class RYNCOMMON_API RyTempFile {
public:
    /// Owns no file.
    RyTempFile();
    /// Owns a fresh file, see getTempFile().
    RyTempFile(const char* dir, const char* prefix, const char* suffix);
    RyTempFile(const UnicodeString& dir, const UnicodeString& prefix, const UnicodeString& suffix);
    RyTempFile(const RyTempFile& other);
    /// Takes the other's path; the file owned so far is left alone.
    RyTempFile& operator=(const RyTempFile& other);
    /// Removes the file. Throws 4109 as remove() does, but never while an exception is in flight.
    ~RyTempFile() noexcept(false);

    RyCStr getFileName() const;
    /// Returns the path and owns nothing any more: the file stays.
    RyCStr releaseFileName();
    /// Whether a file is owned.
    bool isTempFile() const { return !path_.isEmpty(); }

    /// Removes the file owned so far and owns `path` instead, which is not created. Returns it.
    RyCStr setFileName(const char* path);
    RyCStr setFileName(const UnicodeString& path);
    /// Removes the file owned so far and owns a fresh one, see getTempFile(). Returns its path.
    RyCStr setFileName(const char* dir, const char* prefix, const char* suffix);
    RyCStr setFileName(const UnicodeString& dir, const UnicodeString& prefix,
                       const UnicodeString& suffix);

    /// Removes the file; the path is kept. Nothing happens when it is gone already.
    void remove() const;
    /// Inflates raw deflate data (RFC 1951) into the file, replacing its content. False when the
    /// file does not open or the data does not reach its end.
    bool inflate(const unsigned char* data, unsigned int size) const;

    /// The directory for temporary files, ending in "/": `$TMPDIR`, else `/tmp`. Found once in a
    /// process.
    static RyCStr getTempDirectory();
    /// Creates a new, empty file and returns its path: `dir` exactly as given (it ends in "/", or
    /// its last part becomes the beginning of the name), `prefix`, a number of the form
    /// "1a4_3f2c" made of the process and a counter, and `suffix`. A null or bogus `dir` means
    /// getTempDirectory(); a null or bogus prefix or suffix is empty. Throws 4110.
    static RyCStr getTempFile(const char* dir, const char* prefix, const char* suffix);
    static RyCStr getTempFile(const UnicodeString& dir, const UnicodeString& prefix,
                              const UnicodeString& suffix);
    /// Removes a file, never a directory, in up to ten tries. Whether it is gone afterwards.
    static bool removeTempFile(const char* path);
    static bool removeTempFile(const UnicodeString& path);
    /// Inflates raw deflate data into `out`. True when the data's end was reached; what was
    /// produced before an error has been written.
    static bool inflate(std::ostream& out, const unsigned char* data, unsigned int size);

private:
    UnicodeString path_;
};

}  // namespace RynCommon
