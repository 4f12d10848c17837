// Windows code pages by number, and the narrow texts written in them.
#pragma once

#include <RynCommon/Forward.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "streams/Converter.h"

namespace RynCommon::ole {

constexpr std::int32_t CODE_PAGE_SHIFT_JIS = 932;
constexpr std::int32_t CODE_PAGE_UTF16 = 1200;
constexpr std::int32_t CODE_PAGE_UTF16_BIG = 1201;
constexpr std::int32_t CODE_PAGE_UTF8 = 65001;

/// Decodes the narrow texts of a code page. Numbers that no encoding is known for, EBCDIC and UTF-7
/// among them, are read as windows-1252, which shows at least the ASCII in a text.
class CodePageDecoder {
public:
    explicit CodePageDecoder(std::int32_t codePage);

    /// The text up to its first NUL.
    UnicodeString decode(std::string_view bytes);

private:
    std::unique_ptr<streams::Decoder> decoder_;
};

/// The name by which a property set's code page is known: "UTF-8", else "cp" and the number.
UnicodeString getCodePageName(std::int32_t codePage);

}  // namespace RynCommon::ole
