// The relationships parts of a package.
#include "resources/zip/Relationships.h"

#include <RynCommon/RyXmlParser.h>

#include <string>
#include <string_view>

#include "core/MemoryCheck.h"
#include "resources/uri/UriText.h"
#include "resources/zip/PartReader.h"

namespace RynCommon::zip {

namespace {

/// The names in a relationships part, interned once for a reading.
struct Vocabulary {
    RyName ns{UnicodeString(u"http://schemas.openxmlformats.org/package/2006/relationships")};
    RyName relationships{UnicodeString(u"Relationships")};
    RyName relationship{UnicodeString(u"Relationship")};
    RyName id{UnicodeString(u"Id")};
    RyName type{UnicodeString(u"Type")};
    RyName target{UnicodeString(u"Target")};
    RyName targetMode{UnicodeString(u"TargetMode")};
};

constexpr char16_t INTERNAL[] = u"Internal";
/// Stands for the package's root while targets are resolved, so that "../" stops there. The form is
/// the one whose path may hold every character.
constexpr std::u16string_view ROOT = u"file://package/";
constexpr std::u16string_view TRANSITIONAL =
    u"http://schemas.openxmlformats.org/officeDocument/2006/relationships/";
constexpr std::u16string_view STRICT = u"http://purl.oclc.org/ooxml/officeDocument/relationships/";

void enter(const RyXmlParser& parser, const Vocabulary& names, const TargetResolver& resolve,
           Relationships& into) {
    const UnicodeString id = ownText(parser.getAttributeValue(RyName(), names.id));
    const UnicodeString type = ownText(parser.getAttributeValue(RyName(), names.type));
    const UnicodeString written = ownText(parser.getAttributeValue(RyName(), names.target));
    UnicodeString mode = ownText(parser.getAttributeValue(RyName(), names.targetMode));
    if (mode.isEmpty()) mode = INTERNAL;
    const UnicodeString target = mode == INTERNAL ? resolve(written) : written;
    into.targetsById.try_emplace(id, target);
    into.targetsByType.try_emplace(type, target);
    into.modesById.try_emplace(id, mode);
}

}  // namespace

UnicodeString relationshipsPartName(const UnicodeString& name) {
    const std::int32_t slash = name.lastIndexOf(u'/');
    UnicodeString part;
    part.append(name, 0, slash < 0 ? 0 : slash);
    part.append(slash < 0 ? u"_rels/" : u"/_rels", -1);
    part.append(name, slash < 0 ? 0 : slash, name.length()).append(u".rels", -1);
    requireWhole(part);
    return part;
}

void readRelationships(RyZipFileEntry& part, const RyZipLimits& limits,
                       const TargetResolver& resolve, Relationships& into) {
    const Vocabulary names;
    readElements(part, limits, [&](RyXmlParser& parser) {
        const bool isNamespace = parser.getNamespace() == names.ns;
        const RyName name = parser.getName();
        if (parser.getDepth() == 1) return isNamespace && name == names.relationships;
        if (isNamespace && parser.getDepth() == 2 && name == names.relationship)
            enter(parser, names, resolve, into);
        return true;
    });
}

UnicodeString resolveTarget(const UnicodeString& source, const UnicodeString& target) {
    std::u16string base(ROOT);
    base += uri::viewOf(source);
    const std::u16string resolved = uri::resolve(base, uri::viewOf(target));
    const std::u16string_view view = resolved;
    return uri::toText(view.starts_with(ROOT) ? view.substr(ROOT.size()) : view);
}

UnicodeString toStrictType(const UnicodeString& type) {
    const std::u16string_view view = uri::viewOf(type);
    if (!view.starts_with(TRANSITIONAL)) return {};
    std::u16string strict(STRICT);
    strict += view.substr(TRANSITIONAL.size());
    return uri::toText(strict);
}

}  // namespace RynCommon::zip
