// Streams that convert between UTF-16 and a named encoding.
#pragma once

#include <istream>
#include <memory>
#include <ostream>
#include <streambuf>

#include <RynCommon/Forward.h>

namespace RynCommon {

/// Reads bytes in a named encoding from a source and delivers them as UTF-16LE bytes, without a
/// byte-order mark. Takes no more from the source than it has ready, and waits only for the bytes
/// of the next character. Nothing is thrown: a converter that cannot be opened leaves the buffer
/// closed and reading ends at once.
///
/// Encoding names are those of ICU's converters, and "ChineseBIG5" (windows-950), "ChineseGBK"
/// (windows-936) and "KoreanKSC" (windows-949). Names with other characters than letters, digits
/// and ".", "_", ":", "-", names of UTF-7 and EBCDIC encodings are refused.
class RYNCOMMON_API RyDMCStreamBuf : public std::streambuf {
public:
    /// `source` is not owned and must outlive the buffer.
    RyDMCStreamBuf(std::istream* source, const char* encoding);
    ~RyDMCStreamBuf() override;

    bool is_open() const;

protected:
    int_type underflow() override;
    std::streamsize showmanyc() override;

private:
    void fill(bool mayWait);

    struct Impl;
    std::unique_ptr<Impl> impl_;
};

/// The input stream over an RyDMCStreamBuf of its own.
class RYNCOMMON_API RyDMCStream : public std::istream {
public:
    RyDMCStream(std::istream* source, const char* encoding);
    ~RyDMCStream() override;

    bool is_open() const { return buffer_.is_open(); }

    /// Guesses the encoding of the bytes: a byte-order mark, then valid UTF-8, then ICU's detector,
    /// on at most 64 KiB. Valid UTF-8 with NUL or shift characters in it is UTF-8 only when the
    /// detector sees no UTF-16, UTF-32 or ISO-2022 text there.
    /// @param name  receives the encoding's name
    /// @param flag  whether a byte-order mark told it
    /// @return false when there is nothing to tell from. A stream that can seek is put back to
    /// where it stood.
    static bool detectEncoding(std::istream* source, UnicodeString& name, bool& flag);
    /// The same for a file; `path` in UTF-8.
    static bool detectEncoding(const char* path, UnicodeString& name, bool& flag);

private:
    RyDMCStreamBuf buffer_;
};

/// Collects UTF-16LE bytes, converts them to a named encoding and writes them to a destination.
/// Characters that the encoding lacks, and halves of surrogate pairs, become U+3013 (GETA MARK), or
/// "?" where it lacks that too. "UTF-16" and "UTF-32" are written little-endian. Nothing is thrown.
/// The destructor converts and writes what is left.
class RYNCOMMON_API RyDMCOStreamBuf : public std::streambuf {
public:
    /// What becomes of line ends (CR LF, CR or LF): nothing, or all of them become LF, CR LF or CR.
    enum LF_CONVERT : std::int32_t { LF_NONE = 0, LF_LF = 1, LF_CRLF = 2, LF_CR = 3 };

    /// `destination` is not owned and must outlive the buffer. `byteOrderMark` writes a mark first
    /// where the encoding is one of Unicode; `strict` makes characters that the encoding lacks end
    /// the data instead of being substituted.
    RyDMCOStreamBuf(std::ostream* destination, const char* encoding, bool byteOrderMark = false,
                    LF_CONVERT mode = LF_NONE, bool strict = false);
    ~RyDMCOStreamBuf() override;

    bool is_open() const;
    /// Writes text through the converter; false when the stream is closed or the destination
    /// failed.
    bool writeString(const UnicodeString& text);
    /// Writes bytes as they are, after all converted text and, in encodings with shift states, back
    /// in the initial one.
    bool writeRawBuffer(const char* bytes, std::uint64_t length);
    bool writeRawStream(std::istream& source);
    /// Sets the number of bytes above which isLimitOver() answers true; 0 is no limit. Nothing is
    /// cut.
    void setLimit(std::uint64_t bytes);
    bool isLimitOver() const;
    /// Bytes written to the destination so far.
    std::uint64_t getOutputLength() const;
    std::ostream* getOutputStream() const;

protected:
    int_type overflow(int_type c) override;
    int sync() override;

private:
    bool convert(bool last);

    struct Impl;
    std::unique_ptr<Impl> impl_;
};

/// The output stream over an RyDMCOStreamBuf of its own.
class RYNCOMMON_API RyDMCOStream : public std::ostream {
public:
    using LF_CONVERT = RyDMCOStreamBuf::LF_CONVERT;

    RyDMCOStream(std::ostream* destination, const char* encoding, bool byteOrderMark = false,
                 LF_CONVERT mode = RyDMCOStreamBuf::LF_NONE, bool strict = false);
    /// Converts and writes what is left.
    ~RyDMCOStream() override;

    bool is_open() const { return buffer_.is_open(); }
    bool writeString(const UnicodeString& text) { return buffer_.writeString(text); }
    bool writeRawBuffer(const char* bytes, std::uint64_t length) {
        return buffer_.writeRawBuffer(bytes, length);
    }
    bool writeRawStream(std::istream& source) { return buffer_.writeRawStream(source); }
    void setLimit(std::uint64_t bytes) { buffer_.setLimit(bytes); }
    bool isLimitOver() const { return buffer_.isLimitOver(); }
    std::uint64_t getOutputLength() const { return buffer_.getOutputLength(); }
    std::ostream* getOutputStream() const { return buffer_.getOutputStream(); }

private:
    RyDMCOStreamBuf buffer_;
};

}  // namespace RynCommon
