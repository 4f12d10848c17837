// Opening members of zip archives.
#include "resources/uri/JarUri.h"

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
    int levels = 0;
    for (; hasPrefix(uri, PREFIX) && levels <= MAX_ARCHIVE_NESTING; ++levels) {
        uri.remove_prefix(PREFIX.size());
    }
    return levels > MAX_ARCHIVE_NESTING;
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
        source.stream = copyArchive(*source.stream, MAX_ARCHIVE_BYTES);
        if (!source.stream) return notOpened(failure + u": larger than 1 GiB");
    }
    if (!RyZipFile::isZipFile(source.stream.get())) return notOpened(failure + u": not a zip file");
    return source;
}

/// The directory at the archive's end knows the sizes that the headers of archives written to a
/// pipe lack; an archive that lost its end still has its headers. Null when there is no such
/// member.
std::unique_ptr<std::istream> openMember(std::istream& source, std::u16string_view member) {
    for (const bool useDirectory : {true, false}) {
        source.clear();
        source.seekg(0);
        RyZipFile archive;
        archive.setUseCentralDirectory(useDirectory);
        archive.open(&source, false);
        if (RyZipFileEntry* const entry = zip::findMember(archive, toText(member))) {
            return std::unique_ptr<std::istream>(entry->getUncompressedStream(true));
        }
    }
    return nullptr;
}

}  // namespace

std::unique_ptr<RyMemStream> copyArchive(std::istream& source, std::uint64_t limit) {
    auto copy = std::make_unique<RyMemStream>(nullptr, BLOCK_BYTES);
    return copy->copyStream(source, limit + 1) > limit ? nullptr : std::move(copy);
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
