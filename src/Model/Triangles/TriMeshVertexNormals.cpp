#include <OrvModel/TriMeshVertexNormals.h>

#include "Lanes/FloatingPointState.h"
#include "Triangles/VertexNormalSums.h"

#include <cstddef>

namespace Halvard::Orv {

void TriMeshVertexNormals(int vertexCount, int indexCount, float const *positions,
                          unsigned int const *indices, float *normals)
{
    const FloatingPointState state;
    if (vertexCount <= 0)
        return;
    VertexNormalSums sums(static_cast<unsigned int>(vertexCount), positions, normals);
    if (indexCount > 0)
        sums.add(indices, static_cast<size_t>(indexCount) / 3 * 3);
    sums.normalize();
}

} // namespace Halvard::Orv
