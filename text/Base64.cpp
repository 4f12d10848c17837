// Base64 (RFC 4648, section 4) between byte streams and text.
#include <algorithm>
#include <array>
#include <new>

#include <RynCommon/RyUtil.h>

#include "core/MemoryCheck.h"

namespace RynCommon {

namespace {

constexpr char16_t ALPHABET[] = u"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr char16_t PADDING = u'=';
constexpr int BLOCK_BYTES = 3072;
constexpr int BLOCK_LETTERS = BLOCK_BYTES / 3 * 4;
constexpr int LINE_LETTERS = 76;
/// A wrong size hint must not cost more than this many units.
constexpr std::int64_t MAX_RESERVE = std::int64_t{1} << 24;

using ByteBlock = std::array<char, BLOCK_BYTES>;
using LetterBlock = std::array<char16_t, BLOCK_LETTERS>;

std::int32_t reserveFor(int sizeHint) {
    const std::int64_t units = std::int64_t{std::max(sizeHint, 0)} * 4 / 3 + 10;
    return static_cast<std::int32_t>(std::min(units, MAX_RESERVE));
}

/// Fills the block as far as the stream goes. Works on the stream's buffer, so that a failure in
/// there reaches the caller instead of ending the data early.
int readBlock(std::istream& in, ByteBlock& block) {
    int filled = 0;
    while (filled < BLOCK_BYTES) {
        const auto count = in.rdbuf()->sgetn(block.data() + filled, BLOCK_BYTES - filled);
        if (count <= 0) break;
        filled += static_cast<int>(count);
    }
    return filled;
}

/// Encodes `count` bytes; the last group is padded.
int encodeBlock(const ByteBlock& bytes, int count, LetterBlock& letters) {
    const auto byteAt = [&](int i) { return std::uint32_t{static_cast<unsigned char>(bytes[i])}; };
    int length = 0;
    for (int i = 0; i < count; i += 3) {
        const int present = std::min(count - i, 3);
        const std::uint32_t group = byteAt(i) << 16 | (present > 1 ? byteAt(i + 1) << 8 : 0) |
                                    (present > 2 ? byteAt(i + 2) : 0);
        letters[length++] = ALPHABET[group >> 18];
        letters[length++] = ALPHABET[group >> 12 & 63];
        letters[length++] = present > 1 ? ALPHABET[group >> 6 & 63] : PADDING;
        letters[length++] = present > 2 ? ALPHABET[group & 63] : PADDING;
    }
    return length;
}

/// Hands the encoded text over in pieces of at most BLOCK_LETTERS.
template <class Append>
void encodeStream(std::istream& in, Append append) {
    const std::istream::sentry sentry(in, true);
    if (!sentry) return;
    ByteBlock bytes;
    LetterBlock letters;
    int count = 0;
    do {
        count = readBlock(in, bytes);
        append(letters.data(), encodeBlock(bytes, count, letters));
    } while (count == BLOCK_BYTES);
    in.setstate(std::ios_base::eofbit);
}

/// Breaks the letters into lines as they come.
class LineWriter {
public:
    LineWriter(UnicodeString& text, const UnicodeString& separator, const UnicodeString& indent)
        : text_(text), separator_(separator), indent_(indent) {}

    void append(const char16_t* letters, int count) {
        while (count > 0) {
            if (column_ == LINE_LETTERS) startLine();
            const int taken = std::min(count, LINE_LETTERS - column_);
            text_.append(letters, taken);
            letters += taken;
            count -= taken;
            column_ += taken;
        }
    }

private:
    void startLine() {
        if (!isFirst_) text_.append(separator_);
        isFirst_ = false;
        text_.append(indent_);
        column_ = 0;
    }

    UnicodeString& text_;
    const UnicodeString& separator_;
    const UnicodeString& indent_;
    int column_ = LINE_LETTERS;
    bool isFirst_ = true;
};

constexpr std::uint8_t NO_LETTER = 0xFF;
constexpr auto LETTER_VALUES = [] {
    std::array<std::uint8_t, 128> values{};
    values.fill(NO_LETTER);
    for (std::uint8_t i = 0; i < 64; ++i) values[ALPHABET[i]] = i;
    return values;
}();

/// Collects six bits a letter and writes whole blocks of bytes.
class Decoder {
public:
    explicit Decoder(std::ostream& out) : out_(out) {}

    void take(std::uint32_t value) {
        group_ = group_ << 6 | value;
        if (++letters_ < 4) return;
        put(16);
        put(8);
        put(0);
        letters_ = 0;
        if (filled_ == BLOCK_BYTES) flush();
    }

    void finish() {
        group_ <<= (4 - letters_) * 6;
        if (letters_ > 1) put(16);
        if (letters_ > 2) put(8);
        flush();
    }

private:
    void put(int shift) { block_[filled_++] = static_cast<char>(group_ >> shift & 0xFF); }
    void flush() {
        if (filled_ > 0) out_.write(block_.data(), filled_);
        filled_ = 0;
    }

    std::ostream& out_;
    ByteBlock block_;
    int filled_ = 0;
    int letters_ = 0;
    std::uint32_t group_ = 0;
};

}  // namespace

UnicodeString RyUtil::encodeBase64(std::istream& in, int sizeHint) {
    UnicodeString result(reserveFor(sizeHint), 0, 0);
    encodeStream(in, [&](const char16_t* letters, int count) {
        requireWhole(result.append(letters, count));
    });
    return result;
}

UnicodeString RyUtil::encodeBase64(std::istream& in, int sizeHint,
                                   const UnicodeString& lineSeparator,
                                   const UnicodeString& indent) {
    UnicodeString result(reserveFor(sizeHint), 0, 0);
    LineWriter lines(result, lineSeparator, indent);
    encodeStream(in, [&](const char16_t* letters, int count) {
        lines.append(letters, count);
        requireWhole(result);
    });
    return result;
}

void RyUtil::decodeBase64(const UnicodeString& text, int length, std::ostream& out) {
    const char16_t* const units = text.getBuffer();
    const std::int32_t end = std::clamp(length, 0, text.length());
    Decoder decoder(out);
    for (std::int32_t i = 0; i < end && units[i] != PADDING; ++i) {
        const std::uint8_t value = units[i] < 128 ? LETTER_VALUES[units[i]] : NO_LETTER;
        if (value != NO_LETTER) decoder.take(value);
    }
    decoder.finish();
}

}  // namespace RynCommon
