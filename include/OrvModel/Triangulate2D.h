/// \file
/// Triangulation of one planar polygon by ear clipping.
#pragma once

#include <OrvModel/OrvModelExport.h>

#include <QtCore/QVector>
#include <QtGui/QVector2D>

namespace Halvard::Orv {

/// \addtogroup geometry
/// @{

/// Working record of one polygon corner.
struct Vertex
{
    int next;       ///< following corner of the shrinking ring
    int prev;       ///< preceding corner of the shrinking ring
    float crossZ;   ///< sine of the corner angle, positive where convex
    float cosAngle; ///< cosine of the corner angle: 1 is the sharpest, -1 is straight
    bool isActive;  ///< still part of the ring
    bool isEar;     ///< convex, and no active corner inside or on its triangle
};

/// Triangulates a simple polygon.
///
/// 1. Three corners give (0, 1, 2), whatever their coordinates.
/// 2. Four corners are always split along the diagonal from 1 to 3:
///
///        3-----2
///        | \   |      (0, 1, 3) and (1, 2, 3)
///        |   \ |
///        0-----1
///
///    also where the quad is concave at 0 or 2.
/// 3. More corners are clipped ear by ear, each time the sharpest ear (greatest
///    cosine), on a tie the one that comes first in the ring.
///
/// A corner lying inside or exactly on the edge of an ear blocks it, unless it
/// coincides with one of the ear's corners. A straight corner is no ear.
///
/// \param count number of corners.
/// \param points 2 x `count` floats: x, y of each corner in ring order.
/// \param triangles emptied first, keeping its capacity; then 3 x (`count` - 2)
///        positions in the ring (0 to `count` - 1). Empty after a failure.
/// \param clockwise whether the ring runs clockwise; the triangles then run
///        against the ring, so that they are always counter-clockwise.
///
/// Fewer than three corners log the warning "Cannot triangulate a polygon with
/// fewer than 3 vertices"; a ring that runs out of ears (self-crossing,
/// degenerate, wrong `clockwise`) logs "Unable to triangulate polygon.". NaN and
/// infinite coordinates are allowed and usually fail. Safe on any thread.
ORVMODEL_EXPORT void Triangulate2D(int count, float const *points, QVector<int> &triangles,
                                   bool clockwise);

/// Recomputes crossZ, cosAngle and isEar of the corner at `index` from its
/// neighbours and all active corners.
///
/// \param vertices all corners of the ring; the record at `index` changes.
/// \param points one point per entry of `vertices`.
/// \param index position in `vertices` of the corner.
/// \pre `index` and the links of `vertices[index]` are positions in `vertices`.
ORVMODEL_EXPORT void UpdateVertex(QVector<Vertex> &vertices, QVector2D const *points, int index);

/// Finds the first triangle two of whose edges are parallel within 1e-5 of the
/// cosine.
///
/// A triangle with two coincident corners is found; one with three is not, since
/// it has no direction at all.
///
/// \param count number of entries of `indices`: three a triangle; an incomplete
///        last triangle is not looked at.
/// \param indices point numbers; not checked.
/// \param points x, y float pairs, addressed by the indices.
/// \param start entry at which the first triangle to look at begins; not negative.
/// \return the entry at which the triangle begins, or -1.
ORVMODEL_EXPORT int FindDegenerateTriangle(int count, unsigned int const *indices,
                                           float const *points, int start);

/// @}

} // namespace Halvard::Orv

Q_DECLARE_TYPEINFO(Halvard::Orv::Vertex, Q_PRIMITIVE_TYPE);
