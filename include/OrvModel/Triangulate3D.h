/// \file
/// Triangulation of one polygon in space.
#pragma once

#include <OrvModel/OrvModelExport.h>

#include <QtCore/QVector>
#include <QtGui/QVector3D>

namespace Halvard::Orv {

/// \addtogroup geometry
/// @{

/// \name Triangulation of a face
/// Four forms of one operation: with or without a normal, 32-bit or 16-bit numbers.
/// @{

/// Triangulates one face in space.
///
/// The ring is projected onto the plane across the normal and cut as
/// Triangulate2D() describes. Triangles run counter-clockwise about the normal,
/// whichever way the ring runs.
///
/// Without a normal it is the normalised sum of the cross products of successive
/// positions, which points to the side from which the ring runs
/// counter-clockwise.
///
/// \param normal of unit length.
/// \param count number of corners.
/// \param indices `count` vertex numbers in ring order.
/// \param positions x, y, z of each vertex, addressed by `indices`.
/// \param out vertex numbers, three a triangle, added at the end. A face that
///        cannot be triangulated adds nothing; the warning is that of
///        Triangulate2D(). The 16-bit form keeps the low 16 bits of a number:
///        70000 becomes 4464.
///
/// Safe on any thread, for different `out`.
ORVMODEL_EXPORT void Triangulate3D(QVector3D const &normal, int count, int const *indices,
                                   float const *positions, QVector<unsigned int> &out);

/// The same without a normal: the ring's own is taken, as described above.
ORVMODEL_EXPORT void Triangulate3D(int count, int const *indices, float const *positions,
                                   QVector<unsigned int> &out);

/// The same with 16-bit numbers.
ORVMODEL_EXPORT void Triangulate3D(QVector3D const &normal, int count, int const *indices,
                                   float const *positions, QVector<unsigned short> &out);

/// The same without a normal and with 16-bit numbers.
ORVMODEL_EXPORT void Triangulate3D(int count, int const *indices, float const *positions,
                                   QVector<unsigned short> &out);
/// @}

/// As Triangulate3D() with a normal, but gives positions within the face (0 to
/// `count` - 1) instead of vertex numbers, and empties `triangles` first.
ORVMODEL_EXPORT void Triangulate3DImpl(QVector3D const &normal, int count, int const *indices,
                                       float const *positions, QVector<int> &triangles);

/// @}

} // namespace Halvard::Orv
