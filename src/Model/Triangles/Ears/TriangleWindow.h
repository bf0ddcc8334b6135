/// \file
/// How far around an ear's triangle corners that block it can be.
//
// The lines along two edges of a sliver hardly part, so that the edges alone, see
// TriangleReach, do not keep away what lies on these lines far off. This does, for
// all but the thinnest slivers.
//
// X blocks only if, for each edge from V_i, it is near V_i (up to 1.000001e-6) or, with
// the float direction e_i, cross(e_i, X - V_i) >= -3 u |X - V_i|. The exact unit direction
// d_i of an edge whose e_i is not zero is within 2.1 u of e_i: components of the
// difference rounded once, components of the unit vector rounded once. Unless X is
// near a corner, then,
//
//     cross(d_i, X - V_i) >= -c |X - V_i|,    c = 3.1e-7 > 5.1 u.
//
// Let l be the longest edge, s the sum of the two longest, and A the doubled area. The
// barycentric coordinates of X add up to 1; each is the distance from an edge over the
// height upon it, which is A over the length of the edge. At most two are negative. If
// the negative ones add up to -n, the positive ones add up to 1 + n: seen along any
// direction, X is out of the triangle's range by at most n times the length of that
// range. So no corner is farther from X than (1 + n) l, and
//
//     n <= c (1 + n) l s / A,    or    n <= q / (1 - q)    with q = c l s / A < 1.
//
// X lies in the triangle's bounding box, extended by
//
//     max(n l, 1.1e-6),
//
// the latter for what is near a corner. With q > 0.95 or an edge without direction
// there is no window. All this is computed in double, whose errors vanish in what is
// left of c.
#pragma once

#include "Triangles/Ears/TriangleReach.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace Halvard::Orv {

/// The part of the plane outside of which nothing blocks an ear.
class TriangleWindow
{
public:
    explicit TriangleWindow(const CornerTriangle &triangle)
        : TriangleWindow(triangle.edge(0).start, triangle.edge(1).start, triangle.edge(2).start,
                         extension(triangle))
    {}

    /// One bit per box: set where the box may hold a point that blocks.
    unsigned boxesWithin(const Boxes4 &boxes) const
    {
        const Float4 halfX = _x.half + Slack * boxes.extentX;
        const Float4 halfY = _y.half + Slack * boxes.extentY;
        return ~lanesOf((absolute(boxes.centreX - _x.middle) > halfX) |
                        (absolute(boxes.centreY - _y.middle) > halfY)) &
               0xfu;
    }

    /// How far each box is from the middle of the triangle, about: less than 0 where it
    /// surrounds the middle.
    Float4 distances(const Boxes4 &boxes) const
    {
        return absolute(boxes.centreX - _middleX) - boxes.extentX +
               (absolute(boxes.centreY - _middleY) - boxes.extentY);
    }

private:
    /// More than all that is rounded in the comparison.
    static constexpr float Slack = 1.0f + 1e-6f;

    struct Range
    {
        Float4 middle;
        Float4 half;
    };

    TriangleWindow(QVector2D first, QVector2D second, QVector2D third, double extension)
        : _x(range(first.x(), second.x(), third.x(), extension)),
          _y(range(first.y(), second.y(), third.y(), extension)),
          _middleX(four(mean(first.x(), second.x(), third.x()))),
          _middleY(four(mean(first.y(), second.y(), third.y())))
    {}

    static float mean(float first, float second, float third)
    {
        return (first + second + third) / 3.0f;
    }

    static Range range(float first, float second, float third, double extension)
    {
        const double low = static_cast<double>(std::min({first, second, third})) - extension;
        const double high = static_cast<double>(std::max({first, second, third})) + extension;
        const float middle = static_cast<float>(0.5 * (low + high));
        // Around the middle as rounded.
        const double half =
            std::max(high - static_cast<double>(middle), static_cast<double>(middle) - low);
        return {four(middle), four(static_cast<float>(half) * Slack)};
    }

    static double extension(const CornerTriangle &triangle)
    {
        constexpr double Deviation = 3.1e-7;
        constexpr double Thinnest = 0.95;
        constexpr double NearCorner = 1.1e-6;
        constexpr double None = std::numeric_limits<double>::max();
        double x[3];
        double y[3];
        double lengths[3];
        for (int i = 0; i < 3; ++i) {
            const CornerTriangle::Edge &edge = triangle.edge(i);
            const QVector2D end = triangle.edge(i == 2 ? 0 : i + 1).start;
            if (same(edge.direction, {}))
                return None;
            x[i] = static_cast<double>(end.x()) - static_cast<double>(edge.start.x());
            y[i] = static_cast<double>(end.y()) - static_cast<double>(edge.start.y());
            lengths[i] = std::sqrt(x[i] * x[i] + y[i] * y[i]);
        }
        const auto [shortest, longest] = std::minmax({lengths[0], lengths[1], lengths[2]});
        const double sum = lengths[0] + lengths[1] + lengths[2] - shortest;
        const double area = x[0] * y[1] - x[1] * y[0];
        const double q = Deviation * longest * sum / area;
        if (!(area > 0.0 && q <= Thinnest))
            return None;
        return std::max(NearCorner, q / (1.0 - q) * longest);
    }

    Range _x;
    Range _y;
    Float4 _middleX;
    Float4 _middleY;
};

} // namespace Halvard::Orv
