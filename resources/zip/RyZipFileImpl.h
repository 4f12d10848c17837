// What archives and members hold behind their public classes. The readers of the archive and of the
// package in it share this.
#pragma once

#include <RynCommon/RyInflaterStream.h>
#include <RynCommon/RyZipFile.h>

#include <cstddef>
#include <cstdint>
#include <istream>
#include <map>
#include <memory>
#include <optional>
#include <vector>

#include "resources/zip/MemberStreams.h"
#include "resources/zip/ZipRecords.h"

namespace RynCommon {

namespace zip {

using TextMap = std::map<UnicodeString, UnicodeString>;

/// The relationships of a package or of one of its parts.
struct Relationships {
    TextMap targetsById;
    TextMap targetsByType;
    TextMap modesById;
    /// Set by the first look, also when there was nothing to read.
    bool read = false;
};

/// What a package tells about one of its parts.
struct Part {
    /// Empty until known.
    UnicodeString contentType;
    Relationships relationships;
};

/// What a package tells about itself.
struct Package {
    Relationships relationships;
    /// By extension, with its leading dot.
    TextMap typesByExtension;
    /// Set by the first look, also when there was nothing to read.
    bool contentTypesRead = false;
};

}  // namespace zip

struct RyZipFileEntry::Impl {
    Impl() = default;
    Impl(std::shared_ptr<std::istream> archiveStream, const zip::MemberHeader& memberHeader)
        : owner(std::move(archiveStream)), header(memberHeader) {}

    /// The package's view of the member; made on first use, since most archives are no packages.
    zip::Part& part() {
        if (!package) package = std::make_unique<zip::Part>();
        return *package;
    }

    /// Keeps an owned archive stream alive; holds nothing for a stream that is the caller's.
    std::shared_ptr<std::istream> owner;
    zip::MemberHeader header;
    UnicodeString name;
    bool verify = false;

    /// The compressed bytes, once they are read. Streams that are the caller's share them.
    zip::SharedBytes data;
    bool dataRead = false;
    /// Of stored data: whether it is not what the header says. Told by the first check.
    std::optional<bool> isWrong;

    /// The member's own streams, made on first use.
    std::unique_ptr<zip::MemoryStream> ownStored;
    std::unique_ptr<zip::MemoryStream> ownCheckedStored;
    std::unique_ptr<RyInflaterStream> ownInflater;
    std::unique_ptr<zip::CheckedInflaterStream> ownCheckedInflater;

    /// Null until part() is asked for.
    std::unique_ptr<zip::Part> package;
};

/// Copied whole when an archive is copied: the copy has the same members and shares the stream.
struct RyZipFile::Impl {
    /// Shared with copies and members when it is owned; without an owner when it is the caller's.
    std::shared_ptr<std::istream> stream;
    /// In the archive's order.
    std::vector<RyPtr<RyZipFileEntry>> entries;
    /// The same by name, equal names in the archive's order; made by the first look-up.
    std::vector<RyZipFileEntry*> entriesByName;

    bool useCentralDirectory = false;
    bool verify = false;
    bool acceptStrict = false;
    RyZipLimits limits = getDefaultLimits();

    zip::Package package;
};

}  // namespace RynCommon
