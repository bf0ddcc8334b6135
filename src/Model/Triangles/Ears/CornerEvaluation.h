/// \file
/// The numbers of a corner of a shrinking ring.
#pragma once

#include "Triangles/Ears/CornerTriangle.h"

#include <OrvModel/Triangulate2D.h>

namespace Halvard::Orv {

/// Computes the corner's crossZ, cosAngle and isEar.
///
/// \param isBlocked called with the CornerTriangle of a convex corner: whether any
///        active corner lies in it.
template <typename IsBlocked>
void evaluateCorner(Vertex &corner, QVector2D const *points, int index, IsBlocked isBlocked)
{
    const CornerTriangle triangle(points[index], points[corner.next], points[corner.prev]);
    const QVector2D toNext = triangle.edge(0).direction;
    const QVector2D toPrev = unit(points[corner.prev] - points[index]);
    corner.crossZ = cross(toNext, toPrev);
    corner.cosAngle = toNext.x() * toPrev.x() + toNext.y() * toPrev.y();
    corner.isEar = corner.crossZ > 0.0f && !isBlocked(triangle);
}

} // namespace Halvard::Orv
