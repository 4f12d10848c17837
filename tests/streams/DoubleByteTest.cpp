// Double-byte encodings: whatever the bytes and wherever they are cut, the decoder says what ICU's
// converter says.
#include "streams/DoubleByteTable.h"

#include <gtest/gtest.h>
#include <unicode/ucnv_cb.h>
#include <unicode/ucnv_err.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "streams/Converter.h"
#include "streams/EncodingName.h"
#include "text/Cleanup.h"

namespace RynCommon {
namespace {

using streams::Conversion;
using streams::DoubleByteTable;

void U_CALLCONV writeReplacement(const void*, UConverterToUnicodeArgs* args, const char*,
                                 std::int32_t, UConverterCallbackReason reason,
                                 UErrorCode* status) {
    if (reason > UCNV_IRREGULAR) return;
    const UChar replacement = 0xFFFD;
    *status = U_ZERO_ERROR;
    ucnv_cbToUWriteUChars(args, &replacement, 1, 0, status);
}

icu::LocalUConverterPointer openReplacing(const char* encoding) {
    icu::LocalUConverterPointer converter = streams::openConverter(encoding);
    UErrorCode status = U_ZERO_ERROR;
    ucnv_setToUCallBack(converter.getAlias(), writeReplacement, nullptr, nullptr, nullptr, &status);
    EXPECT_TRUE(U_SUCCESS(status)) << encoding;
    return converter;
}

/// ICU's converter in the decoder's clothes.
class Reference final : public streams::Decoder {
public:
    explicit Reference(const char* encoding) : converter_(openReplacing(encoding)) {}

