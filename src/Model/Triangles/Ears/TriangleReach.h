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
// A point counts as far while t >= 0, with d = fl(D), |e.x| and |e.y| times 5.5 u and
// 2^-100 added to each, and
//
//     t = cross(e, d) + (|e.x|' |d.y| + |e.y|' |d.x|).
//
// Errors: d u S, products u S; the difference and the sums are of the size of the result,
// and floats keep the sign of a sum. 3 u S + 2 u S leave t >= 0. It counts as near while
// |d|^2 <= 1.00001e-12, which is off by 2 u of itself.
//
// A box with centre C, axis a, and half extents h (along) and k (across) has only
// points X for which, the factor 1 / |a|^2 being in h and k already,
//
//     X = C + (s a + t a') / |a|^2,    |s| <= h, |t| <= k, a' across a.
//
// Let it extend by m and n from C along the axes of the plane, so that with D = C - V
//
//     |e.x (X - V).y| + |e.y (X - V).x| <= R = |e.x| (|D.y| + n) + |e.y| (|D.x| + m),
//     cross(e, X - V) <= cross(e, D) + |cross(e, h a)| + |dot(e, k a)|.
//
// Errors of the right side: the first term 3 u; the others, of the vectors h a and k a as
// rounded, 4 u of what they add to R. With the 3 u R of a far point that is at most 7 u R,
// and the right side with 9.2 u R added, 2^-100 in it as above, is not below 0.
//
// If the box has a point near V, then C is within (m + 1.000001e-6, n + 1.000001e-6) of V,
// and cross(e, X - V) >= -1.000002e-6, so that the right side is not below -1.1e-6.
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
    /// The axis times the half extent along it.
    Float4 alongX;
    Float4 alongY;
    /// The axis times the half extent across it.
    Float4 acrossX;
    Float4 acrossY;
    /// Half extents along the axes of the plane: |alongX| + |acrossY|, or a little more,
    /// and likewise.
    Float4 extentX;
    Float4 extentY;
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
///
/// What blocks it is inside of all three edges but for rounding, or near one of its
/// corners. The two are sought apart, since boxes that are good for the one, as thin as
/// the slivers of a flat ring, are bad for the other.
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
        return lanesOf(_edges[0].isInsideOrNear(x, y) & _edges[1].isInsideOrNear(x, y) &
                       _edges[2].isInsideOrNear(x, y));
    }

    /// The same but for points that are near a corner of the triangle.
    unsigned farPointsWithin(Float4 x, Float4 y) const
    {
        return lanesOf(_edges[0].isInside(x, y) & _edges[1].isInside(x, y) &
                       _edges[2].isInside(x, y));
    }

    /// One bit per box: set where the box may hold a point that blocks and is not near a
    /// corner of the triangle.
    unsigned farBoxesWithin(const Boxes4 &boxes) const
    {
        return ~lanesOf((_edges[0].insideOf(boxes) < 0.0f) | (_edges[1].insideOf(boxes) < 0.0f) |
                        (_edges[2].insideOf(boxes) < 0.0f)) &
               0xfu;
    }

    /// One bit per box: set where the box may hold a point that blocks and is near a corner
    /// of the triangle.
    unsigned nearBoxesWithin(const Boxes4 &boxes) const
    {
        const Mask4 near[] = {_edges[0].isNear(boxes), _edges[1].isNear(boxes),
                              _edges[2].isNear(boxes)};
        const Mask4 isNearSome = near[0] | near[1] | near[2];
        if (lanesOf(isNearSome) == 0)
            return 0;
        const Mask4 isOutside = _edges[0].isOutside(boxes, near[0]) |
                                _edges[1].isOutside(boxes, near[1]) |
                                _edges[2].isOutside(boxes, near[2]);
        return lanesOf(isNearSome & ~isOutside);
    }

private:
    static constexpr float PointSlope = 5.5f * 0x1p-24f;
    static constexpr float BoxSlope = 9.2f * 0x1p-24f;
    static constexpr float Underflow = 0x1p-100f;
    static constexpr float NearSquare = 1.00001e-12f;
    static constexpr float BoxNear = 1.1e-6f;

    struct Edge
    {
        explicit Edge(const CornerTriangle::Edge &edge)
            : startX(four(edge.start.x())), startY(four(edge.start.y())),
              x(four(edge.direction.x())), y(four(edge.direction.y())),
              pointSlopeX(PointSlope * absolute(x) + Underflow),
              pointSlopeY(PointSlope * absolute(y) + Underflow),
              boxSlopeX(BoxSlope * absolute(x) + Underflow),
              boxSlopeY(BoxSlope * absolute(y) + Underflow)
        {}

        Mask4 isInside(Float4 pointX, Float4 pointY) const
        {
            const Float4 dx = pointX - startX;
            const Float4 dy = pointY - startY;
            return x * dy - y * dx + (pointSlopeX * absolute(dy) + pointSlopeY * absolute(dx)) >=
                   0.0f;
        }

        Mask4 isInsideOrNear(Float4 pointX, Float4 pointY) const
        {
            const Float4 dx = pointX - startX;
            const Float4 dy = pointY - startY;
            return isInside(pointX, pointY) | (dx * dx + dy * dy <= NearSquare);
        }

        /// The right side above: less than 0 where all points of a box that are far are
        /// outside.
        Float4 insideOf(const Boxes4 &boxes) const
        {
            const Float4 dx = boxes.centreX - startX;
            const Float4 dy = boxes.centreY - startY;
            const Float4 spread = absolute(x * boxes.alongY - y * boxes.alongX) +
                                  absolute(x * boxes.acrossX + y * boxes.acrossY);
            return x * dy - y * dx + spread +
                   (boxSlopeX * (absolute(dy) + boxes.extentY) +
                    boxSlopeY * (absolute(dx) + boxes.extentX));
        }

        Mask4 isNear(const Boxes4 &boxes) const
        {
            return (absolute(boxes.centreX - startX) <= boxes.extentX + BoxNear) &
                   (absolute(boxes.centreY - startY) <= boxes.extentY + BoxNear);
        }

        /// All points are outside, also those that are near where some may be.
        Mask4 isOutside(const Boxes4 &boxes, Mask4 mayBeNear) const
        {
            const Mask4 limit = mayBeNear & reinterpret_cast<Mask4>(four(-BoxNear));
            return insideOf(boxes) < reinterpret_cast<Float4>(limit);
        }

        Float4 startX;
        Float4 startY;
        Float4 x;
        Float4 y;
        /// The absolute values of x and y times the slopes, and a little more.
        Float4 pointSlopeX;
        Float4 pointSlopeY;
        Float4 boxSlopeX;
        Float4 boxSlopeY;
    };

    Edge _edges[3];
};

} // namespace Halvard::Orv
