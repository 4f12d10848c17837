// Property sets of compound files: title, author, links and the like ([MS-OLEPS]).
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include <RynCommon/Forward.h>

namespace RynCommon {

class OleCompFile;
struct OleLimits;

/// A class or format identifier, as read.
struct RYNCOMMON_API OLE_CLSID {
    std::uint32_t data1 = 0;
    std::uint16_t data2 = 0;
    std::uint16_t data3 = 0;
    std::uint8_t data4[8] = {};
};

/// Reads one property set stream of a compound file, which must outlive this object. Failures are
/// negative results; nothing is thrown but std::bad_alloc. Used by one thread at a time.
class RYNCOMMON_API OleSummaryInformation {
public:
    OleSummaryInformation();
    OleSummaryInformation(const OleSummaryInformation&) = delete;
    OleSummaryInformation& operator=(const OleSummaryInformation&) = delete;
    /// Closes the stream.
    virtual ~OleSummaryInformation();

    /// For what is read from now on, instead of the limits of the file.
    void setLimits(const OleLimits& limits);

    /// Reads the summary information. Its property 1 tells the code page of narrow strings, else
    /// they are read as "cp932". What an earlier init read is given up.
    /// @return 1, or -1 when the stream does not exist or is malformed
    int initSummaryInformation(OleCompFile* file);
    /// Reads the document summary information, likewise.
    int initDocumentSummaryInformation(OleCompFile* file);

    /// A property with one of the ids 1 to 9, 14, 15, 16, 18 and 19. 16- and 32-bit integers become
    /// integer values (the smaller ones sign-extended), narrow strings string values; of a vector
    /// the first element counts.
    /// @return 1 when `value` was set; 0 when the property is of another type; -1 when it is
    /// absent, not served or cannot be read
    int getProperty(unsigned long id, RyValue& value);
    /// Any property of the sections without a dictionary. Beside the types above: wide strings as
    /// string values, file times as ISO 8601 texts in UTC such as "2024-05-01T12:30:00Z", booleans,
    /// 32- and 64-bit and unsigned integers as integers where they fit, else reals, and 32- and
    /// 64-bit reals. Results as above.
    int getPropertyAny(unsigned long id, RyValue& value);
    /// Appends the texts of the document's hyperlinks (the user-defined property "_PID_HLINKS" of
    /// the document summary information).
    /// @return how many there are; -1 when they are malformed or nothing has been read
    int getHyperLinks(std::vector<UnicodeString>& links);
    /// Name of the encoding of narrow strings, such as "cp1252".
    const UnicodeString& getCodePage() const;

protected:
    /// Parses the stream's header and sections; 1 or -1.
    int getSummaryInformation();

    /// The readers of the stream, at its position, which they move. False, with what is read left
    /// as it was, when the stream ends before. checkEndian() reads the first two bytes, which tell
    /// the byte order of all that follows; it fails when they are none.
    bool checkEndian();
    bool getWORD(std::uint16_t& value);
    bool getDWORD(std::uint32_t& value);
    bool getCLSID(OLE_CLSID& value);
    /// `units` UTF-16 units as they stand, NULs included.
    bool getWSTR(UnicodeString& text, std::uint32_t units);
    /// `size` bytes, the last one first.
    bool getReverse(void* buffer, std::uint32_t size);
    /// The header of the stream, with the number of its sections.
    bool getPropHeader(std::uint32_t& sections);

private:
    int init(OleCompFile* file, const char* name);

    struct Impl;
    std::unique_ptr<Impl> impl_;
};

/// The properties of a document that every user asks for, read within the limits of the file.
class RYNCOMMON_API OlePropertySet {
public:
    OlePropertySet();
    ~OlePropertySet();

    /// Reads them from the summary information of `file`; absent ones become empty. Whether that
    /// was there.
    bool init(OleCompFile* file);
    const UnicodeString& getTitle() const { return title_; }
    const UnicodeString& getSubject() const { return subject_; }
    const UnicodeString& getAuthor() const { return author_; }
    const UnicodeString& getKeywords() const { return keywords_; }

private:
    UnicodeString title_;
    UnicodeString subject_;
    UnicodeString author_;
    UnicodeString keywords_;
};

}  // namespace RynCommon
