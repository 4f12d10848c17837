// Writes packages for the tests.
#include "tests/resources/PackageWriter.h"

#include <sstream>

namespace RynCommon {

std::string makePackage(const Parts& parts) {
    std::vector<ZipMember> members;
    for (const auto& [name, data] : parts) members.push_back({name, data});
    return makeZip(members);
}

std::string typesXml(const std::string& children) {
    return "<Types xmlns='http://schemas.openxmlformats.org/package/2006/content-types'>" +
           children + "</Types>";
}

std::string relsXml(const std::string& children) {
    return "<Relationships "
           "xmlns='http://schemas.openxmlformats.org/package/2006/relationships'>" +
           children + "</Relationships>";
}

std::string rel(const std::string& id, const std::string& type, const std::string& target,
                const std::string& mode) {
    const std::string prefix =
        type.find(':') == std::string::npos
            ? "http://schemas.openxmlformats.org/officeDocument/2006/relationships/"
            : "";
    return "<Relationship Id='" + id + "' Type='" + prefix + type + "' Target='" + target + "'" +
           (mode.empty() ? "" : " TargetMode='" + mode + "'") + "/>";
}

PackageInMemory::PackageInMemory(const Parts& parts) {
    archive_.open(new std::istringstream(makePackage(parts)), true);
}

RyZipFileEntry* PackageInMemory::part(const std::string& name) const {
    return name.empty() ? nullptr : archive_.getFileEntry(UnicodeString::fromUTF8(name));
}

}  // namespace RynCommon
