// Finds the members of an archive: by its local headers, or by its central directory.
#pragma once

#include <RynCommon/Forward.h>

#include <cstdint>
#include <functional>
#include <string_view>

#include <unicode/unistr.h>

#include "resources/zip/ArchiveReader.h"
#include "resources/zip/ZipRecords.h"

namespace RynCommon::zip {

/// A member as its header describes it.
struct FoundMember {
    /// The record that told of it.
    std::int64_t start = 0;
    std::uint32_t signature = 0;
    MemberHeader header;
    UnicodeString name;
};

/// Takes a member; false ends the reading.
using MemberSink = std::function<bool(FoundMember&& member)>;

/// Decodes a name with ICU's default converter, which is UTF-8 on most systems, or as UTF-8. What
/// is ill-formed becomes U+FFFD.
UnicodeString decodeName(std::string_view bytes, bool isUtf8);

/// Reads the local header at `position`, whatever its signature is. What the data does not hold
/// is 0. The UTF-8 flag of the name is not looked at.
FoundMember readLocalMember(ArchiveReader& reader, std::int64_t position);
/// Where the record behind a member from readLocalMember() begins, as far as its header tells.
std::int64_t nextRecord(const FoundMember& member);

/// Hands on the members from the reader's start on, and leaves the source at the first record that
/// is neither a local header nor a data descriptor, or behind the member that was not taken.
void walkLocalHeaders(ArchiveReader& reader, const MemberSink& sink);

/// Hands on the members of the central directory whose end record is the last one of the data. An
/// archive without one has no members. Leaves the source where it stood in the beginning.
void readCentralDirectory(ArchiveReader& reader, const MemberSink& sink);

}  // namespace RynCommon::zip
