// The affine transformation.
#include <cmath>
#include <limits>
#include <random>

#include <RynCommon/TransMatrix.h>
#include <gtest/gtest.h>

namespace RynCommon {
namespace {

using Point = RyPointT<float>;

const TransMatrix SCALE(2, 0, 0, 2, 0, 0);
const TransMatrix SHIFT(1, 0, 0, 1, 10, 0);

TEST(TransMatrix, MapsPoints) {
    const TransMatrix matrix(1, 2, 3, 4, 5, 6);
    EXPECT_EQ(matrix.translate(Point{10, 100}), (Point{315, 426}));
    const RyPointT<RyLength> lengths{RyLength(10), RyLength(100)};
    EXPECT_EQ(float(matrix.translate(lengths).x), 315);
    EXPECT_EQ(float(matrix.translate(lengths.x, lengths.y).y), 426);
    EXPECT_TRUE(matrix.translate(RyLength(std::nanf("")), RyLength(1)).x.isAuto());
    TransMatrix unit = matrix;
    EXPECT_FALSE(unit.isUnitMatrix());
    unit.init();
    EXPECT_TRUE(unit.isUnitMatrix());
}

TEST(TransMatrix, ProductsComposeInOppositeOrders) {
    EXPECT_EQ((SCALE * SHIFT).translate(1, 0), (Point{12, 0}));
    TransMatrix product = SCALE;
    product *= SHIFT;
    EXPECT_EQ(product.translate(1, 0), (Point{22, 0}));
    const TransMatrix matrix(1, 2, 3, 4, 5, 6);
    TransMatrix square = matrix;
    square *= square;
    EXPECT_EQ(square, matrix * matrix);
    EXPECT_EQ(square, TransMatrix(7, 10, 15, 22, 28, 40));
}

TEST(TransMatrix, ReverseUndoes) {
    std::mt19937 random(1);
    std::uniform_real_distribution<float> element(-10, 10);
    for (int i = 0; i < 1000; ++i) {
        float e[6];
        for (float& x : e) x = element(random);
        if (i % 2 == 0) e[i / 2 % 6] = 0;
        const TransMatrix matrix(e[0], e[1], e[2], e[3], e[4], e[5]);
        if (std::fabs(e[0] * e[3] - e[1] * e[2]) < 0.1F) continue;
        TransMatrix inverse = matrix;
        ASSERT_TRUE(inverse.reverse());
        const Point p = inverse.translate(matrix.translate(3, -4));
        EXPECT_NEAR(p.x, 3, 0.02) << i;
        EXPECT_NEAR(p.y, -4, 0.02) << i;
    }
}

TEST(TransMatrix, ReverseThatFailsChangesNothing) {
    const float infinite = std::numeric_limits<float>::infinity();
    const TransMatrix rows[] = {{0, 0, 0, 0, 1, 2},         {1, 2, 2, 4, 0, 0},
                                {0, 0, 3, 4, 0, 0},         {0, 3, 0, 4, 0, 0},
                                {infinite, 0, 0, 1, 0, 0},  {1e-39F, 0, 0, 1, 0, 0},
                                {1e-20F, 0, 0, 1, 1e20F, 0}};
    for (const TransMatrix& row : rows) {
        TransMatrix matrix = row;
        EXPECT_FALSE(matrix.reverse()) << row.a << ' ' << row.d;
        EXPECT_EQ(matrix, row);
    }
    TransMatrix matrix(1, 0, 0, 1, std::nanf(""), 0);
    EXPECT_FALSE(matrix.reverse());
}

}  // namespace
}  // namespace RynCommon
