// Random operations on memory streams, held against the model.
#include <gtest/gtest.h>

#include <random>
#include <string>

#include "tests/streams/MemStreamModel.h"

namespace RynCommon {
namespace {

class MemStreamModelTest : public testing::TestWithParam<int> {};

TEST_P(MemStreamModelTest, RandomOperationsGiveWhatTheModelGives) {
    std::mt19937 random(static_cast<unsigned>(GetParam()));
    for (int round = 0; round < 300; ++round) {
        std::string bytes(400, '\0');
        for (char& byte : bytes) byte = static_cast<char>(random());
        const std::string error =
            MemStreamModel(static_cast<std::uint64_t>(GetParam())).run(Operations(bytes));
        ASSERT_EQ(error, "") << "round " << round;
    }
}

INSTANTIATE_TEST_SUITE_P(BlockSizes, MemStreamModelTest,
                         testing::Values(1, 2, 3, 4, 7, 8, 16, 61, 64, 256, 1000));

}  // namespace
}  // namespace RynCommon
