// The summary information streams of a compound file.
#include <RynCommon/OleCompFile.h>
#include <RynCommon/OleSummaryInformation.h>
#include <RynCommon/RyValue.h>

#include <algorithm>
#include <optional>

#include "resources/ole/CodePages.h"
#include "resources/ole/PropertyReader.h"
#include "resources/ole/PropertySections.h"
#include "resources/ole/PropertyValue.h"

namespace RynCommon {

namespace {

constexpr char SUMMARY[] = "\005SummaryInformation";
constexpr char DOCUMENT_SUMMARY[] = "\005DocumentSummaryInformation";
constexpr char HYPERLINKS[] = "_PID_HLINKS";

/// Ids that getProperty() serves: those of the summary information that are texts and counts.
constexpr bool isServed(unsigned long id) {
    return (id >= 1 && id <= 9) || (id >= 14 && id <= 16) || id == 18 || id == 19;
}

}  // namespace

struct OleSummaryInformation::Impl {
    ~Impl() { close(); }

    void close() {
        reader = ole::PropertyReader();
        sections.clear();
        if (stream != nullptr) file->OLEcloseStream(stream);
        stream = nullptr;
        setCodePage(ole::CODE_PAGE_SHIFT_JIS);
    }

    bool open(OleCompFile* from, const char* name) {
        close();
        if (from == nullptr) return false;
        const OleDirPath path{1, &name};
        file = from;
        stream = from->OLEopenStream(&path);
        reader = ole::PropertyReader(stream, limits().propertySetBytes);
        return stream != nullptr;
    }

    /// Of an open stream.
    const OleLimits& limits() const { return ownLimits ? *ownLimits : file->getLimits(); }

    /// The property in the sections that have no names for their ids.
    const ole::Property* find(unsigned long id) const {
        for (const ole::PropertySection& section : sections) {
            if (section.hasDictionary || id > UINT32_MAX) continue;
            if (const ole::Property* found = section.find(static_cast<std::uint32_t>(id))) {
                return found;
            }
        }
        return nullptr;
    }

    void setCodePage(std::int32_t number) {
        codePage = number;
        codePageName = ole::getCodePageName(number);
        decoder.reset();
    }

    void chooseCodePage() {
        const ole::Property* const property = find(ole::ID_CODE_PAGE);
        std::int32_t number = 0;
        if (property != nullptr && ole::readUnsigned(reader, *property, number)) {
            setCodePage(number);
        }
    }

    /// UTF-16 in a stream of the other byte order has it, too.
    ole::CodePageDecoder& getDecoder() {
        const bool swapped = codePage == ole::CODE_PAGE_UTF16 && reader.isSwapped();
        if (!decoder) decoder.emplace(swapped ? ole::CODE_PAGE_UTF16_BIG : codePage);
        return *decoder;
    }

    int getProperty(unsigned long id, ole::TypeRange range, RyValue& value) {
        const ole::Property* const property = find(id);
        if (property == nullptr) return -1;
        return ole::readValue(reader, *property, range, getDecoder(), value);
    }

    std::optional<OleLimits> ownLimits;
    OleCompFile* file = nullptr;
    OleStream* stream = nullptr;
    ole::PropertyReader reader;
    ole::PropertySetHeader header;
    std::vector<ole::PropertySection> sections;
    std::int32_t codePage = 0;
    UnicodeString codePageName;
    std::optional<ole::CodePageDecoder> decoder;
};

OleSummaryInformation::OleSummaryInformation() : impl_(std::make_unique<Impl>()) {
    impl_->setCodePage(ole::CODE_PAGE_SHIFT_JIS);
}

OleSummaryInformation::~OleSummaryInformation() = default;

void OleSummaryInformation::setLimits(const OleLimits& limits) {
    impl_->ownLimits = limits;
}

int OleSummaryInformation::initSummaryInformation(OleCompFile* file) {
    return init(file, SUMMARY);
}

int OleSummaryInformation::initDocumentSummaryInformation(OleCompFile* file) {
    return init(file, DOCUMENT_SUMMARY);
}

int OleSummaryInformation::init(OleCompFile* file, const char* name) {
    if (!impl_->open(file, name)) return -1;
    const int result = getSummaryInformation();
    if (result == 1) impl_->chooseCodePage();
    return result;
}

int OleSummaryInformation::getSummaryInformation() {
    impl_->sections.clear();
    if (impl_->file != nullptr && ole::readSections(impl_->reader, impl_->header,
                                                    impl_->limits().properties, impl_->sections)) {
        return 1;
    }
    impl_->sections.clear();
    return -1;
}

int OleSummaryInformation::getProperty(unsigned long id, RyValue& value) {
    return isServed(id) ? impl_->getProperty(id, ole::TypeRange::BASIC, value) : -1;
}

int OleSummaryInformation::getPropertyAny(unsigned long id, RyValue& value) {
    return impl_->getProperty(id, ole::TypeRange::ALL, value);
}

int OleSummaryInformation::getHyperLinks(std::vector<UnicodeString>& links) {
    if (impl_->sections.empty()) return -1;
    for (const ole::PropertySection& section : impl_->sections) {
        const std::uint32_t* const id = section.findName(HYPERLINKS);
        if (id == nullptr) continue;
        const ole::Property* const property = section.find(*id);
        return property == nullptr ? -1 : ole::readHyperLinks(impl_->reader, *property, links);
    }
    return 0;
}

const UnicodeString& OleSummaryInformation::getCodePage() const {
    return impl_->codePageName;
}

bool OleSummaryInformation::checkEndian() {
    return impl_->reader.seek(0) && ole::readByteOrder(impl_->reader);
}

bool OleSummaryInformation::getWORD(std::uint16_t& value) {
    return impl_->reader.readWord(value);
}

bool OleSummaryInformation::getDWORD(std::uint32_t& value) {
    return impl_->reader.readDword(value);
}

bool OleSummaryInformation::getCLSID(OLE_CLSID& value) {
    return impl_->reader.readClassId(value);
}

bool OleSummaryInformation::getWSTR(UnicodeString& text, std::uint32_t units) {
    return impl_->reader.readWide(text, units);
}

bool OleSummaryInformation::getReverse(void* buffer, std::uint32_t size) {
    return impl_->reader.readReversed(buffer, size);
}

bool OleSummaryInformation::getPropHeader(std::uint32_t& sections) {
    if (!impl_->reader.seek(0) || !ole::readHeader(impl_->reader, impl_->header)) return false;
    sections = impl_->header.sectionCount;
    return true;
}

}  // namespace RynCommon
