/// \file
/// Which of four points can block an ear, and which of four boxes can hold a point
/// that does: never fewer than CornerTriangle finds.
//
// CornerTriangle asks of a point X and of each edge, V its first corner and e its
// float direction, whether the float
//
//     cross(e, unit(X - V)) >= 0.                                             (1)
//
// Here it is shown how far outside of the edge, in exact arithmetic, X can lie with
// (1) still true. u = 2^-24 is half a unit in the last place, D = X - V the exact
// difference, |D| its length; terms of order u^2 are covered by rounding up.
//
//     e            each component of a unit vector rounded once, or zero: |e| <= 1 + u.
//                  It enters as the float that it is, so its error does not matter.
//     w = fl(D)    each component rounded once: off by u of itself
//     unit(w)      lengths in double, then each component rounded once: u of itself
//     products     of components, each rounded once: u of itself
//     difference   of two floats has the sign of the exact difference:       0
//
// One case is different: a w up to 1e-6 long becomes the zero vector, and (1) is true.
// So, with
//
//     S = |e.x D.y| + |e.y D.x|,
//
// (1) implies one of
//
//     far:   cross(e, D) >= -3 u S
//     near:  |D| <= 1.000001e-6
//
// S is at most |e| |D|, and far less along an axis: the corners of a flat line along an
// axis are told from each other however flat it is. Components of unit(w) and products
// below 2^-126 are off by up to 2^-150 instead, together by less than 2^-147 |D|.
// Nothing is asked of the triangle: slivers and edges without length, whose e is
// zero, are covered.
//
// What is computed for a point is t = cross(e, d) + 5.5 u s + 2^-100 |d|_1 + near, with
// d = fl(D), s as S with d in place of D, and |d|_1 = |d.x| + |d.y| >= |d|. Errors: d
// u S, products u S; the difference and the sums are of the size of the result, and
// floats keep the sign of a sum. Where X is far, 3 u S + 2 u S leave t >= 0. Where it is
// near, |d|_1 <= 1.415e-6, so that
//
//     near = 2.5e-6 - |d|_1, at least 0, at most 1.1e-6
//
// exceeds 1.08e-6, and t >= 0 again. Before that, 5.5 u |d|_1 in place of the two terms
// with s and |d|_1 keeps most points away with fewer operations: it is not less.
//
// A box with centre C, axis a, and half extents h (along) and k (across) has only
// points X for which, the factor 1 / |a|^2 being in h and k already,
//
//     X = C + (s a + t a') / |a|^2,    |s| <= h, |t| <= k, a' across a.
//
// Let it extend by m and n from C along the axes of the plane, so that with D = C - V
//
//     |e.x (X - V).y| + |e.y (X - V).x| <= R = |e.x| (|D.y| + n) + |e.y| (|D.x| + m),
//     cross(e, X - V) <= cross(e, D) + h |cross(e, a)| + k |dot(e, a)|.
//
// Errors of the right side: the first term 3 u, the others 4 u of what they add to R. With
// the 3 u R of a far point that is at most 7 u R, and the right side with 9.2 u R added
// is not below 0. If the box has a point near V, then
// |D|_1 <= 1.415 (1.000001e-6 + h + k), and
//
//     near = 2.5e-6 + 1.5 (h + k) - |D|_1, at least 0, at most 1.1e-6
//
// is again enough.
//
// Numbers that are not finite: a point with such a coordinate gives unit() a NaN, which
// makes (1) false, whatever the edge: it never blocks. A D that overflows does the same
// when it belongs to a point; when it belongs to a box, R is infinite or NaN and t too,
// not below 0. Without that a difference of products can overflow only far outside of
// the edge or far inside, which t then shows, be it by a NaN for a point outside.
#pragma once

#include "Lanes/Lanes.h"
#include "Triangles/Ears/CornerTriangle.h"

