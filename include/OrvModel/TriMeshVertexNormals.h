/// \file
/// Smooth normals of a triangle mesh.
#pragma once

#include <OrvModel/OrvModelExport.h>

namespace Halvard::Orv {

/// \addtogroup geometry
/// @{

/// Computes one unit normal per vertex: the normalised sum of the normals of the
/// triangles around it.
///
/// A triangle's normal is the cross product of the unit directions from its
/// first corner to the third and to the second, so it points to the side from
/// which the corners run *clockwise*, and weighs the sine of the angle at the
/// first corner. All three corners receive the same.
///
/// \param vertexCount number of vertices.
/// \param indexCount number of entries of `indices`, three a triangle. An
///        incomplete last triangle is left out.
/// \param positions 3 x `vertexCount` floats.
/// \param indices vertex numbers. A triangle with a number that is not below
///        `vertexCount` is left out.
/// \param normals room for 3 x `vertexCount` floats; overwritten. A vertex that
///        only degenerate triangles use, or none, gets (0, 0, 0).
///
/// Safe on any thread. Allocates nothing.
ORVMODEL_EXPORT void TriMeshVertexNormals(int vertexCount, int indexCount, float const *positions,
                                          unsigned int const *indices, float *normals);

/// @}

} // namespace Halvard::Orv
