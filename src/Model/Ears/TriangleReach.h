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
//     w = fl(D)    each component rounded once: cross(e, w) is off by        u |D|
//     unit(w)      lengths in double, then each component rounded once:      u
//     products     of components, rounded; together at most |e| |unit(w)|:   u
//     difference   of two floats has the sign of the exact difference:       0
//
// where cross(a, b) <= |a.x b.y| + |a.y b.x| <= |a| |b| bounds each sum. So (1) implies
//
//     cross(e, D) >= -3 u |D| - 2^-148 |D|,
//
// the last for products that underflow. One case is different: a w up to 1e-6 long
// becomes the zero vector, and (1) is true. |D| is then at most 1e-6 (1 + u), and
//
//     cross(e, D) >= -1.000001e-6.
//
// Neither case asks anything of the triangle: slivers and edges without length, whose
// e is zero, are covered.
//
// What is computed below has errors of its own. For a point: D 1 u |D|, products
// 1 u |D|, their difference and two sums 3 u |D|_1. For a box with centre C, axis a,
// and half extents h (along) and k (across), all its points are
//
//     X = C + (s a + t a') / |a|^2,    |s| <= h, |t| <= k, a' across a,
//
// the factor 1 / |a|^2 being in h and k already, so that with D = C - V and
// R = |D|_1 + h + k >= |X - V|
//
//     cross(e, X - V) <= cross(e, D) + h |cross(e, a)| + k |dot(e, a)|.
//
// Errors: the first term 3 u |D|, the others 3 u (h + k), their sums 4 u R. With the
// 3 u |X - V| of (1) that is less than 11 u R = 6.6e-7 R. Hence the limit: where the
// float sum
//
//     t = cross(e, D) + h |cross(e, a)| + k |dot(e, a)| + 1e-6 R + 1.3e-6
//
// is below 0 for one edge, (1) is false for that edge and every point of the box.
//
// Numbers that are not finite: a point with such a coordinate gives unit() a NaN, which
// makes (1) false, whatever the edge: it never blocks. A D that overflows does the same
// when it belongs to a point; when it belongs to a box, R is infinite and t infinite or
// NaN, not below 0. Without that a product can overflow only where a component of e is
// about 1 and one of D close to the greatest float; the other component of e is then so
// small that t has the sign of that product.
#pragma once

#include "../Fast/Lanes.h"
#include "CornerTriangle.h"

namespace Halvard::Orv {

/// Four oriented boxes. A box holds every point X with |dot(a, X - C)| <= h and
/// |cross(a, X - C)| <= k in exact arithmetic, and is h |a|^-2 by k |a|^-2 at least.
struct Boxes4
{
    Float4 centreX;
    Float4 centreY;
    Float4 axisX;
    Float4 axisY;
    Float4 along;
    Float4 across;
};

inline Float4 absolute(Float4 value)
{
    constexpr int AllButSign = 0x7fffffff;
    return reinterpret_cast<Float4>(reinterpret_cast<Mask4>(value) &
                                    Mask4{AllButSign, AllButSign, AllButSign, AllButSign});
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
        return lanesOf((_edges[0].reach(x, y) >= 0.0f) & (_edges[1].reach(x, y) >= 0.0f) &
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
    static constexpr float Slope = 1e-6f;
    static constexpr float Floor = 1.3e-6f;

    struct Edge
    {
        explicit Edge(const CornerTriangle::Edge &edge)
            : startX(four(edge.start.x())), startY(four(edge.start.y())),
              x(four(edge.direction.x())), y(four(edge.direction.y()))
        {}

        Float4 reach(Float4 pointX, Float4 pointY) const
        {
            const Float4 dx = pointX - startX;
            const Float4 dy = pointY - startY;
            return x * dy - y * dx + (Slope * (absolute(dx) + absolute(dy)) + Floor);
        }

        Float4 reach(const Boxes4 &boxes) const
        {
            const Float4 dx = boxes.centreX - startX;
            const Float4 dy = boxes.centreY - startY;
            const Float4 sine = absolute(x * boxes.axisY - y * boxes.axisX);
            const Float4 cosine = absolute(x * boxes.axisX + y * boxes.axisY);
            const Float4 extent = absolute(dx) + absolute(dy) + (boxes.along + boxes.across);
            return x * dy - y * dx + (boxes.along * sine + boxes.across * cosine) +
                   (Slope * extent + Floor);
        }

        Float4 startX;
        Float4 startY;
        Float4 x;
        Float4 y;
    };

    Edge _edges[3];
};

} // namespace Halvard::Orv
