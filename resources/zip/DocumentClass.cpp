// The kinds of office documents by the content type of their main part.
#include "resources/zip/DocumentClass.h"

#include <algorithm>
#include <iterator>

namespace RynCommon::zip {

namespace {

/// Index plus one is the kind. Strict and transitional documents share these types.
constexpr std::u16string_view MAIN_PART_TYPES[] = {
    u"application/vnd.openxmlformats-officedocument.wordprocessingml.document.main+xml",
    u"application/vnd.ms-word.document.macroEnabled.main+xml",
    u"application/vnd.openxmlformats-officedocument.wordprocessingml.template.main+xml",
    u"application/vnd.ms-word.template.macroEnabledTemplate.main+xml",
    u"application/vnd.openxmlformats-officedocument.spreadsheetml.sheet.main+xml",
    u"application/vnd.ms-excel.sheet.macroEnabled.main+xml",
    u"application/vnd.openxmlformats-officedocument.spreadsheetml.template.main+xml",
    u"application/vnd.ms-excel.template.macroEnabled.main+xml",
    u"application/vnd.ms-excel.sheet.binary.macroEnabled.main",
    u"application/vnd.openxmlformats-officedocument.presentationml.presentation.main+xml",
    u"application/vnd.ms-powerpoint.presentation.macroEnabled.main+xml",
    u"application/vnd.openxmlformats-officedocument.presentationml.slideshow.main+xml",
    u"application/vnd.ms-powerpoint.slideshow.macroEnabled.main+xml",
    u"application/vnd.openxmlformats-officedocument.presentationml.template.main+xml",
    u"application/vnd.ms-powerpoint.template.macroEnabled.main+xml",
    u"application/vnd.openxmlformats-officedocument.themeManager+xml",
};
static_assert(std::size(MAIN_PART_TYPES) == RyZipFile::OOX_THEME_MANAGER);

}  // namespace

RyZipFile::OOXDOCUMENT_TYPE classOfMainPart(std::u16string_view contentType) {
    const auto* const found =
        std::find(std::begin(MAIN_PART_TYPES), std::end(MAIN_PART_TYPES), contentType);
    if (found == std::end(MAIN_PART_TYPES)) return RyZipFile::OOX_NONE;
    return static_cast<RyZipFile::OOXDOCUMENT_TYPE>(found - MAIN_PART_TYPES + 1);
}

}  // namespace RynCommon::zip
