// Recognising compound files, and the kinds of office documents among them by the streams that each
// kind has.
#include <RynCommon/OleCompFile.h>
#include <RynCommon/RyUri.h>

#include <array>
#include <initializer_list>
#include <iterator>
#include <sstream>

#include "resources/ole/CompFileState.h"

namespace RynCommon {

namespace {

/// A "Current User" stream at the root shorter than its fixed part is not one of presentations.
constexpr std::uint32_t LEAST_CURRENT_USER = 20;

using Names = std::initializer_list<const char*>;

/// The size of the stream at a path; -1 when there is none.
std::int64_t getStreamSize(OleCompFile& file, Names names) {
    const OleDirPath path{static_cast<int>(names.size()), names.begin()};
    OleStream* const stream = file.OLEopenStream(&path);
    if (stream == nullptr) return -1;
    const std::int64_t size = stream->GetStreamSize();
    file.OLEcloseStream(stream);
    return size;
}

bool hasStream(OleCompFile& file, Names names) {
    return getStreamSize(file, names) >= 0;
}

bool isPresentation(OleCompFile& file) {
    if (hasStream(file, {"PP97_DUALSTORAGE", "Current User"})) {
        return hasStream(file, {"PP97_DUALSTORAGE", "PowerPoint Document"});
    }
    return getStreamSize(file, {"Current User"}) >= LEAST_CURRENT_USER &&
           hasStream(file, {"PowerPoint Document"});
}

OleCompFile::OLEDOCUMENT_TYPE classify(OleCompFile& file) {
    if (hasStream(file, {"WordDocument"})) return OleCompFile::OLEDOC_WORD_PROCESSOR;
    if (hasStream(file, {"Workbook"})) return OleCompFile::OLEDOC_SPREADSHEET;
    if (isPresentation(file)) return OleCompFile::OLEDOC_PRESENTATION;
    if (hasStream(file, {"DocumentViewStyles"})) return OleCompFile::OLEDOC_VIEW_STYLES;
    return OleCompFile::OLEDOC_NONE;
}

/// Leaves an earlier end of file behind, and puts the stream back where it stood. Streams may be
/// told to throw from any of these calls; they are made under a catch-all.
class PositionKeeper {
public:
    explicit PositionKeeper(std::istream& stream) : stream_(stream) {
        clearEnd();
        position_ = stream_.tellg();
        clearEnd();
    }
    PositionKeeper(const PositionKeeper&) = delete;
    PositionKeeper& operator=(const PositionKeeper&) = delete;
    ~PositionKeeper() {
        if (!canSeek()) return;
        try {
            stream_.clear();
            stream_.seekg(position_);
        } catch (...) {
        }
    }
    bool canSeek() const { return position_ != std::istream::pos_type(-1); }

private:
    void clearEnd() {
        stream_.clear(stream_.rdstate() & ~(std::ios_base::failbit | std::ios_base::eofbit));
    }

    std::istream& stream_;
    std::istream::pos_type position_ = -1;
};

/// The next 512 bytes, when they begin with the signature; else what came is used up.
bool readSignedHeader(std::istream& stream, std::string& header) {
    header.resize(ole::HEADER_SIZE);
    stream.read(header.data(), static_cast<std::streamsize>(header.size()));
    return stream.gcount() == static_cast<std::streamsize>(header.size()) &&
           ole::isSignature(reinterpret_cast<const unsigned char*>(header.data()));
}

/// The rest of a stream that cannot seek, behind its header, as one that can.
std::stringstream buffer(std::istream& stream, const std::string& header) {
    std::stringstream copy;
    copy << header;
    if (stream.peek() != std::istream::traits_type::eof()) copy << stream.rdbuf();
    return copy;
}

/// Null when the URI does not open.
std::unique_ptr<std::istream> open(const RyUri& uri) {
    try {
        return std::unique_ptr<std::istream>(uri.getStream());
    } catch (...) {
        return nullptr;
    }
}

}  // namespace

bool OleCompFile::isOLEUri(std::istream& stream) {
    try {
        const PositionKeeper keeper(stream);
        std::string header;
        return readSignedHeader(stream, header);
    } catch (...) {
        return false;
    }
}

bool OleCompFile::isOLEUri(const RyUri& uri) {
    const std::unique_ptr<std::istream> stream = open(uri);
    return stream != nullptr && isOLEUri(*stream);
}

OleCompFile::OLEDOCUMENT_TYPE OleCompFile::detectOLEDocument(std::istream& stream) {
    try {
        const PositionKeeper keeper(stream);
        std::string header;
        if (!keeper.canSeek()) {
            if (!readSignedHeader(stream, header)) return OLEDOC_NONE;
            std::stringstream copy = buffer(stream, header);
            return detectOLEDocument(copy);
        }
        JZStreamIOobj io(stream);
        OleCompFile file;
        file.impl_->quiet = true;
        return file.OLEopen(&io) ? classify(file) : OLEDOC_NONE;
    } catch (...) {
        return OLEDOC_NONE;
    }
}

OleCompFile::OLEDOCUMENT_TYPE OleCompFile::detectOLEDocument(const RyUri& uri) {
    const std::unique_ptr<std::istream> stream = open(uri);
    return stream == nullptr ? OLEDOC_NONE : detectOLEDocument(*stream);
}

}  // namespace RynCommon
