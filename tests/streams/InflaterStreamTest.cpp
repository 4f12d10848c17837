// Reading raw deflate data in memory; put-back, resets and broken data are the fuzz target's.
#include <RynCommon/RyInflaterStream.h>

#include <gtest/gtest.h>

#include <iterator>
#include <memory>
#include <string>

#include "DeflateData.h"

namespace RynCommon {
namespace {

TEST(InflaterStreamTest, InflatesWhateverIsAskedFor) {
    for (const std::size_t size : {0, 10, 4085, 4086, 4096, 100'000}) {
        const std::string data = makeText(size);
        const std::string bytes = deflateData(data) + "behind";
        for (const std::size_t step : {1, 10, 4085, 4086, 4096, 4097, 200'000}) {
            RyInflaterStream in(bytes.data(), bytes.size(), false);
            ASSERT_EQ(readInSteps(in, step), data) << size << ", step " << step;
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
    RyInflaterStream none(nullptr, 100, false);
    EXPECT_EQ(readInSteps(none, 10), "");
}

}  // namespace
}  // namespace RynCommon
