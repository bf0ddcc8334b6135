#include "reference/SmoothNormals.h"

#include "reference/EarClipping.h"

namespace OrvReference {

std::vector<float> smoothNormals(const std::vector<float> &positions,
                                 const std::vector<quint32> &triangles)
{
    std::vector<QVector3D> sums(positions.size() / 3, QVector3D(0.0f, 0.0f, 0.0f));
    for (std::size_t t = 0; t + 2 < triangles.size(); t += 3) {
        const QVector3D p0 = positionAt(positions, triangles[t]);
        const QVector3D p1 = positionAt(positions, triangles[t + 1]);
        const QVector3D p2 = positionAt(positions, triangles[t + 2]);
        const QVector3D a = (p2 - p0).normalized();
        const QVector3D b = (p1 - p0).normalized();
        const QVector3D normal = QVector3D::crossProduct(a, b);
        sums[triangles[t]] += normal;
        sums[triangles[t + 1]] += normal;
        sums[triangles[t + 2]] += normal;
    }
    std::vector<float> normals;
    for (QVector3D &sum : sums) {
        sum.normalize();
        normals.insert(normals.end(), {sum.x(), sum.y(), sum.z()});
    }
    return normals;
}

} // namespace OrvReference
