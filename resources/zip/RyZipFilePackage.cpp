// RyZipFile as a package of the Open Packaging Conventions: content types, relationships, the main
// part. Each part that describes the package is read when it is first needed, and once.
#include <RynCommon/RyXmlParser.h>

#include <string_view>

#include "core/Immortal.h"
#include "resources/uri/Escapes.h"
#include "resources/uri/UriText.h"
#include "resources/zip/ContentTypes.h"
#include "resources/zip/DocumentClass.h"
#include "resources/zip/FindMember.h"
#include "resources/zip/PartReader.h"
#include "resources/zip/Relationships.h"

namespace RynCommon {

namespace {

using zip::Relationships;
using zip::TextMap;

UnicodeString valueOf(const TextMap& map, const UnicodeString& key) {
    const auto found = map.find(key);
    return found == map.end() ? UnicodeString() : found->second;
}

/// Of a member that nobody asked about as a part.
const Relationships& relationshipsOf(const zip::Part* part) {
    static Immortal<Relationships> none;
    return part != nullptr ? part->relationships : none.get();
}

}  // namespace

const TextMap& RyZipFileEntry::getRelationshipsIdMap() const {
    return relationshipsOf(impl_->package.get()).targetsById;
}

const TextMap& RyZipFileEntry::getRelationshipsTypeMap() const {
    return relationshipsOf(impl_->package.get()).targetsByType;
}

const TextMap& RyZipFileEntry::getRelationshipsTargetMode() const {
    return relationshipsOf(impl_->package.get()).modesById;
}

const TextMap& RyZipFile::getRelationshipsIdMap() const {
    return impl_->package.relationships.targetsById;
}

const TextMap& RyZipFile::getRelationshipsTypeMap() const {
    return impl_->package.relationships.targetsByType;
}

const TextMap& RyZipFile::getRelationshipsTargetMode() const {
    return impl_->package.relationships.modesById;
}

// Content types.

UnicodeString RyZipFile::getContentType(RyZipFileEntry* part) {
    if (part == nullptr) return {};
    if (part->impl_->part().contentType.isEmpty()) setContentType();
    return part->impl_->part().contentType;
}

void RyZipFile::setContentType() {
    zip::Package& package = impl_->package;
    if (package.contentTypesRead) return;
    RyZipFileEntry* const description = getFileEntry(UnicodeString(u"[Content_Types].xml"));
    if (description != nullptr) readContentTypes(*description);
    package.contentTypesRead = true;
}

/// May be begun again where memory ran out: what is known already stays.
void RyZipFile::readContentTypes(RyZipFileEntry& description) {
    zip::Package& package = impl_->package;
    const auto assign = [](RyZipFileEntry& entry, const UnicodeString& type) {
        UnicodeString& known = entry.impl_->part().contentType;
        if (known.isEmpty()) known = type;
    };
    zip::readContentTypes(description, impl_->limits, package.typesByExtension,
                          [&](const UnicodeString& name, const UnicodeString& type) {
                              if (RyZipFileEntry* const entry = zip::findMember(*this, name))
                                  assign(*entry, type);
                          });
    for (const RyPtr<RyZipFileEntry>& entry : impl_->entries) {
        const UnicodeString extension = zip::extensionOf(entry->getFileName());
        const auto found = package.typesByExtension.find(extension);
        if (!extension.isEmpty() && found != package.typesByExtension.end())
            assign(*entry, found->second);
    }
}

// Relationships.

void RyZipFile::makeRelationships(RyZipFileEntry* part) {
    Relationships& relationships =
        part != nullptr ? part->impl_->part().relationships : impl_->package.relationships;
    if (relationships.read) return;
    const UnicodeString source = part != nullptr ? part->getFileName() : UnicodeString();
    RyZipFileEntry* const description = getFileEntry(zip::relationshipsPartName(source));
    const auto resolve = [&](const UnicodeString& target) {
        if (part == nullptr) return target;
        const UnicodeString resolved = zip::resolveTarget(source, target);
        const RyZipFileEntry* const member = zip::findMember(*this, resolved);
        return member != nullptr ? member->getFileName() : resolved;
    };
    // May be begun again where memory ran out: what is known already stays.
    if (description != nullptr)
        zip::readRelationships(*description, impl_->limits, resolve, relationships);
    relationships.read = true;
}

UnicodeString RyZipFile::getRelationshipTargetFromId(const UnicodeString& id,
                                                     RyZipFileEntry* part) {
    makeRelationships(part);
    return valueOf(part != nullptr ? part->getRelationshipsIdMap() : getRelationshipsIdMap(), id);
}

UnicodeString RyZipFile::getRelationshipTargetFromType(const UnicodeString& type,
                                                       RyZipFileEntry* part) {
    makeRelationships(part);
    const TextMap& targets =
        part != nullptr ? part->getRelationshipsTypeMap() : getRelationshipsTypeMap();
    const auto found = targets.find(type);
    if (found != targets.end()) return found->second;
    return impl_->acceptStrict ? valueOf(targets, zip::toStrictType(type)) : UnicodeString();
}

UnicodeString RyZipFile::getRelationshipTargetMode(const UnicodeString& id, RyZipFileEntry* part) {
    makeRelationships(part);
    return valueOf(
        part != nullptr ? part->getRelationshipsTargetMode() : getRelationshipsTargetMode(), id);
}

// The document.

RyZipFileEntry* RyZipFile::getOfficeDocument() {
    const UnicodeString target = getRelationshipTargetFromType(UnicodeString(
        u"http://schemas.openxmlformats.org/officeDocument/2006/relationships/officeDocument"));
    if (target.isEmpty()) return nullptr;
    RyZipFileEntry* const entry = zip::findMember(*this, target);
    const bool hasSlash = entry == nullptr && target[0] == u'/';
    return hasSlash ? zip::findMember(*this, UnicodeString(target, 1)) : entry;
}

RyZipFile::OOXDOCUMENT_TYPE RyZipFile::detectOOXDocument() {
    RyZipFileEntry* const document = getOfficeDocument();
    const UnicodeString type = getContentType(document);
    return zip::classOfMainPart(uri::viewOf(type));
}

RyZipFile::OOXDOCUMENT_TYPE RyZipFile::detectOOXDocument(const char* path) {
    return RyZipFile(path).detectOOXDocument();
}

RyZipFile::OOXDOCUMENT_TYPE RyZipFile::detectOOXDocument(const UnicodeString& path) {
    return RyZipFile(path).detectOOXDocument();
}

RyZipFile::OOXDOCUMENT_TYPE RyZipFile::detectOOXDocument(std::istream* stream) {
    return RyZipFile(stream, false).detectOOXDocument();
}

UnicodeString RyZipFile::getAppVersion() {
    UnicodeString version;
    RyZipFileEntry* const properties = getFileEntry(UnicodeString(u"docProps/app.xml"));
    if (properties == nullptr) return version;
    const RyName name{UnicodeString(u"AppVersion")};
    zip::readElements(*properties, impl_->limits, [&](RyXmlParser& parser) {
        if (parser.getName() != name) return true;
        version = zip::readText(parser);
        return false;
    });
    return version;
}

}  // namespace RynCommon
