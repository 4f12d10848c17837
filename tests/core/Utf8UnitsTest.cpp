// The kernels for sequences of three bytes and their scalar twins against ICU's UTF-8, at every
// length and alignment and with every stop at every place.
#include "core/Utf8Units.h"

#include <gtest/gtest.h>

#include <unicode/utf8.h>

#include <algorithm>
#include <string>

#include "UnitRun.h"

namespace RynCommon {
namespace {

constexpr std::size_t LONGEST = 52;

using Decode = std::size_t (*)(const std::uint8_t*, std::size_t, char16_t*);
using Encode = std::size_t (*)(const char16_t*, std::size_t, std::uint8_t*);

std::size_t decode(const std::uint8_t* in, std::size_t n, char16_t* out) {
    return decodeThreeByteRun(in, n, out);
}
std::size_t encode(const char16_t* in, std::size_t n, std::uint8_t* out) {
    return encodeThreeByteRun(in, n, out);
}

const struct {
    const char* what;
    Decode decode;
    Encode encode;
} FORMS[] = {{"kernel", decode, encode},
             {"twin", scalar::decodeThreeByteRun, scalar::encodeThreeByteRun}};

/// A plain unit for each place, from all over the range.
char16_t unitAt(std::size_t i) {
    constexpr char16_t units[] = {0x0800, 0x0E01, 0x2027, 0x2029, 0x3042, 0x4E00, 0x65E5,
                                  0xA028, 0xAC00, 0xD7FF, 0xE000, 0xFF01, 0xFFFE};
    return units[i % std::size(units)];
}

std::string utf8Of(UChar32 c) {
    char bytes[U8_MAX_LENGTH];
    std::int32_t length = 0;
    U8_APPEND_UNSAFE(bytes, length, c);
    return {bytes, static_cast<std::size_t>(length)};
}

std::string plainBytes(std::size_t from, std::size_t length) {
    std::string bytes;
    for (std::size_t i = from; i < from + length; ++i) bytes += utf8Of(unitAt(i));
    return bytes;
}

bool passes(UChar32 c) {
    return c >= 0x800 && !U_IS_SURROGATE(c) && c != 0x2028 && c != 0xFFFF;
}

/// The character whose form the three bytes at `at` would have.
UChar32 characterAt(const std::string& bytes, std::size_t at) {
    const auto bits = [&](std::size_t i, int mask) { return bytes[at + i] & mask; };
    return bits(0, 0x0F) << 12 | bits(1, 0x3F) << 6 | bits(2, 0x3F);
}

/// Number of sequences from the start that pass and are as ICU writes their characters, as far as
/// groups are whole.
std::size_t expectedSequences(const std::string& bytes) {
    const std::size_t inGroups = bytes.size() / 24 * 8;
    std::size_t count = 0;
    for (; count < inGroups; ++count) {
        const UChar32 c = characterAt(bytes, 3 * count);
        if (!passes(c) || utf8Of(c) != bytes.substr(3 * count, 3)) break;
    }
    return count;
}

void expectDecoded(const std::string& bytes, std::size_t offset, const std::string& what) {
    UnitRun<std::uint8_t> in(bytes.size(), offset, 0);
    std::copy(bytes.begin(), bytes.end(), in.begin());
    const std::size_t expected = expectedSequences(bytes);
    for (const auto& form : FORMS) {
        UnitRun<char16_t> out(bytes.size() / 3, ALIGNMENTS - offset, u'?');
        ASSERT_EQ(form.decode(in.begin(), bytes.size(), out.begin()), expected)
            << form.what << ", " << what << ", " << bytes.size();
        for (std::size_t i = 0; i < expected; ++i)
            ASSERT_EQ(out[i], characterAt(bytes, 3 * i)) << form.what << ", " << what << " " << i;
    }
}

TEST(Utf8Units, DecodesWholeGroups) {
    for (std::size_t length = 0; length <= LONGEST; ++length) {
        for (std::size_t offset = 0; offset < ALIGNMENTS; ++offset) {
            const std::string bytes = plainBytes(offset, length);
            for (const char* rest : {"", "\xE6", "\xE6\x97"})
                ASSERT_NO_FATAL_FAILURE(expectDecoded(bytes + rest, offset, "plain"));
        }
    }
}

TEST(Utf8Units, DecodesUpToTheFirstStop) {
    const struct {
        const char* what;
        std::string bytes;
    } rows[] = {{"ASCII", "a"},
                {"two bytes", "\xD0\x96"},
                {"four bytes", "\xF0\x9F\x98\x80"},
                {"a continuation alone", "\x97"},
                {"a lead alone", "\xE6"},
                {"a sequence cut short", "\xE6\x97"},
                {"cut short by ASCII", "\xE6\x97z"},
                {"overlong", "\xE0\x83\xA9"},
                {"overlong CR", "\xE0\x80\x8D"},
                {"the longest overlong form", "\xE0\x9F\xBF"},
                {"the first surrogate", "\xED\xA0\x80"},
                {"the last surrogate", "\xED\xBF\xBF"},
                {"line separator", "\xE2\x80\xA8"},
                {"U+FFFF", "\xEF\xBF\xBF"},
                {"no byte of UTF-8", "\xFF"}};
    for (const auto& row : rows) {
        for (std::size_t at = 0; at <= 34; ++at) {
            // Another stop further on must not be taken for the first.
            const std::string bytes = plainBytes(at, at) + row.bytes + plainBytes(0, 36 - at) +
                                      "\xEF\xBF\xBF" + plainBytes(3, 20);
            ASSERT_NO_FATAL_FAILURE(expectDecoded(bytes, at % ALIGNMENTS, row.what));
            ASSERT_EQ(expectedSequences(bytes), at) << row.what;
        }
    }
}

// Every value of every byte of a sequence at every place of a vector.
TEST(Utf8Units, TakesNoByteForAnother) {
    const std::string plain = plainBytes(0, 32);
    for (std::size_t at = 0; at < 48; ++at) {
        for (int value = 0; value < 0x100; ++value) {
            std::string bytes = plain;
            bytes[at] = static_cast<char>(value);
            ASSERT_NO_FATAL_FAILURE(
                expectDecoded(bytes, at % ALIGNMENTS, "byte " + std::to_string(value)));
        }
    }
}

void expectEncoded(UnitRun<char16_t>& units, std::size_t length, std::size_t expected,
                   std::size_t offset, const std::string& what) {
    std::string bytes;
    for (std::size_t i = 0; i < expected; ++i) bytes += utf8Of(units[i]);
    for (const auto& form : FORMS) {
        UnitRun<std::uint8_t> out(3 * length + 4, ALIGNMENTS - offset, 0);
        ASSERT_EQ(form.encode(units.begin(), length, out.begin()), expected)
            << form.what << ", " << what << ", " << length;
        ASSERT_TRUE(std::equal(bytes.begin(), bytes.end(), reinterpret_cast<char*>(out.begin())))
            << form.what << ", " << what << ", " << length;
    }
}

TEST(Utf8Units, EncodesUpToTheFirstStop) {
    for (std::size_t length = 0; length <= LONGEST; ++length) {
        const std::size_t inGroups = length / 8 * 8;
        for (std::size_t offset = 0; offset < ALIGNMENTS; ++offset) {
            UnitRun<char16_t> units(length, offset, 0);
            for (std::size_t i = 0; i < length; ++i) units[i] = unitAt(i + offset);
            ASSERT_NO_FATAL_FAILURE(expectEncoded(units, length, inGroups, offset, "plain"));
            for (std::size_t at = length; at-- > 0;) {
                // Later stops stay, so that the first of several has to be found.
                constexpr char16_t stops[] = {u'a',   0x7F,   0x80,   0x7FF, 0x2028,
                                              0xD800, 0xDFFF, 0xFFFF, 0};
                units[at] = stops[(at + length) % std::size(stops)];
                ASSERT_NO_FATAL_FAILURE(
                    expectEncoded(units, length, std::min(at, inGroups), offset, "stop"));
            }
        }
    }
}

TEST(Utf8Units, EveryUnitBothWays) {
    constexpr std::size_t LENGTH = 24;
    for (UChar32 unit = 0; unit < 0x10000; ++unit) {
        const std::size_t at = static_cast<std::size_t>(unit) % LENGTH;
        UnitRun<char16_t> units(LENGTH, 0, 0);
        for (std::size_t i = 0; i < LENGTH; ++i) units[i] = unitAt(i);
        units[at] = static_cast<char16_t>(unit);
        const std::string what = "unit " + std::to_string(unit);
        ASSERT_NO_FATAL_FAILURE(expectEncoded(units, LENGTH, passes(unit) ? LENGTH : at, 0, what));
        ASSERT_NO_FATAL_FAILURE(
            expectDecoded(plainBytes(0, at) + utf8Of(unit) + plainBytes(0, 20), 1, what));
    }
}

}  // namespace
}  // namespace RynCommon
