// Members by the central directory.
//
// The directory is found through its end record, which is searched for backwards since a comment of
// up to 64 KiB may follow it and may contain anything. The directory ends where the end record
// begins (in large archives: where the zip64 end record begins), so its size tells where it starts;
// how far that is from the offset in the record is how much was put in front of the archive, and
// is added to the offsets of the members as well. Only when no directory header stands there is the
// offset itself tried. Sizes, offsets and counts are foreign: nothing is read outside of the data
// and nothing is allocated for a count.
#include "resources/zip/MemberList.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <string>

namespace RynCommon::zip {

namespace {

constexpr std::size_t LONGEST_COMMENT = 0xFFFF;
/// End records that are looked at before an archive is taken for damaged: comments may be made of
/// nothing else.
constexpr int MOST_CANDIDATES = 64;

struct Directory {
    std::int64_t start = 0;
    std::int64_t end = 0;
    /// What the offsets of the members count from.
    std::int64_t base = 0;
};

/// The numbers of an end record of either size.
struct EndRecord {
    std::int64_t position = 0;
    std::uint64_t count = 0;
    std::uint64_t size = 0;
    std::uint64_t offset = 0;
};

bool hasSignature(ArchiveReader& reader, std::int64_t position, std::uint32_t signature) {
    return get32(reader.view(position, 4), 0) == signature;
}

/// `base` + `offset` when that lies before `limit`.
std::optional<std::int64_t> placeOf(std::int64_t base, std::uint64_t offset, std::int64_t limit) {
    if (offset > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) return {};
    const auto distance = static_cast<std::int64_t>(offset);
    if (base > limit || distance > limit - base) return {};
    return base + distance;
}

/// The zip64 end record stands where its locator says, or, with data in front of the archive, right
/// before the locator.
std::optional<EndRecord> findEndRecord64(ArchiveReader& reader, std::int64_t endPosition) {
    const auto locator = endPosition - static_cast<std::int64_t>(DIRECTORY_END_64_LOCATOR_SIZE);
    if (!hasSignature(reader, locator, DIRECTORY_END_64_LOCATOR)) return {};
    const std::uint64_t offset = get64(reader.view(locator, DIRECTORY_END_64_LOCATOR_SIZE), 8);
    const std::int64_t last = locator - static_cast<std::int64_t>(DIRECTORY_END_64_SIZE);
    for (const auto place : {placeOf(reader.getStart(), offset, last), placeOf(0, offset, last),
                             std::optional(last)}) {
        if (!place || !hasSignature(reader, *place, DIRECTORY_END_64)) continue;
        const std::string_view bytes = reader.view(*place, DIRECTORY_END_64_SIZE);
        return EndRecord{*place, get64(bytes, 32), get64(bytes, 40), get64(bytes, 48)};
    }
    return {};
}

EndRecord readEndRecord(ArchiveReader& reader, std::int64_t position) {
    const std::string_view bytes = reader.view(position, DIRECTORY_END_SIZE);
    const EndRecord record{position, get16(bytes, 10), get32(bytes, 12), get32(bytes, 16)};
    const bool isLarge =
        record.count == IN_ZIP64_16 || record.size == IN_ZIP64_32 || record.offset == IN_ZIP64_32;
    return isLarge ? findEndRecord64(reader, position).value_or(record) : record;
}

std::optional<Directory> findDirectory(ArchiveReader& reader, const EndRecord& end) {
    if (end.count == 0 && end.size == 0) return Directory{end.position, end.position, 0};
    const auto room = static_cast<std::uint64_t>(end.position - reader.getStart());
    if (end.size <= room) {
        const std::int64_t start = end.position - static_cast<std::int64_t>(end.size);
        const bool isAhead = end.offset <= static_cast<std::uint64_t>(start);
        if (isAhead && hasSignature(reader, start, DIRECTORY_HEADER)) {
            return Directory{start, end.position, start - static_cast<std::int64_t>(end.offset)};
        }
    }
    const auto start = placeOf(reader.getStart(), end.offset, end.position);
    if (!start || !hasSignature(reader, *start, DIRECTORY_HEADER)) return {};
    return Directory{*start, end.position, reader.getStart()};
}

/// The last bytes of the data, of which one is the start of the end record.
struct Tail {
    std::int64_t start;
    std::string bytes;
};

Tail readTail(ArchiveReader& reader) {
    const auto longest = static_cast<std::int64_t>(DIRECTORY_END_SIZE + LONGEST_COMMENT);
    const std::int64_t start = std::max(reader.getStart(), reader.getEnd() - longest);
    const auto length =
        static_cast<std::size_t>(std::max<std::int64_t>(reader.getEnd() - start, 0));
    return {start, std::string(reader.view(start, length))};
}

/// Whether the comment of the end record at `offset` reaches exactly to the end of the data.
bool isExact(std::string_view tail, std::size_t offset) {
    return offset + DIRECTORY_END_SIZE + get16(tail, offset + 20) == tail.size();
}

/// The last end record with a directory, among those whose comments end with the data, or among
/// the others, for archives that something was appended to.
std::optional<Directory> search(ArchiveReader& reader, const Tail& tail, bool exact) {
    static constexpr std::string_view SIGNATURE = "PK\x05\x06";
    if (tail.bytes.size() < DIRECTORY_END_SIZE) return {};
    const std::string_view bytes = tail.bytes;
    std::size_t offset = bytes.rfind(SIGNATURE, bytes.size() - DIRECTORY_END_SIZE);
    int candidates = 0;
    while (offset != std::string_view::npos && candidates < MOST_CANDIDATES) {
        if (isExact(bytes, offset) == exact) {
            const auto position = tail.start + static_cast<std::int64_t>(offset);
            const auto found = findDirectory(reader, readEndRecord(reader, position));
            if (found) return found;
            ++candidates;
        }
        if (offset == 0) break;
        offset = bytes.rfind(SIGNATURE, offset - 1);
    }
    return {};
}

std::optional<Directory> searchDirectory(ArchiveReader& reader) {
    const Tail tail = readTail(reader);
    const auto found = search(reader, tail, true);
    return found ? found : search(reader, tail, false);
}

/// The numbers of the zip64 field stand in this order, and only those that are needed.
void readZip64Field(std::string_view field, MemberHeader& header, std::uint64_t& offset) {
    std::size_t next = 0;
    for (std::uint64_t* const number :
         {&header.uncompressedSize, &header.compressedSize, &offset}) {
        if (*number != IN_ZIP64_32 || field.size() - next < 8) continue;
        *number = get64(field, next);
        next += 8;
    }
}

void readExtra(std::string_view extra, MemberHeader& header, std::uint64_t& offset) {
    while (extra.size() >= 4) {
        const std::size_t size = get16(extra, 2);
        if (get16(extra, 0) == ZIP64_EXTRA_ID) {
            return readZip64Field(extra.substr(4, size), header, offset);
        }
        extra.remove_prefix(std::min(extra.size(), 4 + size));
    }
}

/// The record at `position`, given as a view; `length` receives its size. False when it is not
/// there whole.
bool readDirectoryMember(ArchiveReader& reader, const Directory& directory, FoundMember& member,
                         std::size_t& length) {
    std::string_view bytes = reader.view(member.start, DIRECTORY_HEADER_SIZE);
    member.signature = get32(bytes, 0);
    if (bytes.size() < DIRECTORY_HEADER_SIZE || member.signature != DIRECTORY_HEADER) return false;
    member.header = parseDirectoryHeader(bytes);
    const std::size_t nameLength = member.header.nameLength;
    const std::size_t extraLength = member.header.extraLength;
    length = DIRECTORY_HEADER_SIZE + nameLength + extraLength + get16(bytes, 32);
    if (static_cast<std::int64_t>(length) > directory.end - member.start) return false;
    std::uint64_t offset = get32(bytes, 42);

    bytes = reader.view(member.start, length);
    if (bytes.size() < length) return false;
    const std::string_view name = bytes.substr(DIRECTORY_HEADER_SIZE, nameLength);
    member.name = decodeName(name, (member.header.flags & UTF8_FLAG) != 0);
    readExtra(bytes.substr(DIRECTORY_HEADER_SIZE + nameLength, extraLength), member.header, offset);
    const auto last = reader.getEnd() - static_cast<std::int64_t>(LOCAL_HEADER_SIZE);
    member.header.localStart = placeOf(directory.base, offset, last).value_or(-1);
    return true;
}

}  // namespace

void readCentralDirectory(ArchiveReader& reader, const MemberSink& sink) {
    if (const auto directory = searchDirectory(reader)) {
        std::int64_t position = directory->start;
        std::size_t length = 0;
        while (position < directory->end) {
            FoundMember member;
            member.start = position;
            if (!readDirectoryMember(reader, *directory, member, length)) break;
            position += static_cast<std::int64_t>(length);
            if (!sink(std::move(member))) break;
        }
    }
    reader.leaveAt(reader.getStart());
}

}  // namespace RynCommon::zip
