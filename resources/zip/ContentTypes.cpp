// The content types part of a package.
#include "resources/zip/ContentTypes.h"

#include <RynCommon/RyXmlParser.h>

#include "core/MemoryCheck.h"
#include "resources/zip/PartReader.h"

namespace RynCommon::zip {

namespace {

/// The names in the part, interned once for a reading.
struct Vocabulary {
    RyName ns{UnicodeString(u"http://schemas.openxmlformats.org/package/2006/content-types")};
    RyName types{UnicodeString(u"Types")};
    RyName byDefault{UnicodeString(u"Default")};
    RyName byOverride{UnicodeString(u"Override")};
    RyName extension{UnicodeString(u"Extension")};
    RyName partName{UnicodeString(u"PartName")};
    RyName contentType{UnicodeString(u"ContentType")};
};

UnicodeString withoutSlash(const UnicodeString& name) {
    return name.startsWith(u"/", 1) ? takeWhole(UnicodeString(name, 1)) : name;
}

}  // namespace

void readContentTypes(RyZipFileEntry& part, const RyZipLimits& limits, TextMap& defaults,
                      const TypeOverride& report) {
    const Vocabulary names;
    readElements(part, limits, [&](RyXmlParser& parser) {
        const bool isNamespace = parser.getNamespace() == names.ns;
        const RyName name = parser.getName();
        if (parser.getDepth() == 1) return isNamespace && name == names.types;
        if (!isNamespace || parser.getDepth() != 2) return true;
        const UnicodeString& type = parser.getAttributeValue(RyName(), names.contentType);
        if (name == names.byDefault) {
            UnicodeString extension =
                takeWhole(u"." + parser.getAttributeValue(RyName(), names.extension));
            defaults.try_emplace(std::move(extension), ownText(type));
        } else if (name == names.byOverride) {
            report(withoutSlash(parser.getAttributeValue(RyName(), names.partName)), ownText(type));
        }
        return true;
    });
}

UnicodeString extensionOf(const UnicodeString& name) {
    const std::int32_t dot = name.lastIndexOf(u'.');
    return dot < 0 ? UnicodeString() : takeWhole(UnicodeString(name, dot));
}

}  // namespace RynCommon::zip
