// Base64 against the vectors of RFC 4648, and back.
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
        {u"TW Fu", 5, "Man"},     {u"TWFu", 2, "M"},      {u"TWFu", 0, ""},
        {u"TWFu", -7, ""},        {u"TWE=TWFu", 8, "Ma"}, {u"T\u00e9W\u3042F<u", 7, "Man"},
        {u"TWFuTWE", 7, "ManMa"}, {u"=TWFu", 5, ""},
    };
    for (const auto& row : rows) EXPECT_EQ(decode(row.text, row.length), row.bytes);
}

// Short texts are read back in the fuzz target; these are around the size of a block.
TEST(Base64, LongTextsAreReadBackAndCutIntoLines) {
    std::mt19937 random(4);
    for (const std::size_t length : {57U, 58U, 3071U, 3072U, 3073U, 9999U}) {
        std::string bytes;
        while (bytes.size() < length) bytes.push_back(static_cast<char>(random()));
        const std::string plain = s(encode(bytes, static_cast<int>(length)));
        ASSERT_EQ(plain.size(), (length + 2) / 3 * 4);
        ASSERT_EQ(decode(u(plain)), bytes);
        std::string lines;
        for (std::size_t at = 0; at < plain.size(); at += 76)
            lines += (at == 0 ? "  " : "\r\n  ") + plain.substr(at, 76);
        std::istringstream in(bytes);
        EXPECT_EQ(s(RyUtil::encodeBase64(in, 0, u"\r\n", u"  ")), lines);
    }
}

TEST(Base64, AWrongSizeHintDoesNoHarm) {
    for (const int hint : {-5, std::numeric_limits<int>::max()})
        EXPECT_EQ(s(encode("foo", hint)), "Zm9v");
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
