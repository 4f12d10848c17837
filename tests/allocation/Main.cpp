// Runs the allocation tests, with ICU's memory in their hands from the start.
#include <gtest/gtest.h>

#include "tests/allocation/Faults.h"

int main(int argc, char** argv) {
    allocation::prepare();
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