    Conversion decode(const char*& from, const char* fromEnd, char16_t*& to, char16_t* toEnd,
                      bool last) override {
        UErrorCode status = U_ZERO_ERROR;
        ucnv_toUnicode(converter_.getAlias(), &to, toEnd, &from, fromEnd, nullptr, last, &status);
        if (status == U_BUFFER_OVERFLOW_ERROR) return Conversion::TargetFull;
        return U_FAILURE(status) ? Conversion::Failed : Conversion::SourceUsed;
    }

private:
    icu::LocalUConverterPointer converter_;
};

/// The names of all of ICU's converters that the tables are for.
std::vector<const char*> getEncodings() {
    std::vector<const char*> names;
    for (std::int32_t i = 0; i < ucnv_countAvailable(); ++i) {
        const char* const name = ucnv_getAvailableName(i);
        const icu::LocalUConverterPointer converter = streams::openConverter(name);
        if (converter.isValid() && ucnv_getType(converter.getAlias()) == UCNV_MBCS)
            names.push_back(name);
    }
    return names;
}

/// Decodes `bytes` with room for `room` units at a time and appends the units to `text`.
void decodePart(streams::Decoder& decoder, std::string_view bytes, std::size_t room, bool last,
                std::u16string& text) {
    char16_t units[256];
    const char* from = bytes.data();
    for (Conversion result = Conversion::TargetFull; result == Conversion::TargetFull;) {
        char16_t* to = units;
        result = decoder.decode(from, bytes.data() + bytes.size(), to,
                                units + std::min(room, std::size(units)), last);
        text.append(units, to);
        ASSERT_NE(result, Conversion::Failed);
    }
    ASSERT_EQ(from, bytes.data() + bytes.size());
}

/// All of `bytes` in parts of `size`, the last one told to be so.
std::u16string decodeInParts(streams::Decoder& decoder, std::string_view bytes, std::size_t size,
                             std::size_t room = 256) {
    std::u16string text;
    for (; bytes.size() > size; bytes.remove_prefix(size))
        decodePart(decoder, bytes.substr(0, size), room, false, text);
    decodePart(decoder, bytes, room, true, text);
    return text;
}

TEST(DoubleByteTest, EncodingsWithTables) {
    const std::pair<const char*, bool> rows[] = {
        {"windows-31j", true}, {"KoreanKSC", true}, {"GB18030", true},       {"EUC-TW", true},
        {"Big5-HKSCS", true},  {"UTF-8", false},    {"windows-1252", false}, {"ISO-2022-JP", false},
    };
    for (const auto& [name, expected] : rows) {
        const auto converter = openReplacing(name);
        EXPECT_EQ(streams::acquireDoubleByteTable(*converter) != nullptr, expected) << name;
    }
    for (const char* const name : getEncodings())
        EXPECT_NE(streams::acquireDoubleByteTable(*openReplacing(name)), nullptr) << name;
}

/// Each pair with a lead byte within a text, where the fast loops meet it, between pairs, ASCII and
/// both. The parts of seven bytes cut it at every place.
TEST(DoubleByteTest, EveryPairWithinTextGivesWhatTheConverterGives) {
    for (const char* const name : getEncodings()) {
        const auto decoder = streams::openDecoder(name);
        Reference reference(name);
        const auto table = streams::acquireDoubleByteTable(*openReplacing(name));
        const auto good = static_cast<std::size_t>(
            std::find_if(table->pairs.begin(), table->pairs.end(),
                         [](char16_t unit) { return unit > 0x2000 && unit != 0xFFFD; }) -
            table->pairs.begin());
        const std::string pair = {static_cast<char>(0x80 | good >> 8), static_cast<char>(good)};
        const std::pair<std::string, std::string> rows[] = {
            {"", ""},
            {"", "\n\n"},
            {pair + pair + pair, pair + pair},
            {"<p>", pair + "</p>"},
            {pair + "1", "23456789 <a>" + pair},
        };
        for (std::size_t lead = 0x7E; lead < 0x100; ++lead) {
            for (const auto& [before, after] : rows) {
                std::string bytes;
                for (std::size_t trail = 0; trail < 0x100; ++trail)
                    bytes += before + static_cast<char>(lead) + static_cast<char>(trail) + after;
                const std::u16string expected = decodeInParts(reference, bytes, bytes.size());
                for (const std::size_t size : {bytes.size(), std::size_t{7}})
                    ASSERT_EQ(decodeInParts(*decoder, bytes, size), expected)
                        << name << ": lead " << lead << " in parts of " << size << " between '"
                        << before << "' and '" << after << "'";
            }
        }
    }
}

/// What follows a prefix, in parts of every size that cuts it.
TEST(DoubleByteTest, LongerCharactersGiveWhatTheConverterGives) {
    const std::pair<const char*, const char*> rows[] = {
        {"EUC-JP", "\x8F"},
        {"EUC-TW", "\x8E\xA2"},
        {"GB18030", "\x81\x30"},
        {"GB18030", "\x90\x30"},
    };
    for (const auto& [encoding, prefix] : rows) {
        const auto decoder = streams::openDecoder(encoding);
        Reference reference(encoding);
        for (std::size_t first = 0; first < 0x100; ++first) {
            std::string bytes;
            for (std::size_t second = 0; second < 0x100; ++second)
                bytes += std::string(prefix) + static_cast<char>(first) +
                         static_cast<char>(second) + "\n";
            const std::u16string expected = decodeInParts(reference, bytes, bytes.size());
            for (std::size_t size = 1; size <= 6; ++size)
                ASSERT_EQ(decodeInParts(*decoder, bytes, size), expected)
                    << encoding << ": " << testing::PrintToString(prefix) << first
                    << " in parts of " << size;
            ASSERT_EQ(decodeInParts(*decoder, bytes, bytes.size(), 2), expected)
                << encoding << ": " << testing::PrintToString(prefix) << first;
        }
    }
}

TEST(DoubleByteTest, TablesOutliveTheirRelease) {
    const auto converter = openReplacing("Shift_JIS");
    const auto decoder = streams::openDecoder("Shift_JIS");
    const std::weak_ptr<const DoubleByteTable> released =
        streams::acquireDoubleByteTable(*converter);
    EXPECT_EQ(streams::acquireDoubleByteTable(*converter), released.lock()) << "made once";
    CleanupHook::releaseAll();
    EXPECT_EQ(decodeInParts(*decoder, "\x8A\xBF\x8E\x9A", 4), u"漢字");
    EXPECT_NE(streams::acquireDoubleByteTable(*converter), released.lock()) << "made again";
}

}  // namespace
}  // namespace RynCommon
