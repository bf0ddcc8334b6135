/// \file
/// A narrow box around points.
#pragma once

#include <QtGui/QVector2D>

namespace Halvard::Orv {

/// A box along an axis of its own; see Boxes4 for what it holds.
struct OrientedBox
{
    QVector2D centre;
    QVector2D axis;
    float along;
    float across;

    /// The box of points[first[0]], points[first[step]], ... up to but not
    /// including points[*last].
    static OrientedBox around(const QVector2D *points, const int *first, const int *last,
                              ptrdiff_t step = 1);

    bool holds(QVector2D point) const;
};

} // namespace Halvard::Orv
