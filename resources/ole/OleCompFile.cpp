// Opening compound files, and finding what is in them.
#include <RynCommon/OleCompFile.h>

#include <array>
#include <cstdio>
#include <new>

#include "core/MemoryCheck.h"
#include "resources/ole/CompFileState.h"

namespace RynCommon {

namespace {

/// The name with its control characters as \xNN, so that a document cannot steer a terminal.
std::string escapeControls(const char* name) {
    std::string text;
    for (const char* at = name; *at != '\0'; ++at) {
        const auto byte = static_cast<unsigned char>(*at);
        if (byte >= 0x20 && byte != 0x7F) {
            text += *at;
            continue;
        }
        std::array<char, 5> escape{};
        std::snprintf(escape.data(), escape.size(), "\\x%02x", byte);
        text += escape.data();
    }
    return text;
}

void reportMissing(const char* name) {
    std::fprintf(stderr, "\nError - OleStream::getDirIndex - Unable to find directory '%s'\n",
                 escapeControls(name).c_str());
}

bool isPath(const OleDirPath* path) {
    if (path == nullptr || path->count < 0 || (path->count > 0 && path->names == nullptr)) {
        return false;
    }
    for (int i = 0; i < path->count; ++i) {
        if (path->names[i] == nullptr) return false;
    }
    return true;
}

}  // namespace

void OleCompFile::Impl::clear() {
    header = ole::OleHeader();
    reader = ole::SectorReader();
    tables = ole::SectorTables(limits.chainSectors);
    directory = ole::OleDirectory();
    miniStream.clear();
    miniStreamKnown = false;
}

/// The size of the mini stream is not asked: writers get it wrong, and its chain tells enough.
const ole::SectorChain& OleCompFile::Impl::getMiniStream() {
    if (miniStreamKnown) return miniStream;
    const OleDirInfo* const root = directory.getRoot();
    const std::int32_t start = root == nullptr ? -1 : root->getStartSect();
    const std::int32_t end =
        tables.collectChain(start, false, tables.getLongest(false), miniStream);
    // Where the walk ended inside of the table, it had been before, or may not go on.
    if (end >= 0 && static_cast<std::size_t>(end) < tables.getSize(false)) miniStream.clear();
    miniStreamKnown = true;
    return miniStream;
}

OleCompFile::OleCompFile() : impl_(std::make_unique<Impl>()) {}

OleCompFile::~OleCompFile() = default;

void OleCompFile::setLimits(const OleLimits& limits) {
    impl_->limits = limits;
}

const OleLimits& OleCompFile::getLimits() const {
    return impl_->limits;
}

bool OleCompFile::OLEopen(const char* path) {
    impl_->clear();
    impl_->owned = std::make_unique<JZFileIOobj>(path, "rb");
    impl_->io = impl_->owned.get();
    return OLEopenSub();
}

bool OleCompFile::OLEopen(JZIOobj* io) {
    impl_->clear();
    impl_->owned.reset();
    impl_->io = io;
    return OLEopenSub();
}

bool OleCompFile::OLEopenSub() {
    impl_->clear();
    try {
        if (impl_->io != nullptr && impl_->io->isOpen() && parseHeader() && buildFAT() &&
            buildMiniFAT() && buildDirInfo()) {
            return true;
        }
    } catch (const std::bad_alloc&) {
        // As every failure.
    }
    impl_->clear();
    impl_->owned.reset();
    impl_->io = nullptr;
    return false;
}

bool OleCompFile::parseHeader() {
    std::array<unsigned char, ole::HEADER_SIZE> bytes{};
    const ole::SectorReader start(impl_->io, 0);
    if (start.readAt(0, bytes.data(), bytes.size()) != bytes.size()) return false;
    if (!impl_->header.parse(bytes.data())) return false;
    impl_->reader = ole::SectorReader(impl_->io, impl_->header.sectorShift);
    return impl_->tables.loadDifat(impl_->header, impl_->reader);
}

bool OleCompFile::buildFAT() {
    return impl_->tables.loadFat(impl_->header, impl_->reader);
}

bool OleCompFile::buildMiniFAT() {
    return impl_->tables.loadMiniFat(impl_->header, impl_->reader);
}

bool OleCompFile::buildDirInfo() {
    return impl_->directory.load(impl_->header, impl_->reader, impl_->tables,
                                 impl_->limits.directoryEntries);
}

OleStream* OleCompFile::OLEopenStream(const OleDirPath* path) {
    const std::int32_t id = getDirIndex(path);
    return id < 0 ? nullptr : openEntry(id);
}

OleStream* OleCompFile::OLEopenObject(const OleDirPath* path) {
    const OleDirInfo* const storage = getDirInfo(getDirIndex(path));
    if (storage == nullptr || (!storage->isStorage() && !storage->isRoot())) return nullptr;
    const std::int32_t id = impl_->directory.findObject(*storage);
    return id < 0 ? nullptr : openEntry(id);
}

OleStream* OleCompFile::openEntry(std::int32_t id) {
    auto stream = std::make_unique<OleStream>(this);
    if (!stream->GetStreamChain(id) || stream->OLEseek(0, 0) != 0) return nullptr;
    return stream.release();
}

void OleCompFile::OLEcloseStream(OleStream* stream) {
    delete stream;
}

std::int32_t OleCompFile::getDirIndex(const OleDirPath* path) {
    const OleDirInfo* entry = impl_->directory.getRoot();
    if (!isPath(path) || entry == nullptr) return -1;
    for (int i = 0; i < path->count; ++i) {
        const OleDirInfo* const start = getDirInfo(entry->getChildID());
        entry = start == nullptr ? nullptr : getDirInfo(findDirEntryByName(start, path->names[i]));
        if (entry == nullptr) {
            if (!impl_->quiet) reportMissing(path->names[i]);
            return -1;
        }
    }
    return entry->getDirID();
}

std::int32_t OleCompFile::findDirEntryByName(const OleDirInfo* start, const char* name) {
    if (start == nullptr || name == nullptr) return -1;
    return impl_->directory.find(*start, takeWhole(UnicodeString(name)));
}

std::int32_t OleCompFile::getNextBlock(std::int32_t block, bool mini) const {
    return impl_->tables.getNext(block, mini);
}

std::size_t OleCompFile::ReadIO(void* buffer, std::size_t count) {
    return impl_->io == nullptr ? 0 : impl_->io->read(buffer, count);
}

bool OleCompFile::SeekIO(std::int64_t offset, int whence) {
    return impl_->io != nullptr && impl_->io->seek(offset, whence);
}

std::uint32_t OleCompFile::getBytesPerBlock() const {
    return impl_->header.bytesPerSector();
}

std::uint32_t OleCompFile::getBytesPerMini() const {
    return impl_->header.bytesPerMini();
}

std::uint32_t OleCompFile::getMinisPerBlock() const {
    return impl_->header.minisPerSector();
}

std::uint32_t OleCompFile::getLongsPerBlock() const {
    return impl_->header.longsPerSector();
}

std::uint16_t OleCompFile::getBlockShift(bool mini) const {
    return mini ? impl_->header.miniShift : impl_->header.sectorShift;
}

std::int32_t OleCompFile::getFatBlockCount() const {
    return impl_->header.fatSectors;
}

std::int32_t OleCompFile::getMiniFatBlockCount() const {
    return impl_->header.miniFatSectors;
}

std::int32_t OleCompFile::getMiniFatStartBlock() const {
    return impl_->header.miniFatStart;
}

std::int32_t OleCompFile::getMiniFatCutoff() const {
    return impl_->header.miniCutoff;
}

std::int32_t OleCompFile::getMiniStartSect() const {
    const OleDirInfo* const root = impl_->directory.getRoot();
    return root == nullptr ? -1 : root->getStartSect();
}

std::int32_t OleCompFile::getIndirectFatStartBlock() const {
    return impl_->header.difatStart;
}

std::int32_t OleCompFile::getIndirectFatBlockCount() const {
    return impl_->header.difatSectors;
}

std::int32_t OleCompFile::getDirStartBlock() const {
    return impl_->header.directoryStart;
}

std::int32_t OleCompFile::getDirCount() const {
    return static_cast<std::int32_t>(getDirVec().size());
}

const std::vector<OleDirInfo>& OleCompFile::getDirVec() const {
    return impl_->directory.getEntries();
}

const OleDirInfo* OleCompFile::getDirInfo(std::int32_t id) const {
    return impl_->directory.get(id);
}

bool OleCompFile::isLittleEndian() const {
    return impl_->header.littleEndian;
}

const std::string& OleCompFile::getVersion() const {
    return impl_->header.version;
}

}  // namespace RynCommon
