// Fuzz target of the conversion streams, against ICU's converters working on the whole input at
// once: what is decoded (by tables or by ICU, in pieces), what is encoded (with line ends,
// substitutes, marks and limits), and that a text strictly encoded is read back.
//
// The first byte chooses the encoding, the second options, the rest is bytes to decode, and a text
// to encode: UTF-8, or UTF-16 units where the options say so.
#include <RynCommon/RyDMCStream.h>

#include <cstring>
#include <sstream>
#include <string>

#include <unicode/ucnv_cb.h>
#include <unicode/ucnv_err.h>

#include "fuzz/ByteFeed.h"
#include "fuzz/Chunks.h"
#include "fuzz/Require.h"
#include "streams/EncodingName.h"

using namespace RynCommon;

namespace {

struct Encoding {
    const char* name;
    const char* written = nullptr;  ///< the name that leaves no byte order open, where it differs
    /// Whether what is written depends on how much of the text is known ahead.
    bool looksAhead = false;
};

constexpr Encoding ENCODINGS[] = {
    {"Shift_JIS"},
    {"cp932"},
    {"ibm-943_P130-1999"},
    {"EUC-JP"},
    {"ISO-2022-JP"},
    {"ISO-2022-JP-2"},
    {"ISO-2022-KR"},
    {"ISO-2022-CN-EXT"},
    {"HZ"},
    {"GB18030"},
    {"GB2312"},
    {"ChineseGBK"},
    {"ChineseBIG5"},
    {"Big5-HKSCS"},
    {"EUC-TW"},
    {"KoreanKSC"},
    {"EUC-KR"},
    {"windows-1252"},
    {"windows-1258"},
    {"ISO-8859-7"},
    {"KOI8-R"},
    {"TIS-620"},
    {"US-ASCII"},
    {"UTF-8"},
    {"CESU-8"},
    {"UTF-16", "UTF-16LE"},
    {"UTF-16BE"},
    {"UTF-16LE"},
    {"UTF-32", "UTF-32LE"},
    {"UTF-32BE"},
    {"SCSU", nullptr, true},
    {"BOCU-1"},
};

struct Options {
    explicit Options(std::uint8_t byte)
        : lineEnds(static_cast<RyDMCOStream::LF_CONVERT>(byte & 3)),
          strict((byte & 4) != 0),
          mark((byte & 8) != 0),
          units((byte & 16) != 0),
          flushes((byte & 32) != 0) {}

