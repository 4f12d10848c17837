// Zip archives and the office packages in them, for reading.
#pragma once

#include <cstdint>
#include <istream>
#include <limits>
#include <map>
#include <memory>
#include <vector>

#include <RynCommon/Forward.h>
#include <RynCommon/RyObject.h>

namespace RynCommon {

/// What an archive may make its reader do. The defaults leave sane archives alone. Nothing is
/// thrown where a limit is exceeded.
struct RyZipLimits {
    static constexpr std::uint64_t UNLIMITED = std::numeric_limits<std::uint64_t>::max();

    /// Members of an archive; those behind them are passed over.
    std::uint64_t members = UNLIMITED;
    /// Inflated bytes of a part that describes a package (content types, relationships,
    /// properties): so many, and `partInflation` more for each byte of its compressed size. Sane
    /// parts compress to a tenth. What stands behind them is not read.
    std::uint64_t partBytes = std::uint64_t{4} << 20;
    std::uint32_t partInflation = 64;
    /// Attributes of all elements of such a part: a million relationships. The element that exceeds
    /// it and what stands behind it is not read.
    std::uint64_t partAttributes = 4'000'000;
    /// Bytes of an archive that a `jar:` URI names and that has to be kept in memory, since it is
    /// no file: 1 GiB. A larger one does not open.
    std::uint64_t copiedBytes = std::uint64_t{1} << 30;
    /// Archives within one another, as a `jar:` URI names them. More of them do not open.
    std::uint32_t nestedArchives = 16;
};

/// A record of a zip archive, which begins with a signature.
class RYNCOMMON_API RyZipEntry : public RyRCObject {
public:
    ~RyZipEntry() override;

    static unsigned int getStaticTypeID() { return 0xB84B5A40u; }
    unsigned int getTypeID() const override { return getStaticTypeID(); }
    bool isA(unsigned int id) const override;
    UnicodeString getTypeName() const override;

    /// The four bytes at the record's start, little-endian; 0 when they could not be read.
    std::uint32_t getSignature() const { return signature_; }
    /// The four bytes at the stream's position, which stays where it is, as does the stream's
    /// state; 0 when there are fewer.
    static std::uint32_t getSignature(std::istream& stream);

protected:
    /// Reads the signature at the stream's position. The stream must outlive the record.
    explicit RyZipEntry(std::istream& stream);
    RyZipEntry(const RyZipEntry&) = delete;
    RyZipEntry& operator=(const RyZipEntry&) = delete;

    /// A record whose signature was read already.
    RyZipEntry(std::istream& stream, std::int64_t start, std::uint32_t signature);

    /// Little-endian reads; a number that is not there whole reads as 0.
    std::uint16_t read16();
    std::uint32_t read32();
    static std::uint32_t read32(std::istream& stream);

    std::istream* stream_;
    std::int64_t start_;
    std::uint32_t signature_;
};

/// A member of an archive. Its data is read when it is first asked for, and kept. Counted; may
/// outlive the archive when that owns its stream, else as long as the stream does. Members share
/// the archive's stream: archive and members are used by one thread at a time.
class RYNCOMMON_API RyZipFileEntry : public RyZipEntry {
public:
    /// Compression methods that are known here; any other number may occur.
    enum CMETHOD : std::uint16_t { STORED = 0, DEFLATED = 8 };

    /// Reads the local header at the stream's position and leaves the stream at the next one. The
    /// name is decoded with ICU's default converter.
    explicit RyZipFileEntry(std::istream& stream);
    ~RyZipFileEntry() override;

    static unsigned int getStaticTypeID() { return 0x1E3480DFu; }
    unsigned int getTypeID() const override { return getStaticTypeID(); }
    bool isA(unsigned int id) const override;
    UnicodeString getTypeName() const override;

    const UnicodeString& getFileName() const;
    CMETHOD getCompressionMethod() const;
    /// In bytes.
    std::uint64_t getCompressedSize() const;
    /// In bytes, as the archive says.
    std::uint64_t getUncompressedSize() const;

    /// The data as stored.
    /// @param newStream  true: a new stream, which the caller deletes and which may outlive the
    ///                   member; false: the member's own stream, which stays the member's and is
    ///                   put back to its start by each call
    std::istream* getCompressedStream(bool newStream);
    /// The data, inflated for method 8, as stored for any other. `newStream` as above. Corrupt data
    /// ends early; with RyZipFile::setVerify() the stream then turns bad at its end.
    std::istream* getUncompressedStream(bool newStream);

    /// Relationship Id to target, relationship type to target, relationship Id to target mode; what
    /// was read by RyZipFile's look-ups so far.
    const std::map<UnicodeString, UnicodeString>& getRelationshipsIdMap() const;
    const std::map<UnicodeString, UnicodeString>& getRelationshipsTypeMap() const;
    const std::map<UnicodeString, UnicodeString>& getRelationshipsTargetMode() const;

private:
    friend class RyZipFile;
    struct Impl;

    RyZipFileEntry(std::istream& stream, std::int64_t start, std::uint32_t signature,
                   std::unique_ptr<Impl> impl);
    void readCompressedData();

