// The kinds of office documents by the content type of their main part.
#pragma once

#include <string_view>

#include <RynCommon/RyZipFile.h>

namespace RynCommon::zip {

/// OOX_NONE for a content type that is no main part's. Compared exactly.
RyZipFile::OOXDOCUMENT_TYPE classOfMainPart(std::u16string_view contentType);

}  // namespace RynCommon::zip