namespace Halvard::Orv {

/// Four oriented boxes. Their half extents are greater by a factor of 1 + 1e-6 than
/// those of their points, which is more than the 1 / |a|^2 above.
struct Boxes4
{
    Float4 centreX;
    Float4 centreY;
    Float4 axisX;
    Float4 axisY;
    Float4 along;
    Float4 across;
    /// Half extents along the axes of the plane: along |axisX| + across |axisY|, or a
    /// little more, and likewise.
    Float4 extentX;
    Float4 extentY;
};

inline Float4 absolute(Float4 value)
{
    constexpr int AllButSign = 0x7fffffff;
    return reinterpret_cast<Float4>(reinterpret_cast<Mask4>(value) &
                                    Mask4{AllButSign, AllButSign, AllButSign, AllButSign});
}

/// Between 0 and `limit`.
inline Float4 clamped(Float4 value, float limit)
{
    const Float4 zero = {};
    const Float4 top = {limit, limit, limit, limit};
    const Float4 positive = value > zero ? value : zero;
    return positive < top ? positive : top;
}

inline Float4 four(float value)
{
    return Float4{value, value, value, value};
}

/// A triangle as its surroundings see it.
class TriangleReach
{
public:
    explicit TriangleReach(const CornerTriangle &triangle)
        : _edges{Edge(triangle.edge(0)), Edge(triangle.edge(1)), Edge(triangle.edge(2))}
    {}

    /// One bit per point, the first the lowest: set where the point may block. Points
    /// that are not finite never block.
    unsigned pointsWithin(Float4 x, Float4 y) const
    {
        const unsigned within =
            lanesOf((_edges[0].quickReach(x, y) >= 0.0f) & (_edges[1].quickReach(x, y) >= 0.0f) &
                    (_edges[2].quickReach(x, y) >= 0.0f));
        if (within == 0)
            return 0;
        return within & lanesOf((_edges[0].reach(x, y) >= 0.0f) & (_edges[1].reach(x, y) >= 0.0f) &
                                (_edges[2].reach(x, y) >= 0.0f));
    }

    /// One bit per box: set where the box may hold a point that blocks.
    unsigned boxesWithin(const Boxes4 &boxes) const
    {
        return ~lanesOf((_edges[0].reach(boxes) < 0.0f) | (_edges[1].reach(boxes) < 0.0f) |
                        (_edges[2].reach(boxes) < 0.0f)) &
               0xfu;
    }

private:
    static constexpr float PointSlope = 5.5f * 0x1p-24f;
    static constexpr float BoxSlope = 9.2f * 0x1p-24f;
    static constexpr float Underflow = 0x1p-100f;
    static constexpr float NearEnd = 2.5e-6f;
    static constexpr float NearLimit = 1.1e-6f;

    struct Edge
    {
        explicit Edge(const CornerTriangle::Edge &edge)
            : startX(four(edge.start.x())), startY(four(edge.start.y())),
              x(four(edge.direction.x())), y(four(edge.direction.y()))
        {}

        Float4 quickReach(Float4 pointX, Float4 pointY) const
        {
            const Float4 dx = pointX - startX;
            const Float4 dy = pointY - startY;
            const Float4 distance = absolute(dx) + absolute(dy);
            return x * dy - y * dx +
                   (PointSlope * distance + clamped(NearEnd - distance, NearLimit));
        }

        Float4 reach(Float4 pointX, Float4 pointY) const
        {
            const Float4 dx = pointX - startX;
            const Float4 dy = pointY - startY;
            const Float4 first = x * dy;
            const Float4 second = y * dx;
            const Float4 distance = absolute(dx) + absolute(dy);
            return first - second +
                   (PointSlope * (absolute(first) + absolute(second)) + Underflow * distance +
                    clamped(NearEnd - distance, NearLimit));
        }

        Float4 reach(const Boxes4 &boxes) const
        {
            const Float4 dx = boxes.centreX - startX;
            const Float4 dy = boxes.centreY - startY;
            const Float4 sine = absolute(x * boxes.axisY - y * boxes.axisX);
            const Float4 cosine = absolute(x * boxes.axisX + y * boxes.axisY);
            const Float4 first = x * dy;
            const Float4 second = y * dx;
            const Float4 products = absolute(first) + absolute(second) +
                                    (absolute(x) * boxes.extentY + absolute(y) * boxes.extentX);
            const Float4 distance = absolute(dx) + absolute(dy);
            const Float4 extent = boxes.along + boxes.across;
            const Float4 near = clamped(NearEnd + 1.5f * extent - distance, NearLimit);
            return first - second + (boxes.along * sine + boxes.across * cosine) +
                   (BoxSlope * products + Underflow * (distance + extent) + near);
        }

        Float4 startX;
        Float4 startY;
        Float4 x;
        Float4 y;
    };

    Edge _edges[3];
};

} // namespace Halvard::Orv
