// Members by their local headers, from the first one on.
#include "core/MemoryCheck.h"
#include "resources/zip/MemberList.h"

namespace RynCommon::zip {

namespace {

/// Enough for the header and most names, so that one look suffices.
constexpr std::size_t USUAL_HEADER_SIZE = LOCAL_HEADER_SIZE + 98;

}  // namespace

UnicodeString decodeName(std::string_view bytes, bool isUtf8) {
    const auto length = static_cast<int32_t>(bytes.size());
    if (isUtf8) return takeWhole(UnicodeString::fromUTF8({bytes.data(), length}));
    return takeWhole({bytes.data(), length});
}

FoundMember readLocalMember(ArchiveReader& reader, std::int64_t position) {
    FoundMember member;
    member.start = position;
    std::string_view bytes = reader.view(position, USUAL_HEADER_SIZE);
    member.signature = get32(bytes, 0);
    member.header = parseLocalHeader(bytes.substr(0, LOCAL_HEADER_SIZE));
    const std::size_t nameLength = member.header.nameLength;
    if (LOCAL_HEADER_SIZE + nameLength > bytes.size()) {
        bytes = reader.view(position, LOCAL_HEADER_SIZE + nameLength);
    }
    if (bytes.size() > LOCAL_HEADER_SIZE) {
        member.name = decodeName(bytes.substr(LOCAL_HEADER_SIZE, nameLength), false);
    }
    member.header.localStart = position;
    member.header.dataStart = position + static_cast<std::int64_t>(LOCAL_HEADER_SIZE + nameLength) +
                              member.header.extraLength;
    return member;
}

std::int64_t nextRecord(const FoundMember& member) {
    return member.header.dataStart + static_cast<std::int64_t>(member.header.compressedSize);
}

void walkLocalHeaders(ArchiveReader& reader, const MemberSink& sink) {
    std::int64_t position = reader.getStart();
    for (;;) {
        const std::uint32_t signature = get32(reader.view(position, 4), 0);
        if (signature == LOCAL_HEADER) {
            FoundMember member = readLocalMember(reader, position);
            position = nextRecord(member);
            if (!sink(std::move(member))) break;
        } else if (signature == DATA_DESCRIPTOR) {
            position += DATA_DESCRIPTOR_SIZE;
        } else {
            break;
        }
    }
    reader.leaveAt(position);
}

}  // namespace RynCommon::zip
