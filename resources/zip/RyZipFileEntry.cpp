// Records of an archive, and members.
#include <utility>

#include <zlib.h>

#include "resources/zip/ArchiveReader.h"
#include "resources/zip/MemberList.h"
#include "resources/zip/RyZipFileImpl.h"

namespace RynCommon {

namespace {

bool isUsable(const std::istream& stream) {
    return stream.good() && stream.rdbuf() != nullptr;
}

/// Reads `count` bytes; false when they are not there.
bool readWhole(std::istream& stream, char* to, std::size_t count) {
    return isUsable(stream) && zip::readBytes(*stream.rdbuf(), to, count) == count;
}

}  // namespace

// Records.

RyZipEntry::RyZipEntry(std::istream& stream)
    : stream_(&stream),
      start_(isUsable(stream) ? zip::positionOf(*stream.rdbuf()) : -1),
      signature_(read32(stream)) {}

RyZipEntry::RyZipEntry(std::istream& stream, std::int64_t start, std::uint32_t signature)
    : stream_(&stream), start_(start), signature_(signature) {}

RyZipEntry::~RyZipEntry() = default;

bool RyZipEntry::isA(unsigned int id) const {
    return id == getStaticTypeID() || RyRCObject::isA(id);
}

UnicodeString RyZipEntry::getTypeName() const {
    return UnicodeString(u"RyZipEntry");
}

std::uint32_t RyZipEntry::getSignature(std::istream& stream) {
    if (!isUsable(stream)) return 0;
    const std::int64_t start = zip::positionOf(*stream.rdbuf());
    if (start < 0) return 0;
    const std::uint32_t signature = read32(stream);
    zip::seekTo(*stream.rdbuf(), start);
    return signature;
}

std::uint16_t RyZipEntry::read16() {
    char bytes[2];
    return readWhole(*stream_, bytes, sizeof bytes) ? zip::get16({bytes, sizeof bytes}, 0)
                                                    : std::uint16_t{0};
}

std::uint32_t RyZipEntry::read32() {
    return read32(*stream_);
}

std::uint32_t RyZipEntry::read32(std::istream& stream) {
    char bytes[4];
    return readWhole(stream, bytes, sizeof bytes) ? zip::get32({bytes, sizeof bytes}, 0) : 0;
}

// Members.

RyZipFileEntry::RyZipFileEntry(std::istream& stream)
    : RyZipEntry(stream), impl_(std::make_unique<Impl>()) {
    if (start_ < 0) return;
    zip::seekTo(*stream.rdbuf(), start_);
    zip::ArchiveReader reader(*stream.rdbuf());
    zip::FoundMember found = zip::readLocalMember(reader, start_);
    impl_->header = found.header;
    impl_->name = std::move(found.name);
    reader.leaveAt(zip::nextRecord(found));
}

RyZipFileEntry::RyZipFileEntry(std::istream& stream, std::int64_t start, std::uint32_t signature,
                               std::unique_ptr<Impl> impl)
    : RyZipEntry(stream, start, signature), impl_(std::move(impl)) {}

RyZipFileEntry::~RyZipFileEntry() = default;

bool RyZipFileEntry::isA(unsigned int id) const {
    return id == getStaticTypeID() || RyZipEntry::isA(id);
}

UnicodeString RyZipFileEntry::getTypeName() const {
    return UnicodeString(u"RyZipFileEntry");
}

const UnicodeString& RyZipFileEntry::getFileName() const {
    return impl_->name;
}

RyZipFileEntry::CMETHOD RyZipFileEntry::getCompressionMethod() const {
    return static_cast<CMETHOD>(impl_->header.method);
}

std::uint64_t RyZipFileEntry::getCompressedSize() const {
    return impl_->header.compressedSize;
}

std::uint64_t RyZipFileEntry::getUncompressedSize() const {
    return impl_->header.uncompressedSize;
}

// Data.

namespace {

/// Where the data begins behind the local header, whose name and extra field may differ in length
/// from the central directory's; -1 when no local header is there.
std::int64_t locateData(std::streambuf& source, const zip::MemberHeader& header) {
    if (header.dataStart >= 0 || header.localStart < 0) return header.dataStart;
    char bytes[zip::LOCAL_HEADER_SIZE]{};
    const std::string_view local(bytes, sizeof bytes);
    if (!zip::seekTo(source, header.localStart)) return -1;
    if (zip::readBytes(source, bytes, sizeof bytes) < sizeof bytes) return -1;
    if (zip::get32(local, 0) != zip::LOCAL_HEADER) return -1;
    const zip::MemberHeader there = zip::parseLocalHeader(local);
    return header.localStart + static_cast<std::int64_t>(sizeof bytes) + there.nameLength +
           there.extraLength;
}

/// Reads what the stream has of the data; no more is allocated than it has.
zip::SharedBytes readData(std::streambuf& source, const zip::MemberHeader& header) {
    const std::int64_t end = zip::endOf(source);
    const std::int64_t start = locateData(source, header);
    if (start < 0 || start >= end || !zip::seekTo(source, start)) return {};
    const auto size = static_cast<std::size_t>(
        std::min(header.compressedSize, static_cast<std::uint64_t>(end - start)));
    auto bytes = std::make_unique_for_overwrite<char[]>(size);
    const std::size_t got = zip::readBytes(source, bytes.get(), size);
    return {std::shared_ptr<const char[]>(std::move(bytes)), got};
}

/// Whether the stored bytes are not what the archive says. Of data in an unknown method only the
/// length can be told.
bool isWrong(const zip::MemberHeader& header, const zip::SharedBytes& data) {
    if (data.size != header.compressedSize) return true;
    if (header.method != RyZipFileEntry::STORED) return false;
    const uLong crc = crc32_z(crc32_z(0, nullptr, 0),
                              reinterpret_cast<const Bytef*>(data.bytes.get()), data.size);
    return data.size != header.uncompressedSize || (data.size > 0 ? crc : 0) != header.crc;
}

/// A new stream for the caller, or the member's own one, put back to its start.
template <class Stream, class Make, class Rewind>
Stream* hand(std::unique_ptr<Stream>& own, bool newStream, Make make, Rewind rewind) {
    if (newStream) return make();
    if (own) {
        rewind(*own);
    } else {
        own.reset(make());
    }
    return own.get();
}

}  // namespace

void RyZipFileEntry::readCompressedData() {
    if (impl_->dataRead) return;
    if (stream_->rdbuf() != nullptr) impl_->data = readData(*stream_->rdbuf(), impl_->header);
    impl_->dataRead = true;
}

std::istream* RyZipFileEntry::getCompressedStream(bool newStream) {
    readCompressedData();
    return hand(
        impl_->ownStored, newStream, [&] { return new zip::MemoryStream(impl_->data); },
        [](zip::MemoryStream& own) { own.rewind(); });
}

std::istream* RyZipFileEntry::getUncompressedStream(bool newStream) {
    const bool isDeflated = impl_->header.method == DEFLATED;
    if (!isDeflated && !impl_->verify) return getCompressedStream(newStream);
    readCompressedData();
    if (!isDeflated) {
        if (!impl_->isWrong) impl_->isWrong = isWrong(impl_->header, impl_->data);
        return hand(
            impl_->ownCheckedStored, newStream,
            [&] { return new zip::MemoryStream(impl_->data, *impl_->isWrong); },
            [](zip::MemoryStream& own) { own.rewind(); });
    }
    if (impl_->verify) {
        const zip::Expectation expected{impl_->header.crc, impl_->header.uncompressedSize};
        return hand(
            impl_->ownCheckedInflater, newStream,
            [&] { return new zip::CheckedInflaterStream(impl_->data, expected); },
            [](zip::CheckedInflaterStream& own) { own.rewind(); });
    }
    return hand(
        impl_->ownInflater, newStream, [&] { return new zip::SharedInflaterStream(impl_->data); },
        [](RyInflaterStream& own) { own.reset(); });
}

}  // namespace RynCommon