    RyDMCOStream::LF_CONVERT lineEnds;
    bool strict;
    bool mark;
    bool units;    ///< the text stands there as UTF-16
    bool flushes;  ///< after every piece
};

std::string unitsText(const UnicodeString& text) {
    std::string units;
    char unit[8];
    for (std::int32_t i = 0; i < text.length(); ++i) {
        std::snprintf(unit, sizeof unit, "%04X ", unsigned{text[i]});
        units += unit;
    }
    return units;
}

void U_CALLCONV writeReplacement(const void*, UConverterToUnicodeArgs* args, const char*,
                                 std::int32_t, UConverterCallbackReason reason,
                                 UErrorCode* status) {
    constexpr UChar replacement = 0xFFFD;
    if (reason > UCNV_IRREGULAR) return;
    *status = U_ZERO_ERROR;
    ucnv_cbToUWriteUChars(args, &replacement, 1, 0, status);
}

void U_CALLCONV stopAtMissing(const void*, UConverterFromUnicodeArgs*, const UChar*, std::int32_t,
                              UChar32, UConverterCallbackReason, UErrorCode*) {}

/// The whole of `bytes` by ICU, without a mark at its start.
UnicodeString decodeWhole(const std::string& bytes, const char* name) {
    const icu::LocalUConverterPointer converter = streams::openConverter(name);
    UErrorCode status = U_ZERO_ERROR;
    ucnv_setToUCallBack(converter.getAlias(), writeReplacement, nullptr, nullptr, nullptr, &status);
    std::u16string units(bytes.size() * 4 + 64, u'\0');
    char16_t* to = units.data();
    const char* from = bytes.data();
    ucnv_toUnicode(converter.getAlias(), &to, to + units.size(), &from, from + bytes.size(),
                   nullptr, true, &status);
    require(status != U_BUFFER_OVERFLOW_ERROR, "more units than the reference has room for");
    UnicodeString text(units.data(), static_cast<std::int32_t>(to - units.data()));
    if (text.startsWith(u"\uFEFF")) text.remove(0, 1);
    return text;
}

icu::LocalUConverterPointer openEncoder(const char* name) {
    icu::LocalUConverterPointer converter = streams::openConverter(name);
    UErrorCode status = U_ZERO_ERROR;
    ucnv_setFromUCallBack(converter.getAlias(), stopAtMissing, nullptr, nullptr, nullptr, &status);
    return converter;
}

/// The whole of `text` by ICU, as far as the encoding goes; `complete` tells whether that is all.
std::string encodeWhole(const UnicodeString& text, const char* name, bool& complete) {
    const icu::LocalUConverterPointer converter = openEncoder(name);
    UErrorCode status = U_ZERO_ERROR;
    std::string bytes(static_cast<std::size_t>(text.length()) * 12 + 64, '\0');
    char* to = bytes.data();
    const char16_t* from = text.getBuffer();
    ucnv_fromUnicode(converter.getAlias(), &to, to + bytes.size(), &from, from + text.length(),
                     nullptr, true, &status);
    require(status != U_BUFFER_OVERFLOW_ERROR, "more bytes than the reference has room for");
    complete = U_SUCCESS(status);
    bytes.resize(static_cast<std::size_t>(to - bytes.data()));
    return bytes;
}

bool canEncode(UConverter& converter, UChar32 character) {
    const UnicodeString text(character);
    char bytes[64];
    UErrorCode status = U_ZERO_ERROR;
    ucnv_fromUChars(&converter, bytes, sizeof bytes, text.getBuffer(), text.length(), &status);
    return U_SUCCESS(status);
}

/// Puts what the encoding has in the place of what it lacks.
UnicodeString substitute(const UnicodeString& text, const char* name) {
    const icu::LocalUConverterPointer converter = openEncoder(name);
    const char16_t substitute = canEncode(*converter.getAlias(), 0x3013) ? u'\u3013' : u'?';
    UnicodeString result;
    for (std::int32_t i = 0; i < text.length(); i = text.moveIndex32(i, 1)) {
        const UChar32 character = text.char32At(i);
        result += canEncode(*converter.getAlias(), character) ? character : UChar32{substitute};
    }
    return result;
}

UnicodeString convertLineEnds(const UnicodeString& text, RyDMCOStream::LF_CONVERT mode) {
    static const UnicodeString lineEnds[] = {u"", u"\n", u"\r\n", u"\r"};
    if (mode == RyDMCOStreamBuf::LF_NONE) return text;
    UnicodeString result;
    for (std::int32_t i = 0; i < text.length(); ++i) {
        const bool isPair = text[i] == u'\r' && i + 1 < text.length() && text[i + 1] == u'\n';
        if (isPair) ++i;
        if (text[i] == u'\r' || text[i] == u'\n')
            result += lineEnds[mode];
        else
            result += text[i];
    }
    return result;
}

/// Characters of private use stand for some of an encoding's that Unicode has got since.
bool hasPrivateUse(const UnicodeString& text) {
    for (std::int32_t i = 0; i < text.length(); ++i)
        if (text[i] >= 0xE000 && text[i] <= 0xF8FF) return true;
    return false;
}

UnicodeString readAll(std::istream& in) {
    const std::string bytes((std::istreambuf_iterator<char>(in)), {});
    require(bytes.size() % 2 == 0, "half a unit is read");
    UnicodeString text;
    for (std::size_t i = 0; i < bytes.size(); i += 2) {
        text += static_cast<char16_t>(static_cast<unsigned char>(bytes[i]) |
                                      static_cast<unsigned char>(bytes[i + 1]) << 8);
    }
    return text;
}

UnicodeString decodeInPieces(const std::string& bytes, const char* name,
                             const std::vector<std::size_t>& sizes) {
    ChunkSource chunks(bytes, sizes);
    std::istream source(&chunks);
    RyDMCStream in(&source, name);
    require(in.is_open(), "the encoding is not known", name);
    return readAll(in);
}

std::string encodeInPieces(const UnicodeString& text, const char* name, const Options& options,
                           const std::vector<std::size_t>& sizes) {
    std::ostringstream bytes;
    RyDMCOStream out(&bytes, name, options.mark, options.lineEnds, options.strict);
    require(out.is_open(), "the encoding is not known", name);
    std::size_t turn = 0;
    for (std::int32_t at = 0; at < text.length();) {
        const auto count = static_cast<std::int32_t>(sizes[turn++ % sizes.size()]);
        out.writeString(UnicodeString(text, at, count));
        if (options.flushes) out.flush();
        at += count;
    }
    out.writeRawBuffer("", 0);  // converts what is left
    require(out.getOutputLength() == bytes.view().size(), "bytes are not counted rightly");
    out.setLimit(bytes.view().size());
    require(!out.isLimitOver(), "the limit is over too early");
    out.setLimit(1);
    require(out.isLimitOver() == (bytes.view().size() > 1), "the limit is not over");
    return bytes.str();
}

void checkDecoding(const std::string& bytes, const Encoding& encoding) {
    const UnicodeString expected = decodeWhole(bytes, encoding.name);
    for (const auto& sizes : {std::vector<std::size_t>{bytes.size() + 1}, chunkSizes(bytes)}) {
        const UnicodeString text = decodeInPieces(bytes, encoding.name, sizes);
        require(text == expected, "decoded otherwise than by ICU", unitsText(expected),
                unitsText(text));
    }
}

void checkEncoding(const UnicodeString& given, const std::string& bytes, const Encoding& encoding,
                   const Options& options) {
    const char* const name = encoding.written != nullptr ? encoding.written : encoding.name;
    const bool hasMark =
        options.mark && streams::isUnicodeForm(*streams::openConverter(encoding.name).getAlias());
    UnicodeString text = convertLineEnds(given, options.lineEnds);
    if (hasMark) text.insert(0, u'\uFEFF');
    if (!options.strict) text = substitute(text, name);
    bool complete = false;
    const std::string expected = encodeWhole(text, name, complete);
    require(complete || options.strict, "the reference stops at a substitute");
    const std::string found = encodeInPieces(given, encoding.name, options, chunkSizes(bytes));
    if (!encoding.looksAhead) requireEqual("encoded otherwise than by ICU", expected, found);
    if (!complete || hasPrivateUse(text)) return;
    if (text.startsWith(u"\uFEFF")) text.remove(0, 1);
    const UnicodeString again = decodeInPieces(found, name, {found.size() + 1});
    require(again == text, "not read back", unitsText(text), unitsText(again));
}

UnicodeString textOf(const std::string& bytes, const Options& options) {
    if (!options.units) return UnicodeString::fromUTF8(bytes);
    std::u16string units(bytes.size() / 2, u'\0');
    std::memcpy(units.data(), bytes.data(), units.size() * 2);
    return UnicodeString(units.data(), static_cast<std::int32_t>(units.size()));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    ByteFeed feed(data, size);
    const Encoding& encoding = ENCODINGS[feed.takeBelow(std::size(ENCODINGS))];
    const Options options(feed.take());
    const std::string bytes(feed.rest());
    checkDecoding(bytes, encoding);
    checkEncoding(textOf(bytes, options), bytes, encoding, options);
    return 0;
}
