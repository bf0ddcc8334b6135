/// \file
/// A narrow box around points.
#pragma once

#include "Triangles/Ears/TriangleReach.h"

#include <QtGui/QVector2D>

namespace Halvard::Orv {

/// A box along an axis of its own; see Boxes4 for what it holds.
struct OrientedBox
{
    QVector2D centre;
    QVector2D axis;
    float along;
    float across;

    /// The box of points[*first] up to but not including points[*last], or of a sample:
    /// one point of each `step`.
    static OrientedBox around(const QVector2D *points, const int *first, const int *last,
                              ptrdiff_t step = 1);

    /// Half of the extent along an axis of the plane, or a little more.
    float extentX() const;
    float extentY() const;

    bool holds(QVector2D point) const;

    /// Half of the extent across a unit direction, about.
    float widthAcross(QVector2D direction) const;

    /// Puts it into one of four lanes.
    void putInto(Boxes4 &boxes, int lane) const;
};

} // namespace Halvard::Orv
