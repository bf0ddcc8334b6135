#include "reference/EarClipping.h"

#include <QtCore/QtDebug>

#include <cmath>

namespace OrvReference {

namespace {

struct Corner
{
    int next;
    int prev;
    float crossZ = 0.0f;
    float cosAngle = 0.0f;
    bool isActive = true;
    bool isEar = false;
};

using Ring = std::vector<Corner>;
using Points = std::vector<QVector2D>;

template <typename Container>
auto &at(Container &container, int index)
{
    return container[static_cast<std::size_t>(index)];
}

float cross(const QVector2D &a, const QVector2D &b)
{
    return a.x() * b.y() - b.x() * a.y();
}

/// Whether another corner of the ring lies in or on the triangle of `v` and its neighbours.
bool isBlocked(const Ring &ring, const Points &points, int v)
{
    const int n = at(ring, v).next;
    const int p = at(ring, v).prev;
    const QVector2D e1 = (at(points, n) - at(points, v)).normalized();
    const QVector2D e2 = (at(points, p) - at(points, n)).normalized();
    const QVector2D e3 = (at(points, v) - at(points, p)).normalized();
    const auto isSamePoint = [](const QVector2D &a, const QVector2D &b) {
        return a.x() == b.x() && a.y() == b.y();
    };
    for (int j = 0; j < static_cast<int>(ring.size()); ++j) {
        if (j == v || j == n || j == p || !at(ring, j).isActive)
            continue;
        const QVector2D point = at(points, j);
        if (isSamePoint(point, at(points, v)) || isSamePoint(point, at(points, n)) ||
            isSamePoint(point, at(points, p)))
            continue;
        const QVector2D d1 = (point - at(points, v)).normalized();
        const QVector2D d2 = (point - at(points, n)).normalized();
        const QVector2D d3 = (point - at(points, p)).normalized();
        if (cross(e1, d1) >= 0.0f && cross(e2, d2) >= 0.0f && cross(e3, d3) >= 0.0f)
            return true;
    }
    return false;
}

void evaluate(Ring &ring, const Points &points, int v)
{
    Corner &corner = at(ring, v);
    const QVector2D a = (at(points, corner.next) - at(points, v)).normalized();
    const QVector2D b = (at(points, corner.prev) - at(points, v)).normalized();
    corner.crossZ = cross(a, b);
    corner.cosAngle = QVector2D::dotProduct(a, b);
    corner.isEar = corner.crossZ > 0.0f;
    if (corner.isEar)
        corner.isEar = !isBlocked(ring, points, v);
}

/// The sharpest ear, the first of them when several are; -1 when there is none.
int chooseEar(const Ring &ring)
{
    int chosen = -1;
    for (int i = 0; i < static_cast<int>(ring.size()); ++i) {
        const Corner &corner = at(ring, i);
        if (!corner.isActive || !corner.isEar)
            continue;
        if (chosen < 0 || corner.cosAngle > at(ring, chosen).cosAngle)
            chosen = i;
    }
    return chosen;
}

Ring makeRing(int count, bool clockwise)
{
    Ring ring;
    for (int i = 0; i < count; ++i) {
        Corner corner{(i + 1) % count, (i + count - 1) % count};
        if (clockwise)
            std::swap(corner.next, corner.prev);
        ring.push_back(corner);
    }
    return ring;
}

/// Whether the projected ring runs clockwise.
bool isClockwise(const Points &points)
{
    const int count = static_cast<int>(points.size());
    float sum = 0.0f;
    for (int i = 0; i < count; ++i) {
        const QVector2D before = at(points, (i + count - 1) % count);
        const QVector2D point = at(points, i);
        sum += (before.y() + point.y()) * (point.x() - before.x());
    }
    return sum > 0.0f;
}

QVector3D faceNormal(const std::vector<quint32> &face, const std::vector<float> &positions)
{
    QVector3D sum(0.0f, 0.0f, 0.0f);
    if (face.empty())
        return sum;
    QVector3D before = positionAt(positions, face.back());
    for (const quint32 vertex : face) {
        const QVector3D position = positionAt(positions, vertex);
        sum += QVector3D::crossProduct(before, position);
        before = position;
    }
    sum.normalize();
    return sum;
}

Points project(const std::vector<quint32> &face, const std::vector<float> &positions,
               const QVector3D &normal)
{
    QVector3D reference(0.0f, 1.0f, 0.0f);
    if (std::fabs(QVector3D::dotProduct(normal, reference)) > 0.9f)
        reference = QVector3D(0.0f, 0.0f, 1.0f);
    const QVector3D u = QVector3D::crossProduct(reference, normal).normalized();
    const QVector3D v = QVector3D::crossProduct(normal, u).normalized();
    Points points;
    for (std::size_t i = 0; i < face.size(); ++i) {
        if (i == 0) {
            points.emplace_back(0.0f, 0.0f);
            continue;
        }
        const QVector3D offset = positionAt(positions, face[i]) - positionAt(positions, face[0]);
        points.emplace_back(QVector3D::dotProduct(u, offset), QVector3D::dotProduct(v, offset));
    }
    return points;
}

} // namespace

std::vector<int> clipEars(const std::vector<QVector2D> &points, bool clockwise)
{
    const int count = static_cast<int>(points.size());
    if (count < 3) {
        qWarning("Cannot triangulate a polygon with fewer than 3 vertices");
        return {};
    }
    if (count == 3)
        return clockwise ? std::vector<int>{0, 2, 1} : std::vector<int>{0, 1, 2};
    if (count == 4)
        return clockwise ? std::vector<int>{0, 3, 1, 1, 3, 2} : std::vector<int>{0, 1, 3, 1, 2, 3};

    std::vector<int> triangles;
    Ring ring = makeRing(count, clockwise);
    for (int i = 0; i < count; ++i)
        evaluate(ring, points, i);
    for (int round = 0; round < count - 3; ++round) {
        const int ear = chooseEar(ring);
        if (ear < 0) {
            qWarning("Unable to triangulate polygon.");
            return {};
        }
        const int prev = at(ring, ear).prev;
        const int next = at(ring, ear).next;
        triangles.insert(triangles.end(), {prev, ear, next});
        at(ring, prev).next = next;
        at(ring, next).prev = prev;
        at(ring, ear).isActive = false;
        evaluate(ring, points, prev);
        evaluate(ring, points, next);
    }
    int last = 0;
    while (!at(ring, last).isActive)
        ++last;
    triangles.insert(triangles.end(), {at(ring, last).prev, last, at(ring, last).next});
    return triangles;
}

std::vector<quint32> triangulateFace(const std::vector<quint32> &face,
                                     const std::vector<float> &positions)
{
    const QVector3D normal = faceNormal(face, positions);
    const Points points = project(face, positions, normal);
    std::vector<quint32> triangles;
    for (const int corner : clipEars(points, isClockwise(points)))
        triangles.push_back(at(face, corner));
    return triangles;
}

QVector3D positionAt(const std::vector<float> &positions, quint32 vertex)
{
    const std::size_t first = 3 * static_cast<std::size_t>(vertex);
    return {positions[first], positions[first + 1], positions[first + 2]};
}

} // namespace OrvReference
