// Windows code pages by number, and the narrow texts written in them.
#include "resources/ole/CodePages.h"

#include <algorithm>
#include <array>

#include "core/MemoryCheck.h"
#include "text/NumberText.h"

namespace RynCommon::ole {

namespace {

struct CodePage {
    std::int32_t number;
    const char* encoding;
};

/// The code pages whose encoding is not found as "windows-N" or "cpN", or is another one there:
/// "cp932" and its like mean the forms without the extensions of windows elsewhere.
constexpr CodePage CODE_PAGES[] = {
    {932, "windows-932"},
    {936, "windows-936"},
    {949, "windows-949"},
    {950, "windows-950"},
    {CODE_PAGE_UTF16, "UTF-16LE"},
    {CODE_PAGE_UTF16_BIG, "UTF-16BE"},
    {10000, "macintosh"},
    {10006, "x-mac-greek"},
    {10007, "x-mac-cyrillic"},
    {10029, "x-mac-centraleurroman"},
    {10081, "x-mac-turkish"},
    {12000, "UTF-32LE"},
    {12001, "UTF-32BE"},
    {20127, "US-ASCII"},
    {20866, "KOI8-R"},
    {20932, "EUC-JP"},
    {20936, "GB2312"},
    {21866, "KOI8-U"},
    {28591, "ISO-8859-1"},
    {28592, "ISO-8859-2"},
    {28593, "ISO-8859-3"},
    {28594, "ISO-8859-4"},
    {28595, "ISO-8859-5"},
    {28596, "ISO-8859-6"},
    {28597, "ISO-8859-7"},
    {28598, "ISO-8859-8"},
    {28599, "ISO-8859-9"},
    {28600, "ISO-8859-10"},
    {28603, "ISO-8859-13"},
    {28604, "ISO-8859-14"},
    {28605, "ISO-8859-15"},
    {50220, "ISO-2022-JP"},
    {50221, "ISO-2022-JP"},
    {50222, "ISO-2022-JP"},
    {50225, "ISO-2022-KR"},
    {51932, "EUC-JP"},
    {51936, "GB2312"},
    {51949, "EUC-KR"},
    {52936, "HZ"},
    {54936, "GB18030"},
    {CODE_PAGE_UTF8, "UTF-8"},
};

const char* findEncoding(std::int32_t codePage) {
    const auto* const found = std::lower_bound(
        std::begin(CODE_PAGES), std::end(CODE_PAGES), codePage,
        [](const CodePage& page, std::int32_t number) { return page.number < number; });
    return found != std::end(CODE_PAGES) && found->number == codePage ? found->encoding : nullptr;
}

std::unique_ptr<streams::Decoder> openDecoder(std::int32_t codePage) {
    if (const char* const encoding = findEncoding(codePage)) return streams::openDecoder(encoding);
    const std::string number = std::to_string(codePage);
    if (auto decoder = streams::openDecoder("windows-" + number)) return decoder;
    return streams::openDecoder("cp" + number);
}

}  // namespace

CodePageDecoder::CodePageDecoder(std::int32_t codePage) : decoder_(openDecoder(codePage)) {
    if (!decoder_) decoder_ = streams::openDecoder("windows-1252");
}

/// A text is decoded to its end in any case, which leaves the decoder in its initial state.
UnicodeString CodePageDecoder::decode(std::string_view bytes) {
    UnicodeString text;
    if (!decoder_) return text;
    std::array<char16_t, 512> units{};
    const char* from = bytes.data();
    const char* const end = from + bytes.size();
    auto result = streams::Conversion::TargetFull;
    bool ended = false;
    while (result == streams::Conversion::TargetFull) {
        char16_t* to = units.data();
        result = decoder_->decode(from, end, to, units.data() + units.size(), true);
        char16_t* const nul = std::find(units.data(), to, u'\0');
        if (!ended) text.append(units.data(), static_cast<std::int32_t>(nul - units.data()));
        ended = ended || nul != to;
    }
    requireWhole(text);
    return text;
}

UnicodeString getCodePageName(std::int32_t codePage) {
    if (codePage == CODE_PAGE_UTF8) return UnicodeString(u"UTF-8");
    UnicodeString name(u"cp");
    appendInteger(name, codePage);
    return name;
}

}  // namespace RynCommon::ole
