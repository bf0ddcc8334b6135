/// \file
/// Normals for a mesh that came without.
#pragma once

#include <QtCore/QtGlobal>

#include <vector>

namespace OrvReference {

/// Three floats per vertex, for as many vertices as there are positions.
/// \param triangles three vertices each; the sums run in their order.
std::vector<float> smoothNormals(const std::vector<float> &positions,
                                 const std::vector<quint32> &triangles);

} // namespace OrvReference