    std::unique_ptr<Impl> impl_;
};

/// A zip archive opened for reading, and the Open Packaging Conventions package (ECMA-376-2) that
/// it may hold.
///
/// Members are found by walking the local headers from the stream's position; archives must carry
/// their sizes there. setUseCentralDirectory() reads the directory at the archive's end instead.
/// Nothing is thrown but for lack of memory: what is no archive has no members. Copies share
/// members and stream.
class RYNCOMMON_API RyZipFile {
public:
    /// Kinds of office documents, by the content type of the main part.
    enum OOXDOCUMENT_TYPE : std::int32_t {
        OOX_NONE = 0,
        OOX_WORDPROCESSING_DOCUMENT = 1,
        OOX_WORDPROCESSING_MACRO_DOCUMENT = 2,
        OOX_WORDPROCESSING_TEMPLATE = 3,
        OOX_WORDPROCESSING_MACRO_TEMPLATE = 4,
        OOX_SPREADSHEET = 5,
        OOX_SPREADSHEET_MACRO = 6,
        OOX_SPREADSHEET_TEMPLATE = 7,
        OOX_SPREADSHEET_MACRO_TEMPLATE = 8,
        OOX_SPREADSHEET_BINARY = 9,
        OOX_PRESENTATION = 10,
        OOX_PRESENTATION_MACRO = 11,
        OOX_SLIDESHOW = 12,
        OOX_SLIDESHOW_MACRO = 13,
        OOX_PRESENTATION_TEMPLATE = 14,
        OOX_PRESENTATION_MACRO_TEMPLATE = 15,
        OOX_THEME_MANAGER = 16
    };

    /// No archive.
    RyZipFile();
    /// `path` in UTF-8.
    explicit RyZipFile(const char* path);
    explicit RyZipFile(const UnicodeString& path);
    /// @param own  whether the archive, with its copies and members, deletes the stream
    RyZipFile(std::istream* stream, bool own);
    RyZipFile(const RyZipFile& other);
    RyZipFile& operator=(const RyZipFile& other);
    virtual ~RyZipFile();

    /// Opens another archive; members and package data of the last one are given up.
    void open(const char* path);
    void open(const UnicodeString& path);
    void open(std::istream* stream, bool own);

    /// Reads members from the central directory at the next open(): data descriptors, zip64 sizes,
    /// data in front of the archive and the UTF-8 flag of names are honoured. Off by default.
    void setUseCentralDirectory(bool use);
    /// Checks CRC-32 and size of members opened from now on; a wrong one turns the uncompressed
    /// stream bad at its end. Off by default.
    void setVerify(bool verify);
    /// Takes packages of the strict conformance class, too. Off by default.
    void setAcceptStrict(bool accept);

    /// Members count from the next open() on, parts from the next look-up on. An archive has the
    /// default limits of when it was made.
    void setLimits(const RyZipLimits& limits);
    const RyZipLimits& getLimits() const;
    /// The limits of archives made from now on, and of `jar:` URIs. May be called by any thread.
    static void setDefaultLimits(const RyZipLimits& limits);
    static RyZipLimits getDefaultLimits();

    unsigned int getFileEntryCount() const;
    /// The member at `index` in the archive's order; null when there is none. It stays the
    /// archive's; whoever keeps it counts a reference.
    RyZipFileEntry* getFileEntry(unsigned int index) const;
    /// The first member of exactly that name; null when there is none.
    RyZipFileEntry* getFileEntry(const UnicodeString& name) const;

    /// Whether a record of a zip archive begins at the stream's position, which stays where it is,
    /// as does the stream's state. A null stream is none.
    static bool isZipFile(std::istream* stream);
    static bool isZipFile(const char* path);
    static bool isZipFile(const UnicodeString& path);

    /// The content type of a part; empty when it has none, for a null part and for an archive
    /// without "[Content_Types].xml".
    UnicodeString getContentType(RyZipFileEntry* part);
    /// The target of the relationship `id` of a part (null: of the package); empty when there is
    /// none. Internal targets of a part are member names; all others are as written.
    UnicodeString getRelationshipTargetFromId(const UnicodeString& id,
                                              RyZipFileEntry* part = nullptr);
    /// The target of the first relationship of that type.
    UnicodeString getRelationshipTargetFromType(const UnicodeString& type,
                                                RyZipFileEntry* part = nullptr);
    /// "Internal" (the default) or "External"; empty when there is no such relationship.
    UnicodeString getRelationshipTargetMode(const UnicodeString& id,
                                            RyZipFileEntry* part = nullptr);
    /// The relationships of the package as read by the look-ups so far; see RyZipFileEntry.
    const std::map<UnicodeString, UnicodeString>& getRelationshipsIdMap() const;
    const std::map<UnicodeString, UnicodeString>& getRelationshipsTypeMap() const;
    const std::map<UnicodeString, UnicodeString>& getRelationshipsTargetMode() const;

    /// The main part; null when the archive is no office package.
    RyZipFileEntry* getOfficeDocument();
    OOXDOCUMENT_TYPE detectOOXDocument();
    static OOXDOCUMENT_TYPE detectOOXDocument(const char* path);
    static OOXDOCUMENT_TYPE detectOOXDocument(const UnicodeString& path);
    /// The stream is read from its position, is not owned, and is left anywhere.
    static OOXDOCUMENT_TYPE detectOOXDocument(std::istream* stream);
    /// The version of the application that wrote the package; empty when it does not tell.
    UnicodeString getAppVersion();

private:
    struct Impl;

    void init();
    void setContentType();
    void readContentTypes(RyZipFileEntry& description);
    void makeRelationships(RyZipFileEntry* part);

    std::unique_ptr<Impl> impl_;
};

}  // namespace RynCommon
