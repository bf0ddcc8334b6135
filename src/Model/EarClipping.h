/// \file
/// The planar triangulation behind Triangulate2D(), with scratch memory that a
/// caller of many faces keeps.
#pragma once

#include <OrvModel/Triangulate2D.h>

#include <QtCore/QVector>
#include <QtGui/QVector2D>

namespace Halvard::Orv {

/// As Triangulate2D(); `ring` is scratch whose contents do not matter.
void clipEars(int count, QVector2D const *points, QVector<int> &triangles, bool clockwise,
              QVector<Vertex> &ring);

} // namespace Halvard::Orv
