// Writes zip archives for the tests.
#include "ZipWriter.h"

#include <zlib.h>

#include "tests/streams/DeflateData.h"

namespace RynCommon {

namespace {

void put(std::string& out, std::uint64_t number, int bytes) {
    for (int i = 0; i < bytes; ++i) out += static_cast<char>(number >> 8 * i & 0xFF);
}

void put16(std::string& out, std::uint64_t number) {
    put(out, number, 2);
}

void put32(std::string& out, std::uint64_t number) {
    put(out, number, 4);
}

void put64(std::string& out, std::uint64_t number) {
    put(out, number, 8);
}

/// A member with everything that both of its headers say.
struct Prepared {
    Prepared(const ZipMember& from, std::size_t position)
        : member(from),
          raw(from.raw           ? *from.raw
              : from.method == 8 ? deflateData(from.data)
                                 : from.data),
          crc(from.crc.value_or(static_cast<std::uint32_t>(
              crc32_z(0, reinterpret_cast<const Bytef*>(from.data.data()), from.data.size())))),
          compressedSize(from.compressedSize.value_or(static_cast<std::uint32_t>(raw.size()))),
          uncompressedSize(
              from.uncompressedSize.value_or(static_cast<std::uint32_t>(from.data.size()))),
          offset(from.offset.value_or(position)) {}

    std::uint16_t flags() const {
        return static_cast<std::uint16_t>((member.descriptor ? 8 : 0) | (member.utf8 ? 0x800 : 0));
    }

    const ZipMember& member;
    std::string raw;
    std::uint32_t crc;
    std::uint32_t compressedSize;
    std::uint32_t uncompressedSize;
    std::uint64_t offset;
};

/// The fields from "version needed" to "extra field length".
void putCommonFields(std::string& out, const Prepared& from, bool known, std::size_t extraLength) {
    const bool large = from.member.zip64;
    put16(out, large ? 45 : 20);
    put16(out, from.flags());
    put16(out, from.member.method);
    put16(out, 0x6000);
    put16(out, 0x5A21);
    put32(out, known ? from.crc : 0);
    put32(out, !known ? 0 : large ? 0xFFFFFFFF : from.compressedSize);
    put32(out, !known ? 0 : large ? 0xFFFFFFFF : from.uncompressedSize);
    put16(out, from.member.name.size());
    put16(out, extraLength);
}

std::string makeZip64Field(const Prepared& from, bool inDirectory) {
    std::string field;
    put16(field, 1);
    put16(field, inDirectory ? 24 : 16);
    put64(field, from.uncompressedSize);
    put64(field, from.compressedSize);
    if (inDirectory) put64(field, from.offset);
    return field;
}

void putLocal(std::string& out, const Prepared& from) {
    const bool known = !from.member.descriptor;
    std::string extra = from.member.localExtra;
    if (from.member.zip64 && known) extra += makeZip64Field(from, false);
    put32(out, 0x04034B50);
    putCommonFields(out, from, known, extra.size());
    out += from.member.name + extra + from.raw;
    if (known) return;
    put32(out, 0x08074B50);
    put32(out, from.crc);
    put32(out, from.compressedSize);
    put32(out, from.uncompressedSize);
}

void putInDirectory(std::string& out, const Prepared& from) {
    std::string extra = from.member.directoryExtra;
    if (from.member.zip64) extra += makeZip64Field(from, true);
    put32(out, 0x02014B50);
    put16(out, 45);
    putCommonFields(out, from, true, extra.size());
    put16(out, from.member.comment.size());
    put16(out, 0);
    put16(out, 0);
    put32(out, 0);
    put32(out, from.member.zip64 ? 0xFFFFFFFF : from.offset);
    out += from.member.name + extra + from.member.comment;
}

/// What the end records say of the directory.
struct End {
    std::uint64_t count, size, offset;
};

void putEnd64(std::string& out, const End& end, std::uint64_t position) {
    put32(out, 0x06064B50);
    put64(out, 44);
    put16(out, 45);
    put16(out, 45);
    put32(out, 0);
    put32(out, 0);
    put64(out, end.count);
    put64(out, end.count);
    put64(out, end.size);
    put64(out, end.offset);
    put32(out, 0x07064B50);
    put32(out, 0);
    put64(out, position);
    put32(out, 1);
}

void putEnd(std::string& out, const End& end, const ZipShape& shape) {
    put32(out, 0x06054B50);
    put16(out, 0);
    put16(out, 0);
    put16(out, shape.zip64 ? 0xFFFF : end.count);
    put16(out, shape.zip64 ? 0xFFFF : end.count);
    put32(out, shape.zip64 ? 0xFFFFFFFF : end.size);
    put32(out, shape.zip64 ? 0xFFFFFFFF : end.offset);
    put16(out, shape.comment.size());
    out += shape.comment;
}

}  // namespace

std::string makeZip(const std::vector<ZipMember>& members, const ZipShape& shape) {
    std::string archive;
    std::string directory;
    for (const ZipMember& member : members) {
        const Prepared prepared(member, archive.size());
        putLocal(archive, prepared);
        putInDirectory(directory, prepared);
    }
    if (!shape.directory) return shape.prefix + archive + shape.trailer;
    const End end{shape.count.value_or(members.size()), shape.size.value_or(directory.size()),
                  shape.offset.value_or(archive.size())};
    archive += directory + shape.gap;
    if (shape.zip64) putEnd64(archive, end, archive.size());
    putEnd(archive, end, shape);
    return shape.prefix + archive + shape.trailer;
}

}  // namespace RynCommon
