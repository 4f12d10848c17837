// Base64 against the vectors of RFC 4648, and back.
#include <algorithm>
#include <limits>
#include <random>
#include <sstream>
#include <stdexcept>
#include <streambuf>
#include <string>

#include <RynCommon/RyUtil.h>
#include <gtest/gtest.h>

#include "tests/Text.h"

namespace RynCommon {
namespace {

UnicodeString encode(const std::string& bytes, int sizeHint = 0) {
    std::istringstream in(bytes);
    return RyUtil::encodeBase64(in, sizeHint);
}

std::string decode(const UnicodeString& text,
                   int length = std::numeric_limits<std::int32_t>::max()) {
    std::ostringstream out;
    RyUtil::decodeBase64(text, length, out);
    return out.str();
}

std::string randomBytes(std::size_t length, std::mt19937& random) {
    std::string bytes;
    while (bytes.size() < length) bytes.push_back(static_cast<char>(random()));
    return bytes;
}

TEST(Base64, KnownVectors) {
    const std::pair<const char*, const char*> rows[] = {
        {"", ""},        {"f", "Zg=="},          {"fo", "Zm8="},
        {"foo", "Zm9v"}, {"foob", "Zm9vYg=="},   {"fooba", "Zm9vYmE="},
        {"Ma", "TWE="},  {"foobar", "Zm9vYmFy"}, {"\xFF\xEF\xBE", "/+++"},
    };
    for (const auto& [bytes, text] : rows) {
        EXPECT_EQ(s(encode(bytes)), text);
        EXPECT_EQ(decode(text), bytes);
    }
}

TEST(Base64, DecodingSkipsJunkAndStopsAtPadding) {
    const struct {
        const char16_t* text;
        int length;
        const char* bytes;
    } rows[] = {
        {u"TW Fu", 5, "Man"}, {u"TWFu", 2, "M"},      {u"TWFu", 0, ""},
        {u"TWFu", -7, ""},    {u"TWE=TWFu", 8, "Ma"}, {u"T\u00e9W\u3042F<u", 7, "Man"},
        {u"TWFuT", 5, "Man"}, {u"TWFuTQ", 6, "ManM"}, {u"TWFuTWE", 7, "ManMa"},
        {u"=TWFu", 5, ""},
    };
    for (const auto& row : rows) EXPECT_EQ(decode(row.text, row.length), row.bytes);
}

TEST(Base64, EveryLengthIsReadBack) {
    std::mt19937 random(4);
    std::vector<std::size_t> lengths = {3071, 3072, 3073, 9999};
    for (std::size_t i = 0; i <= 100; ++i) lengths.push_back(i);
    for (const std::size_t length : lengths) {
        const std::string bytes = randomBytes(length, random);
        const UnicodeString text = encode(bytes, static_cast<int>(length));
        ASSERT_EQ(text.length(), static_cast<int>((length + 2) / 3 * 4));
        ASSERT_EQ(decode(text), bytes);
        UnicodeString littered;
        for (int i = 0; i < text.length(); ++i) {
            littered.append(u" \n-<\u0100@"[random() % 6]);
            littered.append(text.charAt(i));
        }
        ASSERT_EQ(decode(littered), bytes);
    }
}

TEST(Base64, LinesOfSeventySixLetters) {
    std::mt19937 random(5);
    for (const std::size_t length : {0U, 1U, 57U, 58U, 114U, 5000U}) {
        const std::string bytes = randomBytes(length, random);
        std::istringstream in(bytes);
        const std::string text = s(RyUtil::encodeBase64(in, 0, u"\r\n", u"  "));
        std::string expected;
        const std::string plain = s(encode(bytes));
        for (std::size_t at = 0; at < plain.size(); at += 76)
            expected += (at == 0 ? "  " : "\r\n  ") + plain.substr(at, 76);
        EXPECT_EQ(text, expected);
    }
}

TEST(Base64, AWrongSizeHintDoesNoHarm) {
    EXPECT_EQ(s(encode("foo", -5)), "Zm9v");
    EXPECT_EQ(s(encode("foo", std::numeric_limits<int>::max())), "Zm9v");
}

/// Gives its bytes one at a time and fails at the end.
class FailingBuffer : public std::streambuf {
protected:
    int_type underflow() override {
        if (++count_ > 5000) throw std::runtime_error("broken");
        setg(&byte_, &byte_, &byte_ + 1);
        return 'x';
    }

private:
    char byte_ = 'x';
    int count_ = 0;
};

TEST(Base64, AFailureOfTheStreamPassesOn) {
    FailingBuffer buffer;
    std::istream in(&buffer);
    EXPECT_THROW(RyUtil::encodeBase64(in, 0), std::runtime_error);
}

}  // namespace
}  // namespace RynCommon
