// Fuzz target of base64. The input is taken as bytes to encode and as a text to decode: what was
// encoded is decoded to itself, in lines as well; and decoding does, bit by bit, what RFC 4648
// says, passing over everything that is no letter.
//
// The first byte chooses how lines are set off, the second how much of the text is decoded.
#include <RynCommon/RyUtil.h>

#include <algorithm>
#include <sstream>
#include <string>

#include "fuzz/ByteFeed.h"
#include "fuzz/Require.h"

using namespace RynCommon;

namespace {

constexpr std::string_view LETTERS =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::int32_t LINE_LENGTH = 76;

/// The letters of a text up to the first "=".
std::string lettersOf(const UnicodeString& text) {
    std::string letters;
    for (std::int32_t i = 0; i < text.length() && text[i] != u'='; ++i) {
        const char16_t unit = text[i];
        if (unit < 0x80 && LETTERS.find(static_cast<char>(unit)) != std::string_view::npos)
            letters += static_cast<char>(unit);
    }
    return letters;
}

std::string decodeBits(std::string_view letters) {
    std::string bytes;
    unsigned bits = 0;
    unsigned count = 0;
    for (const char letter : letters) {
        bits = bits << 6 | static_cast<unsigned>(LETTERS.find(letter));
        count += 6;
        if (count < 8) continue;
        count -= 8;
        bytes += static_cast<char>(bits >> count & 0xFF);
    }
    return bytes;
}

std::string encodeBits(const std::string& bytes) {
    std::string text;
    for (std::size_t bit = 0; bit < bytes.size() * 8; bit += 6) {
        const auto at = [&](std::size_t i) {
            return i < bytes.size() ? static_cast<unsigned char>(bytes[i]) : 0u;
        };
        const unsigned pair = at(bit / 8) << 8 | at(bit / 8 + 1);
        text += LETTERS[pair >> (10 - bit % 8) & 63];
    }
    return text.append((4 - text.size() % 4) % 4, '=');
}

std::string decode(const UnicodeString& text, int length) {
    std::ostringstream out;
    RyUtil::decodeBase64(text, length, out);
    return out.str();
}

void checkLines(const std::string& bytes, const UnicodeString& separator,
                const UnicodeString& indent, const UnicodeString& letters) {
    std::istringstream in(bytes);
    UnicodeString lines = RyUtil::encodeBase64(in, 0, separator, indent);
    UnicodeString expected;
    for (std::int32_t start = 0; start < letters.length(); start += LINE_LENGTH) {
        if (start > 0) expected += separator;
        expected += indent + UnicodeString(letters, start, LINE_LENGTH);
    }
    require(lines == expected, "lines are set off otherwise");
    require(decode(lines, lines.length()) == bytes, "lines are not decoded to what they encode");
}

void checkEncoding(const std::string& bytes, int sizeHint) {
    std::istringstream in(bytes);
    const UnicodeString text = RyUtil::encodeBase64(in, sizeHint);
    std::string letters;
    requireEqual("encoded otherwise", text.toUTF8String(letters), encodeBits(bytes));
    requireEqual("not decoded to what was encoded", decode(text, text.length()), bytes);
    static const UnicodeString separators[] = {u"", u"\n", u"\r\n", u" -\u3000"};
    const auto choice = static_cast<unsigned>(sizeHint);
    checkLines(bytes, separators[choice & 3], separators[choice >> 2 & 3], text);
}

void checkDecoding(const UnicodeString& text, int length) {
    const std::int32_t taken = std::clamp(length, 0, text.length());
    requireEqual("decoded otherwise", decode(text, length),
                 decodeBits(lettersOf(UnicodeString(text, 0, taken))));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    ByteFeed feed(data, size);
    const int sizeHint = feed.take();
    const int cut = feed.take();
    const std::string bytes(feed.rest());
    checkEncoding(bytes, sizeHint);
    for (const UnicodeString& text :
         {UnicodeString::fromUTF8(bytes),
          UnicodeString(bytes.data(), static_cast<std::int32_t>(bytes.size()), "ISO-8859-1")}) {
        checkDecoding(text, text.length() - cut);
        checkDecoding(text, text.length() + cut);
    }
    return 0;
}
