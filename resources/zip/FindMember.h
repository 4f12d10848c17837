// Finding a member by a name that may be written with escapes.
#pragma once

#include <RynCommon/RyZipFile.h>

#include "resources/uri/Escapes.h"
#include "resources/uri/UriText.h"

namespace RynCommon::zip {

/// The member of the name as written, else of its escapes decoded as UTF-8, else of one character
/// for each escape; null when there is none.
inline RyZipFileEntry* findMember(const RyZipFile& archive, const UnicodeString& name) {
    RyZipFileEntry* entry = archive.getFileEntry(name);
    if (entry != nullptr || name.indexOf(u'%') < 0) return entry;
    const std::u16string_view view = uri::viewOf(name);
    entry = archive.getFileEntry(UnicodeString::fromUTF8(uri::unescapeToBytes(view)));
    return entry != nullptr ? entry : archive.getFileEntry(uri::unescape(view));
}

}  // namespace RynCommon::zip
