#include "support/PlainGeometry.h"

#include <cmath>

namespace OrvTest {

namespace {

float cross(const QVector2D &first, const QVector2D &second)
{
    return first.x() * second.y() - second.x() * first.y();
}

QVector3D positionOf(const std::vector<float> &positions, int vertex)
{
    const std::size_t at = 3 * static_cast<std::size_t>(vertex);
    return {positions[at], positions[at + 1], positions[at + 2]};
}

/// A ring that shrinks as its ears are clipped.
struct PlainRing
{
    PlainRing(const std::vector<QVector2D> &ringPoints, bool clockwise) : points(ringPoints)
    {
        const int count = static_cast<int>(points.size());
        for (int i = 0; i < count; ++i) {
            next.push_back((i + 1) % count);
            prev.push_back((i + count - 1) % count);
        }
        if (clockwise)
            next.swap(prev);
        active.assign(points.size(), true);
        corners.resize(points.size());
        for (int i = 0; i < count; ++i)
            evaluate(i);
    }

    void evaluate(int i)
    {
        const std::size_t at = static_cast<std::size_t>(i);
        corners[at] = plainCorner(points, active, i, next[at], prev[at]);
    }

    /// -1 when there is no ear.
    int sharpestEar() const
    {
        int best = -1;
        for (std::size_t i = 0; i < points.size(); ++i) {
            if (!active[i] || !corners[i].isEar)
                continue;
            if (best < 0 || corners[i].cosAngle > corners[static_cast<std::size_t>(best)].cosAngle)
                best = static_cast<int>(i);
        }
        return best;
    }

    void unlink(int ear)
    {
        const int before = prev[static_cast<std::size_t>(ear)];
        const int after = next[static_cast<std::size_t>(ear)];
        next[static_cast<std::size_t>(before)] = after;
        prev[static_cast<std::size_t>(after)] = before;
        active[static_cast<std::size_t>(ear)] = false;
        evaluate(before);
        evaluate(after);
    }

    void appendTriangle(int corner, std::vector<int> &triangles) const
    {
        triangles.push_back(prev[static_cast<std::size_t>(corner)]);
        triangles.push_back(corner);
        triangles.push_back(next[static_cast<std::size_t>(corner)]);
    }

    std::vector<QVector2D> points;
    std::vector<int> next;
    std::vector<int> prev;
    std::vector<bool> active;
    std::vector<PlainCorner> corners;
};

} // namespace

PlainCorner plainCorner(const std::vector<QVector2D> &points, const std::vector<bool> &active,
                        int corner, int next, int prev)
{
    const QVector2D v = points[static_cast<std::size_t>(corner)];
    const QVector2D n = points[static_cast<std::size_t>(next)];
    const QVector2D p = points[static_cast<std::size_t>(prev)];
    const QVector2D a = (n - v).normalized();
    const QVector2D b = (p - v).normalized();
    PlainCorner result{cross(a, b), QVector2D::dotProduct(a, b), false};
    if (!(result.crossZ > 0.0f))
        return result;
    const QVector2D fromV = (n - v).normalized();
    const QVector2D fromN = (p - n).normalized();
    const QVector2D fromP = (v - p).normalized();
    for (std::size_t j = 0; j < points.size(); ++j) {
        const int position = static_cast<int>(j);
        if (position == corner || position == next || position == prev || !active[j])
            continue;
        const QVector2D &point = points[j];
        if (point == v || point == n || point == p)
            continue;
        // Inside the triangle or on its border.
        if (cross(fromV, (point - v).normalized()) >= 0.0f &&
            cross(fromN, (point - n).normalized()) >= 0.0f &&
            cross(fromP, (point - p).normalized()) >= 0.0f)
            return result;
    }
    result.isEar = true;
    return result;
}

std::vector<int> plainTriangulate2D(const std::vector<QVector2D> &points, bool clockwise)
{
    if (points.size() < 3)
        return {};
    if (points.size() == 3)
        return clockwise ? std::vector<int>{0, 2, 1} : std::vector<int>{0, 1, 2};
    if (points.size() == 4)
        return clockwise ? std::vector<int>{0, 3, 1, 1, 3, 2} : std::vector<int>{0, 1, 3, 1, 2, 3};

    PlainRing ring(points, clockwise);
    std::vector<int> triangles;
    for (std::size_t clipped = 0; clipped < points.size() - 3; ++clipped) {
        const int ear = ring.sharpestEar();
        if (ear < 0)
            return {};
        ring.appendTriangle(ear, triangles);
        ring.unlink(ear);
    }
    int remaining = 0;
    while (!ring.active[static_cast<std::size_t>(remaining)])
        ++remaining;
    ring.appendTriangle(remaining, triangles);
    return triangles;
}

QVector3D plainFaceNormal(const std::vector<int> &face, const std::vector<float> &positions)
{
    QVector3D sum;
    if (face.empty())
        return sum;
    QVector3D before = positionOf(positions, face.back());
    for (const int vertex : face) {
        const QVector3D position = positionOf(positions, vertex);
        sum += QVector3D::crossProduct(before, position);
        before = position;
    }
    sum.normalize();
    return sum;
}

std::vector<int> plainTriangulate3D(const QVector3D &normal, const std::vector<int> &face,
                                    const std::vector<float> &positions)
{
    QVector3D axis(0.0f, 1.0f, 0.0f);
    if (std::fabs(QVector3D::dotProduct(normal, axis)) > 0.9f)
        axis = QVector3D(0.0f, 0.0f, 1.0f);
    const QVector3D u = QVector3D::crossProduct(axis, normal).normalized();
    const QVector3D v = QVector3D::crossProduct(normal, u).normalized();

    std::vector<QVector2D> ring;
    for (const int vertex : face) {
        const QVector3D d = positionOf(positions, vertex) - positionOf(positions, face.front());
        ring.emplace_back(QVector3D::dotProduct(u, d), QVector3D::dotProduct(v, d));
    }
    if (!ring.empty())
        ring.front() = QVector2D(0.0f, 0.0f);

    float area = 0.0f;
    for (std::size_t i = 0; i < ring.size(); ++i) {
        const QVector2D &before = ring[i == 0 ? ring.size() - 1 : i - 1];
        area += (before.y() + ring[i].y()) * (ring[i].x() - before.x());
    }
    return plainTriangulate2D(ring, area > 0.0f);
}

std::vector<float> plainVertexNormals(const std::vector<float> &positions,
                                      const std::vector<unsigned> &indices)
{
    std::vector<QVector3D> sums(positions.size() / 3);
    for (std::size_t t = 0; t + 2 < indices.size(); t += 3) {
        const QVector3D first = positionOf(positions, static_cast<int>(indices[t]));
        const QVector3D second = positionOf(positions, static_cast<int>(indices[t + 1]));
        const QVector3D third = positionOf(positions, static_cast<int>(indices[t + 2]));
        const QVector3D normal =
            QVector3D::crossProduct((third - first).normalized(), (second - first).normalized());
        for (std::size_t corner = 0; corner < 3; ++corner)
            sums[indices[t + corner]] += normal;
    }
    std::vector<float> normals;
    for (QVector3D &sum : sums) {
        sum.normalize();
        normals.insert(normals.end(), {sum.x(), sum.y(), sum.z()});
    }
    return normals;
}

} // namespace OrvTest
