// Ear clipping after G. H. Meisters, "Polygons have ears" (1975), always taking
// the sharpest ear. All arithmetic is in 32-bit floats with Qt's vectors, whose
// normalisation goes through double and gives zero for lengths up to 1e-6: the
// result is defined by exactly that, so no normalisation may be left out.
#include <OrvModel/Triangulate2D.h>

#include "EarClipping.h"

#include <cmath>

namespace Halvard::Orv {

namespace {

float cross(QVector2D first, QVector2D second)
{
    return first.x() * second.y() - second.x() * first.y();
}

/// The corner triangle of an ear candidate and its unit edge directions.
class CornerTriangle
{
public:
    CornerTriangle(QVector2D corner, QVector2D next, QVector2D prev)
        : _corner(corner), _next(next), _prev(prev), _toNext((next - corner).normalized()),
          _toPrev((prev - next).normalized()), _toCorner((corner - prev).normalized())
    {}

    /// Whether the point lies inside or on the border. A point that coincides
    /// with a corner does not count, so that touching rings keep their ears.
    bool isBlockedBy(QVector2D point) const
    {
        if (same(point, _corner) || same(point, _next) || same(point, _prev))
            return false;
        return cross(_toNext, (point - _corner).normalized()) >= 0.0f &&
               cross(_toPrev, (point - _next).normalized()) >= 0.0f &&
               cross(_toCorner, (point - _prev).normalized()) >= 0.0f;
    }

private:
    /// Plain float equality: 0.0 equals -0.0, and nothing equals a NaN.
    static bool same(QVector2D first, QVector2D second)
    {
        return first.x() == second.x() && first.y() == second.y();
    }

    QVector2D _corner;
    QVector2D _next;
    QVector2D _prev;
    QVector2D _toNext;
    QVector2D _toPrev;
    QVector2D _toCorner;
};

/// Whether any active corner but the triangle's own lies in the triangle at `index`.
bool isBlocked(const Vertex *ring, int count, QVector2D const *points, int index)
{
    const Vertex &corner = ring[index];
    const CornerTriangle triangle(points[index], points[corner.next], points[corner.prev]);
    for (int j = 0; j < count; ++j) {
        if (j == index || j == corner.next || j == corner.prev || !ring[j].isActive)
            continue;
        if (triangle.isBlockedBy(points[j]))
            return true;
    }
    return false;
}

void updateCorner(Vertex *ring, int count, QVector2D const *points, int index)
{
    Vertex &corner = ring[index];
    const QVector2D toNext = (points[corner.next] - points[index]).normalized();
    const QVector2D toPrev = (points[corner.prev] - points[index]).normalized();
    corner.crossZ = cross(toNext, toPrev);
    corner.cosAngle = QVector2D::dotProduct(toNext, toPrev);
    corner.isEar = corner.crossZ > 0.0f && !isBlocked(ring, count, points, index);
}

/// Links the corners into a ring that is walked counter-clockwise.
void makeRing(int count, bool clockwise, QVector<Vertex> &ring)
{
    ring.resize(0);
    ring.reserve(count);
    for (int i = 0; i < count; ++i) {
        const int after = i + 1 == count ? 0 : i + 1;
        const int before = i == 0 ? count - 1 : i - 1;
        const Vertex corner = {
            clockwise ? before : after, clockwise ? after : before, 0.0f, 0.0f, true, false};
        ring.append(corner);
    }
}

/// The active ear with the greatest cosine, the first of several; -1 if none is left.
/// Starts from the first ear rather than from a number: a cosine may lie a
/// little below -1.
int sharpestEar(const Vertex *ring, int count)
{
    int best = -1;
    for (int i = 0; i < count; ++i) {
        if (!ring[i].isActive || !ring[i].isEar)
            continue;
        if (best < 0 || ring[i].cosAngle > ring[best].cosAngle)
            best = i;
    }
    return best;
}

void appendTriangle(QVector<int> &triangles, int first, int second, int third)
{
    triangles.append(first);
    triangles.append(second);
    triangles.append(third);
}

/// Emits the ear's triangle, unlinks it, and looks at its two neighbours anew. No
/// other corner is: an ear elsewhere that this one blocked stays blocked until a
/// neighbour of its own goes.
void clip(Vertex *ring, int count, QVector2D const *points, int ear, QVector<int> &triangles)
{
    const int prev = ring[ear].prev;
    const int next = ring[ear].next;
    appendTriangle(triangles, prev, ear, next);
    ring[prev].next = next;
    ring[next].prev = prev;
    ring[ear].isActive = false;
    updateCorner(ring, count, points, prev);
    updateCorner(ring, count, points, next);
}

/// The three corners that clipping leaves.
void appendLastTriangle(const Vertex *ring, int count, QVector<int> &triangles)
{
    for (int i = 0; i < count; ++i) {
        if (ring[i].isActive) {
            appendTriangle(triangles, ring[i].prev, i, ring[i].next);
            return;
        }
    }
}

/// Three and four corners: fixed tables, no geometry.
void appendFixedTriangles(int count, bool clockwise, QVector<int> &triangles)
{
    if (count == 3) {
        appendTriangle(triangles, 0, clockwise ? 2 : 1, clockwise ? 1 : 2);
        return;
    }
    appendTriangle(triangles, 0, clockwise ? 3 : 1, clockwise ? 1 : 3);
    appendTriangle(triangles, 1, clockwise ? 3 : 2, clockwise ? 2 : 3);
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

void clipEars(int count, QVector2D const *points, QVector<int> &triangles, bool clockwise,
              QVector<Vertex> &ring)
{
    triangles.resize(0);
    if (count < 3) {
        qWarning("Cannot triangulate a polygon with fewer than 3 vertices");
        return;
    }
    if (count <= 4) {
        appendFixedTriangles(count, clockwise, triangles);
        return;
    }

    makeRing(count, clockwise, ring);
    Vertex *corners = ring.data();
    for (int i = 0; i < count; ++i)
        updateCorner(corners, count, points, i);

    triangles.reserve(3 * (count - 2));
    for (int clipped = 0; clipped < count - 3; ++clipped) {
        const int ear = sharpestEar(corners, count);
        if (ear < 0) {
            qWarning("Unable to triangulate polygon.");
            triangles.resize(0);
            return;
        }
        clip(corners, count, points, ear, triangles);
    }
    appendLastTriangle(corners, count, triangles);
}

void Triangulate2D(int count, float const *points, QVector<int> &triangles, bool clockwise)
{
    static_assert(sizeof(QVector2D) == 2 * sizeof(float), "points are read in place");
    QVector<Vertex> ring;
    clipEars(count, reinterpret_cast<QVector2D const *>(points), triangles, clockwise, ring);
}

void UpdateVertex(QVector<Vertex> &vertices, QVector2D const *points, int index)
{
    updateCorner(vertices.data(), vertices.size(), points, index);
}

int FindDegenerateTriangle(int count, unsigned int const *indices, float const *points, int start)
{
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
