#include <OrvModel/Triangulate2D.h>

#include "Lanes/FloatingPointState.h"
#include "Triangles/Ears/CornerEvaluation.h"
#include "Triangles/Ears/EarClipping.h"

#include <cmath>

namespace Halvard::Orv {

namespace {

/// Whether any active corner but the triangle's own lies in the triangle at `index`.
/// This is how it is defined; BlockerSearch gives the same answer.
bool isBlocked(QVector<Vertex> const &ring, QVector2D const *points, int index,
               const CornerTriangle &triangle)
{
    const Vertex &corner = ring.at(index);
    for (int j = 0; j < ring.size(); ++j) {
        if (j == index || j == corner.next || j == corner.prev || !ring.at(j).isActive)
            continue;
        if (triangle.isBlockedBy(points[j]))
            return true;
    }
    return false;
}

/// Whether two unit directions are parallel or anti-parallel.
bool areParallel(QVector2D first, QVector2D second)
{
    return 1.0f - std::fabs(QVector2D::dotProduct(first, second)) < 1e-5f;
}

bool isDegenerate(QVector2D p0, QVector2D p1, QVector2D p2)
{
    const QVector2D a = (p1 - p0).normalized();
    const QVector2D b = (p2 - p1).normalized();
    const QVector2D c = (p0 - p2).normalized();
    return areParallel(a, b) || areParallel(b, c) || areParallel(c, a);
}

} // namespace

void Triangulate2D(int count, float const *points, QVector<int> &triangles, bool clockwise)
{
    const FloatingPointState state;
    static_assert(sizeof(QVector2D) == 2 * sizeof(float), "points are read in place");
    EarClipping clipping;
    clipping.triangulate(count, reinterpret_cast<QVector2D const *>(points), triangles, clockwise);
}

void UpdateVertex(QVector<Vertex> &vertices, QVector2D const *points, int index)
{
    const FloatingPointState state;
    evaluateCorner(vertices[index], points, index, [&](const CornerTriangle &triangle) {
        return isBlocked(vertices, points, index, triangle);
    });
}

int FindDegenerateTriangle(int count, unsigned int const *indices, float const *points, int start)
{
    const FloatingPointState state;
    const auto point = [points](unsigned int index) {
        const float *xy = points + 2 * static_cast<size_t>(index);
        return QVector2D(xy[0], xy[1]);
    };
    for (int t = start; t < count - 2; t += 3) {
        if (isDegenerate(point(indices[t]), point(indices[t + 1]), point(indices[t + 2])))
            return t;
    }
    return -1;
}

} // namespace Halvard::Orv
