/// \file
/// Faces to triangles.
#pragma once

#include <QtCore/QtGlobal>

#include <vector>

namespace OrvReference {

/// The vertices of the triangles of one face, three each, about the normal computed from its
/// ring; empty, with a warning logged, when it cannot be done.
/// \param face vertex numbers, in ring order.
/// \param positions three floats per vertex.
std::vector<quint32> triangulateFace(const std::vector<quint32> &face,
                                     const std::vector<float> &positions);

} // namespace OrvReference
