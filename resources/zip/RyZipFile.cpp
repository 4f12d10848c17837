// Archives: opening, the list of members, look-up by name.
#include <RynCommon/RyZipFile.h>

#include <algorithm>
#include <string>
#include <system_error>
#include <utility>

#include "platform/Files.h"
#include "resources/zip/ArchiveReader.h"
#include "resources/zip/MemberList.h"
#include "resources/zip/RyZipFileImpl.h"

namespace RynCommon {

namespace {

std::string toUtf8(const UnicodeString& path) {
    std::string bytes;
    path.toUTF8String(bytes);
    return bytes;
}

std::unique_ptr<std::istream> openFile(const char* path) {
    std::error_code error;
    return path != nullptr ? platform::openInputFile(path, error) : nullptr;
}

/// Not through a C string: a name with a NUL in it is no name.
std::unique_ptr<std::istream> openFile(const UnicodeString& path) {
    std::error_code error;
    return platform::openInputFile(toUtf8(path), error);
}

std::shared_ptr<std::istream> withoutOwner(std::istream* stream) {
    return {std::shared_ptr<std::istream>(), stream};
}

}  // namespace

RyZipFile::RyZipFile() : impl_(std::make_unique<Impl>()) {}

RyZipFile::RyZipFile(const char* path) : RyZipFile() {
    open(path);
}

RyZipFile::RyZipFile(const UnicodeString& path) : RyZipFile() {
    open(path);
}

RyZipFile::RyZipFile(std::istream* stream, bool own) : RyZipFile() {
    open(stream, own);
}

RyZipFile::RyZipFile(const RyZipFile& other) : impl_(std::make_unique<Impl>(*other.impl_)) {}

RyZipFile& RyZipFile::operator=(const RyZipFile& other) {
    if (this != &other) impl_ = std::make_unique<Impl>(*other.impl_);
    return *this;
}

RyZipFile::~RyZipFile() = default;

void RyZipFile::open(const char* path) {
    impl_->stream = openFile(path);
    init();
}

void RyZipFile::open(const UnicodeString& path) {
    impl_->stream = openFile(path);
    init();
}

/// A stream that is owned already is kept when it is given again.
void RyZipFile::open(std::istream* stream, bool own) {
    const bool isOwned = impl_->stream.get() == stream && impl_->stream.use_count() > 0;
    if (!isOwned)
        impl_->stream = own ? std::shared_ptr<std::istream>(stream) : withoutOwner(stream);
    init();
}

void RyZipFile::setUseCentralDirectory(bool use) {
    impl_->useCentralDirectory = use;
}

void RyZipFile::setVerify(bool verify) {
    impl_->verify = verify;
    for (const RyPtr<RyZipFileEntry>& entry : impl_->entries) entry->impl_->verify = verify;
}

void RyZipFile::setAcceptStrict(bool accept) {
    impl_->acceptStrict = accept;
}

void RyZipFile::init() {
    impl_->entries.clear();
    impl_->entriesByName.clear();
    impl_->package = {};
    std::istream* const stream = impl_->stream.get();
    if (stream == nullptr || !stream->good() || stream->rdbuf() == nullptr) return;
    zip::ArchiveReader reader(*stream->rdbuf());
    if (reader.getStart() < 0) return;
    const auto take = [&](zip::FoundMember&& found) {
        if (impl_->entries.size() >= impl_->limits.members) return false;
        auto impl = std::make_unique<RyZipFileEntry::Impl>(impl_->stream, found.header);
        impl->name = std::move(found.name);
        impl->verify = impl_->verify;
        RyPtr<RyZipFileEntry> entry =
            new RyZipFileEntry(*stream, found.start, found.signature, std::move(impl));
        impl_->entries.push_back(std::move(entry));
        return true;
    };
    const auto read =
        impl_->useCentralDirectory ? zip::readCentralDirectory : zip::walkLocalHeaders;
    try {
        read(reader, take);
    } catch (...) {
        impl_->entries.clear();
        throw;
    }
}

unsigned int RyZipFile::getFileEntryCount() const {
    return static_cast<unsigned int>(impl_->entries.size());
}

RyZipFileEntry* RyZipFile::getFileEntry(unsigned int index) const {
    return index < impl_->entries.size() ? impl_->entries[index].get() : nullptr;
}

RyZipFileEntry* RyZipFile::getFileEntry(const UnicodeString& name) const {
    std::vector<RyZipFileEntry*>& byName = impl_->entriesByName;
    if (byName.empty()) {
        byName.assign(impl_->entries.begin(), impl_->entries.end());
        std::stable_sort(byName.begin(), byName.end(),
                         [](const RyZipFileEntry* a, const RyZipFileEntry* b) {
                             return a->getFileName() < b->getFileName();
                         });
    }
    const auto found = std::lower_bound(
        byName.begin(), byName.end(), name,
        [](const RyZipFileEntry* a, const UnicodeString& b) { return a->getFileName() < b; });
    return found != byName.end() && (*found)->getFileName() == name ? *found : nullptr;
}

bool RyZipFile::isZipFile(std::istream* stream) {
    if (stream == nullptr) return false;
    const std::uint32_t signature = RyZipEntry::getSignature(*stream);
    return signature == zip::LOCAL_HEADER || signature == zip::DIRECTORY_HEADER ||
           signature == zip::DIRECTORY_END;
}

bool RyZipFile::isZipFile(const char* path) {
    return isZipFile(openFile(path).get());
}

bool RyZipFile::isZipFile(const UnicodeString& path) {
    return isZipFile(openFile(path).get());
}

}  // namespace RynCommon
