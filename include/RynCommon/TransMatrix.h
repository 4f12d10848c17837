// The affine transformation of the plane.
#pragma once

#include <RynCommon/Forward.h>
#include <RynCommon/RyLength.h>

namespace RynCommon {

/// A point with coordinates of type T (float or RyLength).
template <class T>
struct RyPointT {
    T x{};
    T y{};

    friend bool operator==(const RyPointT& a, const RyPointT& b) {
        return a.x == b.x && a.y == b.y;
    }
    friend bool operator!=(const RyPointT& a, const RyPointT& b) { return !(a == b); }
};

/// A 2-D affine transformation: (x, y) maps to (a x + c y + e, b x + d y + f). A plain value.
class RYNCOMMON_API TransMatrix {
public:
    /// The identity.
    constexpr TransMatrix() = default;
    constexpr TransMatrix(float a_, float b_, float c_, float d_, float e_, float f_)
        : a(a_), b(b_), c(c_), d(d_), e(e_), f(f_) {}

    /// Makes it the identity.
    void init() { *this = TransMatrix(); }
    bool isUnitMatrix() const { return *this == TransMatrix(); }

    /// Element by element, exact.
    bool operator==(const TransMatrix& other) const;
    bool operator!=(const TransMatrix& other) const { return !(*this == other); }

    /// Applies this matrix first and `next` second.
    TransMatrix operator*(const TransMatrix& next) const;
    /// Applies `first` first and this matrix second: the opposite order of operator*, deliberately.
    /// `m *= m` is safe.
    TransMatrix& operator*=(const TransMatrix& first);

    /// The image of a point. Lengths are taken in points; an "auto" coordinate gives "auto".
    RyPointT<float> translate(float x, float y) const { return {mapX(x, y), mapY(x, y)}; }
    RyPointT<float> translate(const RyPointT<float>& p) const { return translate(p.x, p.y); }
    RyPointT<RyLength> translate(const RyLength& x, const RyLength& y) const {
        return {RyLength(mapX(x, y)), RyLength(mapY(x, y))};
    }
    RyPointT<RyLength> translate(const RyPointT<RyLength>& p) const { return translate(p.x, p.y); }

    /// Makes it its inverse, computed in double. False, and the matrix stays as it is, when it has
    /// none: when it is singular, or when an element of it or of the inverse is not finite as a
    /// float.
    bool reverse();

    float a = 1;
    float b = 0;
    float c = 0;
    float d = 1;
    float e = 0;
    float f = 0;

private:
    float mapX(float x, float y) const { return a * x + c * y + e; }
    float mapY(float x, float y) const { return b * x + d * y + f; }
};

}  // namespace RynCommon
