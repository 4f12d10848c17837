// Writes zip archives for the tests.
#include "ZipWriter.h"

#include <zlib.h>

#include "tests/streams/DeflateData.h"

namespace RynCommon {

namespace {

struct Field {
    std::uint64_t number;
    int bytes;
};

void put(std::string& out, std::initializer_list<Field> fields) {
    for (const auto& [number, bytes] : fields)
        for (int i = 0; i < bytes; ++i) out += static_cast<char>(number >> 8 * i & 0xFF);
}

/// Gives a member the fields that it leaves to the truth; it begins at `position`.
void complete(ZipMember& member, std::size_t position) {
    if (!member.raw) member.raw = member.method == 8 ? deflateData(member.data) : member.data;
    const auto* const data = reinterpret_cast<const Bytef*>(member.data.data());
    const auto size = static_cast<uInt>(member.data.size());
    if (!member.crc) member.crc = static_cast<std::uint32_t>(crc32(0, data, size));
    if (!member.compressedSize) member.compressedSize = static_cast<uInt>(member.raw->size());
    if (!member.uncompressedSize) member.uncompressedSize = size;
    if (!member.offset) member.offset = position;
}

/// The fields from "version needed" to "extra field length".
void putCommonFields(std::string& out, const ZipMember& member, bool known,
                     std::size_t extraLength) {
    const int flags = (member.descriptor ? 8 : 0) | (member.utf8 ? 0x800 : 0);
    put(out, {{member.zip64 ? 45u : 20u, 2}, {static_cast<std::uint64_t>(flags), 2}});
    put(out, {{member.method, 2}, {0x6000, 2}, {0x5A21, 2}, {known ? *member.crc : 0, 4}});
    for (const std::uint32_t size : {*member.compressedSize, *member.uncompressedSize})
        put(out, {{!known ? 0 : member.zip64 ? 0xFFFFFFFF : size, 4}});
    put(out, {{member.name.size(), 2}, {extraLength, 2}});
}

std::string makeZip64Field(const ZipMember& member, bool inDirectory) {
    std::string field;
    put(field, {{1, 2}, {inDirectory ? 24u : 16u, 2}});
    put(field, {{*member.uncompressedSize, 8}, {*member.compressedSize, 8}});
    if (inDirectory) put(field, {{*member.offset, 8}});
    return field;
}

void putLocal(std::string& out, const ZipMember& member) {
    const bool known = !member.descriptor;
    std::string extra = member.localExtra;
    if (member.zip64 && known) extra += makeZip64Field(member, false);
    put(out, {{0x04034B50, 4}});
    putCommonFields(out, member, known, extra.size());
    out += member.name + extra + *member.raw;
    if (known) return;
    put(out, {{0x08074B50, 4}, {*member.crc, 4}});
    put(out, {{*member.compressedSize, 4}, {*member.uncompressedSize, 4}});
}

void putInDirectory(std::string& out, const ZipMember& member) {
    std::string extra = member.directoryExtra;
    if (member.zip64) extra += makeZip64Field(member, true);
    put(out, {{0x02014B50, 4}, {45, 2}});
    putCommonFields(out, member, true, extra.size());
    put(out, {{member.comment.size(), 2}, {0, 8}, {member.zip64 ? 0xFFFFFFFF : *member.offset, 4}});
    out += member.name + extra + member.comment;
}

/// What the end records say of the directory.
struct End {
    std::uint64_t count, size, offset;
};

void putEnd64(std::string& out, const End& end) {
    const std::size_t position = out.size();
    put(out, {{0x06064B50, 4}, {44, 8}, {45, 2}, {45, 2}, {0, 8}});
    put(out, {{end.count, 8}, {end.count, 8}, {end.size, 8}, {end.offset, 8}});
    put(out, {{0x07064B50, 4}, {0, 4}, {position, 8}, {1, 4}});
}

void putEnd(std::string& out, const End& end, const std::string& comment) {
    put(out, {{0x06054B50, 4}, {0, 4}, {end.count, 2}, {end.count, 2}});
    put(out, {{end.size, 4}, {end.offset, 4}, {comment.size(), 2}});
    out += comment;
}

}  // namespace

std::string makeZip(const std::vector<ZipMember>& members, const ZipShape& shape) {
    std::string archive;
    std::string directory;
    for (ZipMember member : members) {
        complete(member, archive.size());
        putLocal(archive, member);
        putInDirectory(directory, member);
    }
    if (!shape.directory) return shape.prefix + archive + shape.trailer;
    End end{shape.count.value_or(members.size()), shape.size.value_or(directory.size()),
            shape.offset.value_or(archive.size())};
    archive += directory + shape.gap;
    if (shape.zip64) {
        putEnd64(archive, end);
        end = {0xFFFF, 0xFFFFFFFF, 0xFFFFFFFF};
    }
    putEnd(archive, end, shape.comment);
    return shape.prefix + archive + shape.trailer;
}

}  // namespace RynCommon
