/// \file
/// Which way small faces run, four at a time.
//
// The defined path to a face's winding: s is the float sum of the cross products
// of successive positions, n = s normalised; u and v are normalised axes across n;
// x and y are the float projections of the corners' offsets from corner 0 on u and
// v; the face is clockwise when the float sum
//
//     a = sum of (y[i-1] + y[i]) * (x[i] - x[i-1])
//
// is positive. Three and four corners have fixed triangles, so of all that only
// the sign of a matters. In exact arithmetic a = -n.N, N being the area vector
//
//     N = d1 x d2 (+ d2 x d3),   d_i = corner i - corner 0,
//
// and n points along s, so -s.N has the sign of a wherever |n.N| is larger than
// all rounding errors together. s must be the very floats: far from the origin it
// is mostly rounding, and that is the defined result.
//
// The errors. e = 2^-24 is half a unit in the last place, m the greatest |d_i|;
// terms of order e^2 are covered by rounding up. D2 = the sum of |d_i|^2 >= m^2.
//
//     n       each component is rounded once:              |n - s/|s|| <= e
//     r x n   has one component 0, the others are components of n: exact, across
//             n, and at least 0.43 long, since the axis r is not within 0.9 of n
//     u       rounded once:                                              e
//     n x u   2 products, 1 difference a component:                      3.5 e
//             with the errors of n and u:                                4.5 e
//     v       normalised, rounded once:                                  6 e
//     d_i     rounded once:                                              e m
//     x       3 roundings on the way, u, d_i:                            5.1 e m
//     y       likewise, with v:                                          10.1 e m
//     y + y   at most 2 m, off by                                        22.3 e m
//     x - x   at most 2 m, off by                                        12.3 e m
//     product 2 (22.3 + 12.3) + 4:                                       73.3 e m^2
//     a       4 products, and 3 sums of at most 16 m^2:                  342 e m^2
//     n.N     |N| <= 2 m^2, n off by 2 e from the normal of (u, v):      4 e m^2
//
// What is computed below has errors of its own: N 14 e m^2, s.N 6 e m^2 |s|, and D2
// and |s| some 10 e of themselves. Together less than 400 e D2: where
//
//     |s.N| > 2^-13 D2 |s|,   2^-13 = 2048 e,
//
// the sign of s.N decides, with a wide margin. The faces in between, slivers and
// points mostly, are few, and are left to the defined path.
//
// Products must neither overflow nor lose bits to underflow, on either path. With
// |s|^2 in [1e-12, 1e34] and D2 in [1e-25, 1e20] nothing here exceeds 1e38, and
// what underflows is below 1e-45 before it is multiplied by |s|, against a bound
// of 1e-29. Whatever is outside, or not a number, is left to the defined path.
//
// One case more is certain: |s|^2 up to 1e-12 counts as zero when s is normalised.
// s then stays as it is, r x n is no longer, becomes the zero vector, and all
// projections are zeros or NaN: a is not positive. The float |s|^2 is off by 3 e of
// itself, hence the gap between the two limits.
#pragma once

#include "Lanes/Lanes.h"

namespace Halvard::Orv {

/// One bit per face, the first face the lowest.
struct Windings
{
    /// The face's triangles are turned over: FaceTriangulation finds the face
    /// clockwise in the plane of its own normal.
    unsigned clockwise;
    /// Too close to call here; FaceTriangulation has to decide.
    unsigned undecided;
};

/// \param s sum of the cross products of successive positions.
/// \param area area vector.
/// \param extent D2.
Q_ALWAYS_INLINE Windings windings(const Points4 &s, const Points4 &area, Float4 extent)
{
    constexpr float CertainAngle = 0x1p-13f;
    constexpr float LargestNullSquare = 0.99e-12f;
    constexpr float SmallestSumSquare = 1.01e-12f;
    constexpr float LargestSumSquare = 1e34f;
    constexpr float SmallestExtent = 1e-25f;
    constexpr float LargestExtent = 1e20f;

    const Float4 sumSquare = dot(s, s);
    const Float4 along = dot(s, area);
    const Float4 limit = CertainAngle * extent * squareRoot(sumSquare);
    const Mask4 isNull = sumSquare < LargestNullSquare;
    const Mask4 inRange = (sumSquare > SmallestSumSquare) & (sumSquare < LargestSumSquare) &
                          (extent > SmallestExtent) & (extent < LargestExtent);
    const Mask4 runsAgainst = (along < -limit) & inRange;
    const Mask4 runsAlong = (along > limit) & inRange;
    return {lanesOf(runsAgainst), lanesOf(~(runsAgainst | runsAlong | isNull))};
}

/// Windings of four triangles, given by their corners.
Q_ALWAYS_INLINE Windings triangleWindings(const Points4 &p0, const Points4 &p1, const Points4 &p2)
{
    const Points4 s = cross(p2, p0) + cross(p0, p1) + cross(p1, p2);
    const Points4 d1 = p1 - p0;
    const Points4 d2 = p2 - p0;
    return windings(s, cross(d1, d2), dot(d1, d1) + dot(d2, d2));
}

/// Windings of four quads. A triangle may stand among them with its last corner
/// twice: that adds p x p = 0 to s and to the area, and makes the test stricter by
/// counting twice in the extent.
Q_ALWAYS_INLINE Windings quadWindings(const Points4 &p0, const Points4 &p1, const Points4 &p2,
                                      const Points4 &p3)
{
    const Points4 s = cross(p3, p0) + cross(p0, p1) + cross(p1, p2) + cross(p2, p3);
    const Points4 d1 = p1 - p0;
    const Points4 d2 = p2 - p0;
    const Points4 d3 = p3 - p0;
    return windings(s, cross(d1, d2) + cross(d2, d3), dot(d1, d1) + dot(d2, d2) + dot(d3, d3));
}

} // namespace Halvard::Orv
