// Compound files (the Compound File Binary format) and the streams inside them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <istream>
#include <limits>
#include <memory>
#include <streambuf>
#include <string>
#include <vector>

#include <RynCommon/Forward.h>
#include <RynCommon/JZIOobj.h>

namespace RynCommon {

class OleCompFile;
class RyUri;

/// What a compound file may make its readers do. By default the file's own size bounds everything.
/// What exceeds a limit is malformed.
struct OleLimits {
    static constexpr std::uint32_t UNLIMITED = std::numeric_limits<std::uint32_t>::max();

    /// Sectors, or mini sectors, of one chain: of a stream, the directory, the mini FAT, the mini
    /// stream; and sectors of the FAT. No chain is longer than its table in any case.
    std::uint32_t chainSectors = UNLIMITED;
    /// Entries of the directory, unused ones among them. An entry takes 128 bytes of the file.
    std::uint32_t directoryEntries = UNLIMITED;
    /// Bytes of a property set stream.
    std::uint32_t propertySetBytes = std::numeric_limits<std::int32_t>::max();
    /// Sections, properties and names of properties in a property set together.
    std::uint32_t properties = UNLIMITED;
};

/// Kinds of directory entries.
enum OleStorageType : std::int32_t {
    OLE_INVALID = 0,
    OLE_STORAGE = 1,
    OLE_STREAM = 2,
    OLE_LOCKBYTES = 3,
    OLE_PROPERTY = 4,
    OLE_ROOT = 5
};

/// One entry of a compound file's directory. A value.
class RYNCOMMON_API OleDirInfo {
public:
    OleDirInfo();

    /// Reads the 128 bytes of an entry; false when they are malformed.
    bool parse(const unsigned char* bytes, bool littleEndian);

    /// Whether the name is exactly `name`, a narrow text in ICU's default encoding.
    bool compareName(const char* name) const;
    const UnicodeString& getName() const { return name_; }
    OleStorageType getStorageType() const { return type_; }
    bool isRoot() const { return type_ == OLE_ROOT; }
    bool isStorage() const { return type_ == OLE_STORAGE; }
    bool isStream() const { return type_ == OLE_STREAM; }
    /// Directory ids; negative when there is none.
    std::int32_t getLeftSiblingID() const { return leftSibling_; }
    std::int32_t getRightSiblingID() const { return rightSibling_; }
    std::int32_t getChildID() const { return child_; }
    /// First sector of a stream, or of the mini stream for the root; -1 for any other entry.
    std::int32_t getStartSect() const { return startSector_; }
    /// In bytes; 0 for entries that are neither a stream nor the root.
    std::uint32_t getStreamSize() const { return size_; }
    std::int32_t getDirID() const { return id_; }
    void setDirID(std::int32_t id) { id_ = id; }

    /// The colour flag of the red-black tree: 0 red, 1 black.
    unsigned char getColor() const { return color_; }
    /// Sixteen bytes as stored; all 0 for entries that are neither a storage nor the root, as are
    /// the three below.
    const unsigned char* getClassID() const { return classId_; }
    std::uint32_t getStateBits() const { return stateBits_; }
    /// Counts of 100 ns since 1601-01-01 UTC; 0 when unknown.
    std::uint64_t getCreationTime() const { return creationTime_; }
    std::uint64_t getModificationTime() const { return modificationTime_; }

private:
    UnicodeString name_;
    OleStorageType type_ = OLE_INVALID;
    unsigned char color_ = 0;
    unsigned char classId_[16] = {};
    std::int32_t leftSibling_ = -1;
    std::int32_t rightSibling_ = -1;
    std::int32_t child_ = -1;
    std::uint32_t stateBits_ = 0;
    std::uint64_t creationTime_ = 0;
    std::uint64_t modificationTime_ = 0;
    std::int32_t startSector_ = -1;
    std::uint32_t size_ = 0;
    std::int32_t id_ = -1;
};

/// A path into the tree of storages: `count` narrow names, outermost first, such as
/// {2, {"PP97_DUALSTORAGE", "Current User"}}. The names are not owned.
struct RYNCOMMON_API OleDirPath {
    int count;
    const char* const* names;
};

/// A stream of a compound file, which must outlive it. Streams share the file's position: a file
/// and its streams are used by one thread at a time.
class RYNCOMMON_API OleStream {
public:
    explicit OleStream(OleCompFile* file);
    OleStream(const OleStream&) = delete;
    OleStream& operator=(const OleStream&) = delete;
    virtual ~OleStream();

    /// Moves the position, clamped to 0..size.
    /// @param whence  0: to `offset`; 1: forwards by `offset`; 2: to `offset` bytes before the end
    /// @return the position, or -1 when it cannot be mapped or `whence` is another number
    virtual std::int64_t OLEseek(std::int32_t offset, int whence);
    /// In bytes.
    virtual std::uint32_t GetStreamSize() const;
    /// Reads at most `count` bytes; returns how many came, which is less at the end or where a
    /// sector is missing.
    virtual std::uint32_t OLEread(unsigned char* buffer, std::uint32_t count);
    virtual std::uint32_t OLEtell() const;
    /// Writes the whole stream into a new file; false when anything fails. The position is kept.
    virtual bool CopyToFile(const char* path);
    /// Becomes the stream of the directory entry `id`; false when that is no stream or its chain of
    /// sectors is broken.
    virtual bool GetStreamChain(std::int32_t id);
    /// The sector (or mini sector) that holds the part `index` of the stream; -1 when there is
    /// none.
    virtual std::int32_t GetStreamChainIndex(std::uint32_t index) const;

private:
    /// Where at most `most` bytes from the position on lie in the file, and how many of them
    /// together.
    bool map(std::uint32_t most, std::uint64_t& offset, std::uint64_t& size) const;

