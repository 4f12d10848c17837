// An office package: class, main part, content types, relationships.
#include "PackageReport.h"

#include <iterator>
#include <map>

#include "Format.h"
#include "Report.h"

using namespace RynCommon;

namespace {

using TextMap = std::map<UnicodeString, UnicodeString>;

const char* nameOf(RyZipFile::OOXDOCUMENT_TYPE type) {
    static constexpr const char* NAMES[] = {
        "no office document",
        "word processing document",
        "word processing document with macros",
        "word processing template",
        "word processing template with macros",
        "spreadsheet",
        "spreadsheet with macros",
        "spreadsheet template",
        "spreadsheet template with macros",
        "binary spreadsheet",
        "presentation",
        "presentation with macros",
        "slide show",
        "slide show with macros",
        "presentation template",
        "presentation template with macros",
        "theme",
    };
    static_assert(std::size(NAMES) == RyZipFile::OOX_THEME_MANAGER + 1);
    return NAMES[type];
}

void printContentTypes(RyZipFile& archive) {
    print("content types", "");
    for (unsigned i = 0; i < archive.getFileEntryCount(); ++i) {
        RyZipFileEntry* const part = archive.getFileEntry(i);
        const UnicodeString type = archive.getContentType(part);
        if (!type.isEmpty()) printItem(formatText(part->getFileName()) + ": " + formatText(type));
    }
}

// The type of a relationship is known by its target; the first that leads there names it.
TextMap invert(const TextMap& targetsByType) {
    TextMap types;
    for (const auto& [type, target] : targetsByType) types.try_emplace(target, type);
    return types;
}

UnicodeString lastSegment(const UnicodeString& uri) {
    return UnicodeString(uri, uri.lastIndexOf(u'/') + 1);
}

void printRelationships(const std::string& source, const TextMap& targets,
                        const TextMap& targetsByType, const TextMap& modes) {
    if (targets.empty()) return;
    print("relationships", "of " + source);
    const TextMap types = invert(targetsByType);
    for (const auto& [id, target] : targets) {
        const auto type = types.find(target);
        const auto mode = modes.find(id);
        const bool isExternal = mode != modes.end() && mode->second != u"Internal";
        printItem(formatText(id) + ": " + formatText(target) +
                  (type != types.end() ? ", " + formatText(lastSegment(type->second)) : "") +
                  (isExternal ? ", " + formatText(mode->second) : ""));
    }
}

// A look-up reads the relationships; the maps then hold all of them.
void printAllRelationships(RyZipFile& archive) {
    archive.getRelationshipTargetFromId(UnicodeString());
    printRelationships("the package", archive.getRelationshipsIdMap(),
                       archive.getRelationshipsTypeMap(), archive.getRelationshipsTargetMode());
    for (unsigned i = 0; i < archive.getFileEntryCount(); ++i) {
        RyZipFileEntry* const part = archive.getFileEntry(i);
        archive.getRelationshipTargetFromId(UnicodeString(), part);
        printRelationships(formatText(part->getFileName()), part->getRelationshipsIdMap(),
                           part->getRelationshipsTypeMap(), part->getRelationshipsTargetMode());
    }
}

}  // namespace

bool isPackage(const RyZipFile& archive) {
    return archive.getFileEntry(UnicodeString(u"[Content_Types].xml")) != nullptr;
}

void reportPackage(RyZipFile& archive) {
    archive.setAcceptStrict(true);
    const RyZipFileEntry* const document = archive.getOfficeDocument();
    const UnicodeString version = archive.getAppVersion();
    print("package", nameOf(archive.detectOOXDocument()));
    print("main part", document != nullptr ? document->getFileName() : UnicodeString(u"none"));
    print("app. version", version.isEmpty() ? UnicodeString(u"not told") : version);
    printContentTypes(archive);
    printAllRelationships(archive);
}
