// Writes packages for the tests.
#pragma once

#include <RynCommon/RyZipFile.h>

#include <string>
#include <utility>
#include <vector>

#include "tests/resources/ZipWriter.h"

namespace RynCommon {

/// Member names and contents; stands in the archive in that order.
using Parts = std::vector<std::pair<std::string, std::string>>;

constexpr char CONTENT_TYPES[] = "[Content_Types].xml";
constexpr char PACKAGE_RELS[] = "_rels/.rels";

std::string makePackage(const Parts& parts);
/// The content types part around `children`.
std::string typesXml(const std::string& children);
/// A relationships part around `children`.
std::string relsXml(const std::string& children);
/// A Relationship element; `mode` is left out when it is empty. `type` is a last segment or a URI.
std::string rel(const std::string& id, const std::string& type, const std::string& target,
                const std::string& mode = "");

/// An archive in memory.
class PackageInMemory {
public:
    explicit PackageInMemory(const Parts& parts);
    RyZipFile& operator*() { return archive_; }
    RyZipFile* operator->() { return &archive_; }
    /// The member of that name; null for the empty name.
    RyZipFileEntry* part(const std::string& name) const;

private:
    RyZipFile archive_;
};

}  // namespace RynCommon
