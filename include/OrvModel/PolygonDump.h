/// \file
/// Polygons and their triangulations as small OBJ files, to look at a failed
/// triangulation in a viewer.
#pragma once

#include <OrvModel/OrvModelExport.h>

#include <QtCore/QString>
#include <QtCore/QVector>
#include <QtGui/QVector2D>

namespace Halvard::Orv {

/// \addtogroup geometry
/// @{

/// Writes the ring of `count` points as "v x y" lines (two coordinates, six
/// significant digits) and one "f" line over all of them.
///
/// The "f" line has two blanks after its keyword. A file that cannot be opened
/// logs the warning "Couldn't write obj file %s"; later write errors are ignored.
/// An existing file is overwritten.
///
/// \param fileName the file to write.
/// \param count number of points.
/// \param points `count` of them, in ring order.
ORVMODEL_EXPORT void DumpAsOBJPolygon(QString const &fileName, int count, QVector2D const *points);

/// Writes the points as DumpAsOBJPolygon() does, and one "f" line per triangle.
/// \param fileName, count, points as for DumpAsOBJPolygon().
/// \param triangles 0-based positions, three a triangle, as Triangulate2D()
///        gives them; an incomplete last triangle is left out.
ORVMODEL_EXPORT void DumpAsOBJTriangles(QString const &fileName, int count, QVector2D const *points,
                                        QVector<int> const &triangles);

/// @}

} // namespace Halvard::Orv
