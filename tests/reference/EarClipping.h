/// \file
/// Polygons to triangles, in the plane and in space.
#pragma once

#include <QtCore/QtGlobal>
#include <QtGui/QVector2D>
#include <QtGui/QVector3D>

#include <vector>

namespace OrvReference {

/// Positions in the ring, three per triangle; empty, with a warning logged, when it cannot be done.
std::vector<int> clipEars(const std::vector<QVector2D> &points, bool clockwise);

/// The vertices of the triangles of one face, about the normal computed from its ring.
/// \param face vertex numbers, in ring order.
/// \param positions three floats per vertex.
std::vector<quint32> triangulateFace(const std::vector<quint32> &face,
                                     const std::vector<float> &positions);

/// Position of a vertex in an array of three floats per vertex.
QVector3D positionAt(const std::vector<float> &positions, quint32 vertex);

} // namespace OrvReference
