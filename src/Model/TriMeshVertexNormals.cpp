#include <OrvModel/TriMeshVertexNormals.h>

#include <QtGui/QVector3D>

#include <algorithm>
#include <cstddef>

namespace Halvard::Orv {

namespace {

QVector3D load(float const *triples, unsigned int index)
{
    const float *xyz = triples + 3 * static_cast<size_t>(index);
    return {xyz[0], xyz[1], xyz[2]};
}

void addTo(float *sums, unsigned int index, QVector3D const &normal)
{
    float *xyz = sums + 3 * static_cast<size_t>(index);
    xyz[0] += normal.x();
    xyz[1] += normal.y();
    xyz[2] += normal.z();
}

/// Points to the side from which the corners run clockwise; its length is the
/// sine of the angle at the first corner, and no other weight is wanted.
QVector3D triangleNormal(QVector3D const &p0, QVector3D const &p1, QVector3D const &p2)
{
    return QVector3D::crossProduct((p2 - p0).normalized(), (p1 - p0).normalized());
}

} // namespace

void TriMeshVertexNormals(int vertexCount, int indexCount, float const *positions,
                          unsigned int const *indices, float *normals)
{
    if (vertexCount <= 0)
        return;
    const auto vertices = static_cast<unsigned int>(vertexCount);
    std::fill_n(normals, 3 * static_cast<size_t>(vertices), 0.0f);

    for (int t = 0; t < indexCount - 2; t += 3) {
        const unsigned int i0 = indices[t];
        const unsigned int i1 = indices[t + 1];
        const unsigned int i2 = indices[t + 2];
        if (i0 >= vertices || i1 >= vertices || i2 >= vertices)
            continue;
        const QVector3D normal =
            triangleNormal(load(positions, i0), load(positions, i1), load(positions, i2));
        addTo(normals, i0, normal);
        addTo(normals, i1, normal);
        addTo(normals, i2, normal);
    }

    for (unsigned int i = 0; i < vertices; ++i) {
        QVector3D normal = load(normals, i);
        normal.normalize();
        float *xyz = normals + 3 * static_cast<size_t>(i);
        xyz[0] = normal.x();
        xyz[1] = normal.y();
        xyz[2] = normal.z();
    }
}

} // namespace Halvard::Orv
