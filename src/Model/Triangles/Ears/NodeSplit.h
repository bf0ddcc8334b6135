/// \file
/// Where a node of the tree of boxes is split in two.
#pragma once

#include <QtGui/QVector2D>

#include <functional>
#include <optional>
#include <vector>

namespace Halvard::Orv {

/// A coordinate of points, by number; of equal ones the lower number comes first.
class AlongAxis
{
public:
    AlongAxis(const QVector2D *points, QVector2D axis) : _points(points), _axis(axis) {}

    /// Exact but for one rounding: the points of a thin strip differ in the last bits.
    double at(int number) const
    {
        const QVector2D point = _points[number];
        return static_cast<double>(_axis.x()) * static_cast<double>(point.x()) +
               static_cast<double>(_axis.y()) * static_cast<double>(point.y());
    }

    bool operator()(int first, int second) const
    {
        const double firstAt = at(first);
        const double secondAt = at(second);
        return firstAt < secondAt || (firstAt == secondAt && first < second);
    }

private:
    const QVector2D *_points;
    QVector2D _axis;
};

/// How to part a node's points in halves: by the median of a coordinate, or, where there is
/// none, into the first and the last points in ring order. Any answer is right; a good one
/// lets a triangle miss most boxes.
///
/// \param points all points.
/// \param first, middle, last numbers of the node's points, in ring order; `middle` is
///        where the second half would begin in ring order.
/// \param isAcross whether to prefer a split across where both ways are as good: it
///        should be every other level, which makes the boxes of points that are
///        scattered over a strip as long as wide, measured in lengths and widths of the
///        strip. A sliver between such points is long and thin in these units, too.
using NodeSplit = std::function<std::optional<AlongAxis>(
    const QVector2D *points, const int *first, const int *middle, const int *last, bool isAcross)>;

/// A NodeSplit for triangles that mostly have neighbours in the ring as corners.
std::optional<AlongAxis> splitForTriangles(const QVector2D *points, const int *first,
                                           const int *middle, const int *last, bool isAcross);

/// For the surroundings of points: halves that are as wide as long as far as can be.
std::optional<AlongAxis> splitForSurroundings(const QVector2D *points, const int *first,
                                              const int *middle, const int *last, bool isAcross);

/// For lines through all points.
/// \param directions of such lines, at least one.
std::optional<AlongAxis> splitForLines(const QVector2D *points, const int *first, const int *last,
                                       bool isAcross, const std::vector<QVector2D> &directions);

} // namespace Halvard::Orv
