// What the zip tests share: reading members to their ends.
#pragma once

#include <RynCommon/RyZipFile.h>

#include <istream>
#include <iterator>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "ZipWriter.h"

#include "tests/Text.h"

namespace RynCommon {

inline std::string readRest(std::istream& in) {
    return {std::istreambuf_iterator<char>(in), {}};
}

/// An archive over bytes that it owns.
inline RyZipFile openZip(const std::string& bytes, bool useCentralDirectory = false,
                         bool verify = false) {
    RyZipFile zip;
    zip.setUseCentralDirectory(useCentralDirectory);
    zip.setVerify(verify);
    zip.open(new std::istringstream(bytes), true);
    return zip;
}

/// Every member as "name=data", in the archive's order.
inline std::vector<std::string> readMembers(const RyZipFile& zip) {
    std::vector<std::string> members;
    for (unsigned i = 0; i < zip.getFileEntryCount(); ++i) {
        RyZipFileEntry* const entry = zip.getFileEntry(i);
        members.push_back(s(entry->getFileName()) + "=" +
                          readRest(*entry->getUncompressedStream(false)));
    }
    return members;
}

using Members = std::vector<std::string>;

}  // namespace RynCommon
