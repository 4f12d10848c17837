// A zip archive: its members, and the office package that it may be.
#include "ZipReport.h"

#include <RynCommon/RyZipFile.h>

#include <algorithm>
#include <cstdio>

#include "Extraction.h"
#include "Format.h"
#include "PackageReport.h"
#include "Report.h"

using namespace RynCommon;

namespace {

// The directory at the end tells more than the headers in front of the members; without one, as in
// an archive that was cut off, those are walked.
void openArchive(RyZipFile& archive, std::istream& in) {
    archive.setVerify(true);
    archive.setUseCentralDirectory(true);
    archive.open(&in, false);
    if (archive.getFileEntryCount() > 0) return;
    in.clear();
    in.seekg(0);
    archive.setUseCentralDirectory(false);
    archive.open(&in, false);
}

bool isEmptyArchive(std::istream& in) {
    in.clear();
    in.seekg(0);
    return RyZipEntry::getSignature(in) == 0x06054B50;
}

// The methods that APPNOTE 4.4.5 names and archives hold.
std::string formatMethod(unsigned method) {
    static constexpr struct {
        unsigned method;
        const char* name;
    } NAMES[] = {
        {0, "stored"}, {1, "shrunk"}, {6, "imploded"}, {8, "deflated"}, {9, "deflate64"},
        {12, "bzip2"}, {14, "lzma"},  {93, "zstd"},    {95, "xz"},      {99, "encrypted"},
    };
    for (const auto& entry : NAMES)
        if (entry.method == method) return entry.name;
    return "method " + std::to_string(method);
}

void printMembers(const RyZipFile& archive) {
    std::printf("    %14s %14s  %-10s  %s\n", "size", "stored", "method", "name");
    for (unsigned i = 0; i < archive.getFileEntryCount(); ++i) {
        const RyZipFileEntry& entry = *archive.getFileEntry(i);
        std::printf("    %14s %14s  %-10s  %s\n", formatCount(entry.getUncompressedSize()).c_str(),
                    formatCount(entry.getCompressedSize()).c_str(),
                    formatMethod(entry.getCompressionMethod()).c_str(),
                    formatText(entry.getFileName()).c_str());
    }
}

void printTotals(const RyZipFile& archive) {
    std::uint64_t size = 0, stored = 0;
    for (unsigned i = 0; i < archive.getFileEntryCount(); ++i) {
        size += archive.getFileEntry(i)->getUncompressedSize();
        stored += archive.getFileEntry(i)->getCompressedSize();
    }
    print("members", formatCount(archive.getFileEntryCount()) + " of " + formatCount(size) +
                         " bytes, " + formatCount(stored) + " in the archive");
}

}  // namespace

bool reportZip(std::istream& in) {
    RyZipFile archive;
    openArchive(archive, in);
    printTotals(archive);
    if (archive.getFileEntryCount() == 0)
        return isEmptyArchive(in) || printError("no member can be read");
    printMembers(archive);
    if (isPackage(archive)) reportPackage(archive);
    return true;
}

bool extractMember(std::istream& in, const Extraction& extraction) {
    RyZipFile archive;
    openArchive(archive, in);
    RyZipFileEntry* const entry = archive.getFileEntry(UnicodeString::fromUTF8(extraction.member));
    if (entry == nullptr) return printError("no member " + extraction.member);
    std::istream* const data = entry->getUncompressedStream(false);
    return data != nullptr ? copyOut(*data, extraction.target)
                           : printError("the member cannot be read");
}
