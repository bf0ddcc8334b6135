#include "reference/FaceTriangles.h"

#include "support/PlainGeometry.h"

#include <QtCore/QtDebug>

namespace OrvReference {

std::vector<quint32> triangulateFace(const std::vector<quint32> &face,
                                     const std::vector<float> &positions)
{
    const std::vector<int> ring(face.begin(), face.end());
    const QVector3D normal = OrvTest::plainFaceNormal(ring, positions);
    const std::vector<int> corners = OrvTest::plainTriangulate3D(normal, ring, positions);
    if (face.size() < 3)
        qWarning("Cannot triangulate a polygon with fewer than 3 vertices");
    else if (corners.empty())
        qWarning("Unable to triangulate polygon.");
    std::vector<quint32> triangles;
    for (const int corner : corners)
        triangles.push_back(face[static_cast<std::size_t>(corner)]);
    return triangles;
}

} // namespace OrvReference
