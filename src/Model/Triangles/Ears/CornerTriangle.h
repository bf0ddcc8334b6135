/// \file
/// The exact test of whether a corner lies in the triangle of an ear candidate.
//
// All arithmetic is in 32-bit floats, but for the lengths of vectors, which are
// computed in double: the result of a triangulation is defined by exactly that, so
// no normalisation may be left out.
#pragma once

#include <QtGui/QVector2D>

#include <cmath>

namespace Halvard::Orv {

/// QVector2D::normalized(), bit by bit, without a call into another library.
///
/// A vector whose squared length is within 1e-12 of 1 needs no care although Qt
/// returns it as it is: dividing by a length that is off 1 by 5e-13 gives, rounded to
/// float, the vector itself.
inline QVector2D unit(QVector2D vector)
{
    constexpr double NullSquare = 1e-12;
    const double x = static_cast<double>(vector.x());
    const double y = static_cast<double>(vector.y());
    const double square = x * x + y * y;
    if (square <= NullSquare)
        return {};
    const double length = std::sqrt(square);
    return {static_cast<float>(x / length), static_cast<float>(y / length)};
}

inline float cross(QVector2D first, QVector2D second)
{
    return first.x() * second.y() - second.x() * first.y();
}

/// Plain float equality: 0.0 equals -0.0, and nothing equals a NaN.
inline bool same(QVector2D first, QVector2D second)
{
    return first.x() == second.x() && first.y() == second.y();
}

/// The corner triangle of an ear candidate and its unit edge directions.
class CornerTriangle
{
public:
    /// An edge's first corner and its unit direction.
    struct Edge
    {
        QVector2D start;
        QVector2D direction;
    };

    CornerTriangle(QVector2D corner, QVector2D next, QVector2D prev)
        : _edges{
              {corner, unit(next - corner)}, {next, unit(prev - next)}, {prev, unit(corner - prev)}}
    {}

    /// Edges from the corner to the next, from there to the previous, and back.
    const Edge &edge(int i) const { return _edges[i]; }

    bool hasCornerAt(QVector2D point) const
    {
        return same(point, _edges[0].start) || same(point, _edges[1].start) ||
               same(point, _edges[2].start);
    }

    /// Whether the point lies inside or on the border. A point that coincides
    /// with a corner does not count, so that touching rings keep their ears.
    bool isBlockedBy(QVector2D point) const
    {
        int edge = 0;
        return isBlockedBy(point, edge);
    }

    /// The same.
    /// \param edge is asked first: the one that the last point was outside of, from which the
    ///        next one often is as well.
    bool isBlockedBy(QVector2D point, int &edge) const
    {
        if (hasCornerAt(point))
            return false;
        for (int i = 0; i < 3; ++i) {
            const int asked = edge + i < 3 ? edge + i : edge + i - 3;
            if (!isInside(_edges[asked], point)) {
                edge = asked;
                return false;
            }
        }
        return true;
    }

    /// The direction of the longest edge.
    QVector2D longestDirection() const
    {
        float longest = -1.0f;
        QVector2D direction;
        for (int i = 0; i < 3; ++i) {
            const QVector2D along = _edges[i == 2 ? 0 : i + 1].start - _edges[i].start;
            const float length = std::fabs(along.x()) + std::fabs(along.y());
            if (length > longest) {
                longest = length;
                direction = _edges[i].direction;
            }
        }
        return direction;
    }

private:
    static bool isInside(const Edge &edge, QVector2D point)
    {
        return cross(edge.direction, unit(point - edge.start)) >= 0.0f;
    }

    Edge _edges[3];
};

} // namespace Halvard::Orv
