// Decoding of UTF-16 blocks: surrogates, paired or not, anywhere in a text that is long enough for
// the words of units.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "xml/input/Encodings.h"

namespace RynCommon {
namespace {

std::vector<std::uint8_t> toBytes(const std::u16string& units, EncodingKind kind) {
    std::vector<std::uint8_t> bytes;
    for (const char16_t unit : units) {
        const auto high = static_cast<std::uint8_t>(unit >> 8);
        const auto low = static_cast<std::uint8_t>(unit & 0xFF);
        const bool bigEndian = kind == ENCODING_UTF16BE;
        bytes.insert(bytes.end(), {bigEndian ? high : low, bigEndian ? low : high});
    }
    return bytes;
}

TEST(WideDecoderTest, SurrogatesAnywhereInLongText) {
    const struct {
        const char* what;
        std::u16string units, expected;
    } rows[] = {
        {"none", u"x", u"x"},
        {"units next to the surrogates", u"\uD7FF\uE000", u"\uD7FF\uE000"},
        {"pair", u"\U0001F600", u"\U0001F600"},
        {"pairs", u"\U0001F600\U00010000\U0010FFFF", u"\U0001F600\U00010000\U0010FFFF"},
        {"high", {0xD83D}, u"\uFFFD"},
        {"low", {0xDE00}, u"\uFFFD"},
        {"low, high", {0xDE00, 0xD83D}, u"\uFFFD\uFFFD"},
        {"high, pair", {0xD83D, 0xD83D, 0xDE00}, u"\uFFFD\U0001F600"},
    };
    std::u16string text;
    for (char16_t unit = 0; text.size() < 70; unit = static_cast<char16_t>(unit + 997))
        if ((unit & 0xF800) != 0xD800) text += unit;
    for (const EncodingKind kind : {ENCODING_UTF16LE, ENCODING_UTF16BE, ENCODING_CONVERTER}) {
        for (const auto& row : rows) {
            for (std::size_t place = 0; place <= text.size(); ++place) {
                const auto with = [&](const std::u16string& middle) {
                    return text.substr(0, place) + middle + text.substr(place);
                };
                const std::vector<std::uint8_t> bytes = toBytes(with(row.units), kind);
                std::u16string result(bytes.size() + 1, u'\0');
                const std::uint8_t* in = bytes.data();
                bool hasBreaks = false;
                result.resize(static_cast<std::size_t>(
                    decodeBlock(kind, in, in + bytes.size(), true, result.data(), hasBreaks) -
                    result.data()));
                ASSERT_EQ(result, with(row.expected)) << row.what << " at " << place;
                ASSERT_EQ(in, bytes.data() + bytes.size()) << row.what << " at " << place;
            }
        }
    }
}

}  // namespace
}  // namespace RynCommon