    struct Impl;
    std::unique_ptr<Impl> impl_;
};

/// A compound file, for reading. Every failure is a false, a null pointer or a negative number;
/// nothing is thrown but std::bad_alloc, instead of which most of opening fails, too.
/// Every chain of sectors is bounded by its table, and one that returns to a sector of its own
/// fails. Sector n begins at 512 + n times its size, whatever the size: the header counts as 512
/// bytes in files with larger sectors, too (kept so).
class RYNCOMMON_API OleCompFile {
public:
    /// What kind of office document a compound file holds.
    enum OLEDOCUMENT_TYPE : std::int32_t {
        OLEDOC_NONE = 0,
        OLEDOC_WORD_PROCESSOR = 1,
        OLEDOC_SPREADSHEET = 2,
        OLEDOC_PRESENTATION = 3,
        /// The family that keeps a "DocumentViewStyles" stream.
        OLEDOC_VIEW_STYLES = 4
    };

    OleCompFile();
    OleCompFile(const OleCompFile&) = delete;
    OleCompFile& operator=(const OleCompFile&) = delete;
    virtual ~OleCompFile();

    /// For files opened from now on, and for property sets read of them.
    void setLimits(const OleLimits& limits);
    const OleLimits& getLimits() const;

    /// Opens a file; `path` in UTF-8. What was open before is released; streams of it must be gone.
    bool OLEopen(const char* path);
    /// Opens through `io`, which is not owned and must outlive this object.
    bool OLEopen(JZIOobj* io);
    /// Reads header, allocation tables and directory through the reader that is set.
    bool OLEopenSub();

    /// Opens a stream, at its start. Null when the path names no stream that can be read. Given
    /// back with OLEcloseStream().
    OleStream* OLEopenStream(const OleDirPath* path);
    /// Opens the stream that presents the object in a storage: along the right siblings of the
    /// storage's first child up to "\2OlePres000" or the last, the entry reached, or the one before
    /// it when the entry reached is the last. Null when that is no stream.
    OleStream* OLEopenObject(const OleDirPath* path);
    void OLEcloseStream(OleStream* stream);

    /// The directory id that `path` names (the root's for an empty path); negative, with a line on
    /// standard error, when there is none.
    std::int32_t getDirIndex(const OleDirPath* path);
    /// The id of the entry `name` in the tree of siblings rooted at `start`; -1 when there is none.
    std::int32_t findDirEntryByName(const OleDirInfo* start, const char* name);
    /// What follows a sector in the FAT, or a mini sector in the mini FAT; -1 outside of the table.
    std::int32_t getNextBlock(std::int32_t block, bool mini) const;
    std::size_t ReadIO(void* buffer, std::size_t count);
    bool SeekIO(std::int64_t offset, int whence);

    /// Whether 512 bytes can be read that begin with the signature of a compound file. The stream
    /// is put back where it stood, when it can seek.
    static bool isOLEUri(std::istream& stream);
    static bool isOLEUri(const RyUri& uri);
    /// The stream is read from its start and put back where it stood; one that cannot seek is used
    /// up, and what is no compound file after 512 bytes. Writes nothing to standard error.
    static OLEDOCUMENT_TYPE detectOLEDocument(std::istream& stream);
    static OLEDOCUMENT_TYPE detectOLEDocument(const RyUri& uri);

    std::uint32_t getBytesPerBlock() const;
    std::uint32_t getBytesPerMini() const;
    std::uint32_t getMinisPerBlock() const;
    std::uint32_t getLongsPerBlock() const;
    /// The sector shift, or the mini sector shift.
    std::uint16_t getBlockShift(bool mini) const;
    std::int32_t getFatBlockCount() const;
    std::int32_t getMiniFatBlockCount() const;
    std::int32_t getMiniFatStartBlock() const;
    /// Streams smaller than this, in bytes, live in the mini stream.
    std::int32_t getMiniFatCutoff() const;
    /// First sector of the mini stream, from the root entry; negative when there is none.
    std::int32_t getMiniStartSect() const;
    std::int32_t getIndirectFatStartBlock() const;
    std::int32_t getIndirectFatBlockCount() const;
    std::int32_t getDirStartBlock() const;
    std::int32_t getDirCount() const;
    /// All entries; the index is the directory id.
    const std::vector<OleDirInfo>& getDirVec() const;
    /// Null when `id` is out of range.
    const OleDirInfo* getDirInfo(std::int32_t id) const;
    bool isLittleEndian() const;
    /// The two bytes of the major version as in the file, such as "03 00".
    const std::string& getVersion() const;

private:
    friend class OleStream;

    bool parseHeader();
    bool buildFAT();
    bool buildMiniFAT();
    bool buildDirInfo();
    OleStream* openEntry(std::int32_t id);

    struct Impl;
    std::unique_ptr<Impl> impl_;
};

/// Reads an OleStream as a stream of characters.
class RYNCOMMON_API RyOleStreamBuf : public std::streambuf {
public:
    /// @param stream  not owned; must outlive the buffer; read from its position
    /// @param limit   at most so many bytes are delivered; negative: all
    RyOleStreamBuf(OleStream* stream, int limit = -1);
    ~RyOleStreamBuf() override;

protected:
    int_type underflow() override;

private:
    OleStream* stream_;
    int limit_;
    std::uint64_t blocksRead_ = 0;
    std::unique_ptr<char[]> buffer_;
};

/// The input stream over an RyOleStreamBuf of its own.
class RYNCOMMON_API RyOleStream : public std::istream {
public:
    RyOleStream(OleStream* stream, int limit = -1);
    ~RyOleStream() override;

private:
    RyOleStreamBuf buffer_;
};

}  // namespace RynCommon
