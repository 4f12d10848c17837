// Reading raw deflate data in memory.
#include <RynCommon/RyInflaterStream.h>

#include <gtest/gtest.h>

#include <iterator>
#include <memory>
#include <string>

#include "DeflateData.h"

namespace RynCommon {
namespace {

constexpr std::size_t STEPS[] = {1, 10, 4085, 4086, 4095, 4096, 4097, 9'000, 200'000};

std::string inflateInSteps(const std::string& bytes, std::size_t step) {
    RyInflaterStream in(bytes.data(), bytes.size(), false);
    return readInSteps(in, step);
}

TEST(InflaterStreamTest, InflatesWhateverIsAskedFor) {
    for (const std::size_t size : {0, 1, 10, 4085, 4086, 4096, 4097, 8192, 100'000}) {
        for (const std::string& data : {makeText(size), std::string(size, 'x')}) {
            const std::string bytes = deflateData(data);
            for (const std::size_t step : STEPS) {
                ASSERT_EQ(inflateInSteps(bytes, step), data) << size << ", step " << step;
                ASSERT_EQ(inflateInSteps(bytes + "behind", step), data) << size;
            }
        }
    }
}

TEST(InflaterStreamTest, BeginsAgainAfterAnyRead) {
    const std::string text = makeText(50'000);
    const std::string bytes = deflateData(text);
    RyInflaterStream in(bytes.data(), bytes.size(), false);
    for (const std::size_t count : {0, 1, 4096, 5'000, 49'999, 50'000, 60'000}) {
        in.ignore(static_cast<std::streamsize>(count));
        in.reset();
        ASSERT_TRUE(in.good()) << count;
        ASSERT_EQ(readInSteps(in, 6'000), text) << count;
        ASSERT_TRUE(in.eof());
        in.reset();
    }
}

TEST(InflaterStreamTest, TenBytesCanBePutBackAfterAnyRead) {
    const std::string text = makeText(20'000);
    const std::string bytes = deflateData(text);
    for (const std::size_t count : {10, 4096, 4097, 8'000, 12'288, 19'990, 20'000}) {
        for (const std::size_t step : STEPS) {
            RyInflaterStream in(bytes.data(), bytes.size(), false);
            std::string piece(step, '\0');
            for (std::size_t left = count; left > 0; left -= std::min(left, step))
                in.read(piece.data(), static_cast<std::streamsize>(std::min(left, step)));
            in.peek();
            in.clear();
            for (std::size_t i = 1; i <= 10; ++i) {
                ASSERT_TRUE(in.unget()) << count << ", step " << step << ", " << i;
                ASSERT_EQ(in.peek(), static_cast<unsigned char>(text[count - i])) << count;
            }
            ASSERT_EQ(readInSteps(in, step), text.substr(count - 10)) << count;
        }
    }
}

TEST(InflaterStreamTest, ACopyOutlivesTheData) {
    const std::string text = makeText(9'000);
    auto bytes = std::make_unique<std::string>(deflateData(text));
    RyInflaterStream in(bytes->data(), bytes->size(), true);
    bytes.reset();
    EXPECT_EQ(readInSteps(in, 100), text);
    in.reset();
    EXPECT_EQ(readInSteps(in, 100), text);
}

TEST(InflaterStreamTest, DeliversWhatBrokenDataHolds) {
    const std::string bytes = deflateData(makeText(2'000));
    for (std::size_t size = 0; size < bytes.size(); ++size) {
        const std::string cut = bytes.substr(0, size);
        ASSERT_EQ(inflateInSteps(cut, 5'000), inflateData(cut).bytes) << size;
        ASSERT_EQ(inflateInSteps(cut, 100), inflateData(cut).bytes) << size;
    }
    for (std::size_t at = 0; at < bytes.size(); ++at) {
        std::string broken = bytes;
        broken[at] = static_cast<char>(broken[at] ^ 0x55);
        ASSERT_EQ(inflateInSteps(broken, 700), inflateData(broken).bytes) << at;
    }
    RyInflaterStream none(nullptr, 100, false);
    EXPECT_EQ(readInSteps(none, 10), "");
}

/// A few bytes may unpack to a thousand times as many; only what is read is made.
TEST(InflaterStreamTest, InflatesNoMoreThanIsRead) {
    const std::string bytes = deflateData(std::string(4'000'000, '\0'));
    RyInflaterStream in(bytes.data(), bytes.size(), false);
    char buffer[100];
    in.read(buffer, sizeof buffer);
    EXPECT_EQ(in.gcount(), 100);
    in.ignore(3'999'899);
    EXPECT_EQ(in.get(), 0);
    EXPECT_EQ(in.get(), std::istream::traits_type::eof());
}

}  // namespace
}  // namespace RynCommon
