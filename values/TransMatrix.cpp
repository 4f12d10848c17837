// The affine transformation of the plane.
#include <RynCommon/TransMatrix.h>

#include <cmath>
#include <utility>

namespace RynCommon {

namespace {

/// One row of the linear part with its row of the inverse.
struct Row {
    Row(float l, float r, double i0, double i1)
        : left(static_cast<double>(l)), right(static_cast<double>(r)), inverse{i0, i1} {}

    double left;
    double right;
    double inverse[2];

    void subtract(const Row& other, double factor) {
        left -= other.left * factor;
        right -= other.right * factor;
        inverse[0] -= other.inverse[0] * factor;
        inverse[1] -= other.inverse[1] * factor;
    }
    void divide(double divisor) {
        left /= divisor;
        right /= divisor;
        inverse[0] /= divisor;
        inverse[1] /= divisor;
    }
};

/// The products of two floats are exact in double, so the difference is 0 only for a singular
/// matrix.
bool isSingular(const Row& first, const Row& second) {
    return first.left * second.right == first.right * second.left;
}

bool isFinite(const TransMatrix& m) {
    for (const float element : {m.a, m.b, m.c, m.d, m.e, m.f})
        if (!std::isfinite(element)) return false;
    return true;
}

/// Inverts the rows (a b) and (c d) by elimination. The row with the larger first element leads,
/// which exchanges the axes where a is 0.
void eliminate(Row& first, Row& second) {
    const bool isExchanged = std::fabs(first.left) < std::fabs(second.left);
    if (isExchanged) std::swap(first, second);
    second.subtract(first, second.left / first.left);
    second.divide(second.right);
    first.subtract(second, first.right);
    first.divide(first.left);
}

}  // namespace

bool TransMatrix::operator==(const TransMatrix& other) const {
    return a == other.a && b == other.b && c == other.c && d == other.d && e == other.e &&
           f == other.f;
}

TransMatrix TransMatrix::operator*(const TransMatrix& next) const {
    const TransMatrix& m = next;
    return {a * m.a + b * m.c, a * m.b + b * m.d,       c * m.a + d * m.c,
            c * m.b + d * m.d, e * m.a + f * m.c + m.e, e * m.b + f * m.d + m.f};
}

TransMatrix& TransMatrix::operator*=(const TransMatrix& first) {
    return *this = first * *this;
}

bool TransMatrix::reverse() {
    Row first{a, b, 1, 0};
    Row second{c, d, 0, 1};
    if (!isFinite(*this) || isSingular(first, second)) return false;
    eliminate(first, second);
    // The image of the origin goes back to the origin.
    const auto mapBack = [&](int axis) {
        return -(static_cast<double>(e) * first.inverse[axis] +
                 static_cast<double>(f) * second.inverse[axis]);
    };
    const TransMatrix inverse(
        static_cast<float>(first.inverse[0]), static_cast<float>(first.inverse[1]),
        static_cast<float>(second.inverse[0]), static_cast<float>(second.inverse[1]),
        static_cast<float>(mapBack(0)), static_cast<float>(mapBack(1)));
    if (!isFinite(inverse)) return false;
    *this = inverse;
    return true;
}

}  // namespace RynCommon
