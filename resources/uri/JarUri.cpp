// Opening members of zip archives.
#include "resources/uri/JarUri.h"

#include <algorithm>
#include <string_view>

#include <RynCommon/RyZipFile.h>

#include "resources/uri/Escapes.h"
#include "resources/uri/UriText.h"
#include "resources/zip/FindMember.h"

namespace RynCommon::uri {

namespace {

constexpr std::u16string_view PREFIX = u"jar:";
constexpr std::u16string_view SEPARATOR = u"!/";
/// A block of the memory that an archive is copied to.
constexpr std::uint64_t BLOCK_BYTES = 64 * 1024;

bool isNestedTooDeep(std::u16string_view uri) {
    const std::uint32_t most = RyZipFile::getDefaultLimits().nestedArchives;
    std::uint32_t levels = 0;
    for (; hasPrefix(uri, PREFIX) && levels <= most; ++levels) uri.remove_prefix(PREFIX.size());
    return levels > most;
}

bool canSeek(std::istream& in) {
    return in.tellg() != std::istream::pos_type(-1);
}

/// A file is read where it lies. What only arrives, or comes from the application, is copied.
Opened openArchive(const RyUri& archive) {
    std::unique_ptr<std::istream> supplied(archive.getStreamFromResolver());
    const bool isSupplied = supplied != nullptr;
    Opened source = isSupplied ? Opened{std::move(supplied), {}, {}} : openByScheme(archive);
    const UnicodeString failure = u"Cannot open archive: " + archive.toString();
    if (!source.stream) {
        return notOpened(archive.isJarScheme() ? source.error : failure + u": " + source.error);
    }
    if (isSupplied || !archive.isFile() || !canSeek(*source.stream)) {
        source.stream = copyArchive(*source.stream, RyZipFile::getDefaultLimits().copiedBytes);
        if (!source.stream) return notOpened(failure + u": too large");
    }
    if (!RyZipFile::isZipFile(source.stream.get())) return notOpened(failure + u": not a zip file");
    return source;
}

RyPtr<RyZipFileEntry> findMember(std::istream& source, const UnicodeString& member,
                                 bool useDirectory) {
    source.clear();
    source.seekg(0);
    RyZipFile archive;
    archive.setUseCentralDirectory(useDirectory);
    archive.open(&source, false);
    return RyPtr<RyZipFileEntry>(zip::findMember(archive, member));
}

/// The local headers of an archive that was written to a pipe lack sizes: its members seem empty,
/// and the walk ends at the first. Only the directory at the archive's end knows better. Null when
/// there is no such member.
std::unique_ptr<std::istream> openMember(std::istream& source, std::u16string_view member) {
    const UnicodeString name = toText(member);
    RyPtr<RyZipFileEntry> entry = findMember(source, name, false);
    if (!entry || entry->getCompressedSize() == 0) {
        const RyPtr<RyZipFileEntry> listed = findMember(source, name, true);
        if (listed) entry = listed;
    }
    return std::unique_ptr<std::istream>(entry ? entry->getUncompressedStream(true) : nullptr);
}

}  // namespace

std::unique_ptr<RyMemStream> copyArchive(std::istream& source, std::uint64_t limit) {
    auto copy = std::make_unique<RyMemStream>(nullptr, BLOCK_BYTES);
    const std::uint64_t most = std::max(limit, limit + 1);  // without a limit there is no more
    return copy->copyStream(source, most) > limit ? nullptr : std::move(copy);
}

Opened openJar(const RyUri& uri) {
    const std::u16string_view text = viewOf(uri.toString());
    if (isNestedTooDeep(text)) return notOpened(u"Cannot open archive: nested too deep");
    const std::size_t separator = text.rfind(SEPARATOR);
    if (separator == NONE) return notOpened(u"Malformed jar URI: no \"!/\": " + uri.toString());
    const RyUri archive(toText(text.substr(PREFIX.size(), separator - PREFIX.size())));
    Opened source = openArchive(archive);
    if (!source.stream) return source;
    const std::u16string_view member = text.substr(separator + SEPARATOR.size());
    std::unique_ptr<std::istream> stream = openMember(*source.stream, member);
    if (!stream) {
        return notOpened(u"No such member of archive " + archive.toString() + u": " +
                         toText(member));
    }
    return {std::move(stream), {}, {}};
}

}  // namespace RynCommon::uri
