#include "FaceShapes.h"

#include <algorithm>
#include <cmath>

namespace Halvard::Orv::Checking {

namespace {

struct Vector
{
    double x = 0;
    double y = 0;
    double z = 0;
};

Vector operator-(const Vector &a, const Vector &b)
{
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}

Vector cross(const Vector &a, const Vector &b)
{
    return {a.y * b.z - b.y * a.z, a.z * b.x - b.z * a.x, a.x * b.y - b.x * a.y};
}

double dot(const Vector &a, const Vector &b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

double squared(const Vector &a)
{
    return dot(a, a);
}

Vector pointAt(const float *xyz, int i)
{
    const float *point = xyz + 3 * static_cast<std::ptrdiff_t>(i);
    return {double(point[0]), double(point[1]), double(point[2])};
}

/// The ring seen from its first corner.
struct Ring
{
    Ring(int count, const float *xyz)
    {
        const Vector origin = pointAt(xyz, 0);
        Vector previous;
        const float *before = xyz + 3 * static_cast<std::ptrdiff_t>(count - 1);
        for (int i = 0; i < count; ++i) {
            const float *at = xyz + 3 * static_cast<std::ptrdiff_t>(i);
            if (at[0] == before[0] && at[1] == before[1] && at[2] == before[2])
                hasCoincidentCorners = true;
            before = at;
            const Vector current = pointAt(xyz, i) - origin;
            const Vector triangle = cross(previous, current);
            normal = {normal.x + triangle.x, normal.y + triangle.y, normal.z + triangle.z};
            greatestTriangle = std::max(greatestTriangle, squared(triangle));
            greatestLength =
                std::max({greatestLength, squared(current), squared(current - previous)});
            previous = current;
        }
    }

    Vector normal;
    double greatestTriangle = 0; ///< Squared length of a cross product, of those from corner 0.
    double greatestLength = 0;   ///< Squared.
    bool hasCoincidentCorners = false;
};

/// Whether the normal that the loader computes in floats certainly points to the side of the exact
/// one. Its sum is that of the positions' cross products, not of the edges': the same in exact
/// arithmetic, and nothing but rounding errors far from the origin.
bool isClearlyWound(int count, const float *xyz, const Vector &normal)
{
    float x = 0;
    float y = 0;
    float z = 0;
    const float *q = xyz + 3 * static_cast<std::ptrdiff_t>(count - 1);
    for (int i = 0; i < count; ++i) {
        const float *p = xyz + 3 * static_cast<std::ptrdiff_t>(i);
        x += q[1] * p[2] - q[2] * p[1];
        y += q[2] * p[0] - q[0] * p[2];
        z += q[0] * p[1] - q[1] * p[0];
        q = p;
    }
    const Vector sum{double(x), double(y), double(z)};
    const double agreement = dot(sum, normal);
    return agreement > 0 && agreement * agreement > 0.25 * squared(sum) * squared(normal);
}

bool isSplitWrongly(const float *xyz, const Vector &normal)
{
    const Vector p0 = pointAt(xyz, 0);
    const Vector p1 = pointAt(xyz, 1);
    const Vector p2 = pointAt(xyz, 2);
    const Vector p3 = pointAt(xyz, 3);
    const double least = -LeastBackwardArea * squared(normal);
    const bool leaves = dot(cross(p1 - p0, p3 - p0), normal) < least ||
                        dot(cross(p2 - p1, p3 - p1), normal) < least;
    return leaves && dot(cross(p1 - p0, p2 - p0), normal) > 0 &&
           dot(cross(p2 - p0, p3 - p0), normal) > 0;
}

bool isNotPlanar(int count, const float *xyz, const Ring &ring)
{
    const Vector origin = pointAt(xyz, 0);
    double lowest = 0;
    double highest = 0;
    for (int i = 1; i < count; ++i) {
        const double height = dot(pointAt(xyz, i) - origin, ring.normal);
        lowest = std::min(lowest, height);
        highest = std::max(highest, height);
    }
    const double bulge = highest - lowest; // times the normal's length
    return bulge * bulge > MostBulge * MostBulge * ring.greatestLength * squared(ring.normal);
}

/// Whether the ring positions of a triangle follow one another as in the ring.
bool runsForward(int a, int b, int c)
{
    return (a < b) + (b < c) + (c < a) == 2;
}

} // namespace

FaceShape FaceShapes::examine(int count, const float *xyz)
{
    constexpr int FewestCorners = 3;
    constexpr int MostFixedCorners = 4; // so many have the same triangles whatever their positions
    FaceShape shape;
    if (count < FewestCorners)
        return shape;
    const Ring ring(count, xyz);
    shape.triangles = count - 2;
    shape.normal[0] = ring.normal.x;
    shape.normal[1] = ring.normal.y;
    shape.normal[2] = ring.normal.z;
    const bool isFinite = std::isfinite(squared(ring.normal) + ring.greatestLength);
    if (isFinite) {
        shape.hasCoincidentCorners = ring.hasCoincidentCorners;
        shape.hasNoArea = ring.greatestTriangle <= ThinnestHeight * ThinnestHeight *
                                                       ring.greatestLength * ring.greatestLength;
    }
    const bool hasSide = isFinite && !shape.hasNoArea && squared(ring.normal) > 0;
    if (count > MostFixedCorners || (hasSide && !isClearlyWound(count, xyz, ring.normal)))
        compareWithLibrary(count, xyz, shape);
    if (!hasSide) {
        shape.isTurnedOver = false;
        return shape;
    }
    if (count == MostFixedCorners && !shape.isTurnedOver)
        shape.isSplitWrongly = isSplitWrongly(xyz, ring.normal);
    if (count > FewestCorners)
        shape.isNotPlanar = isNotPlanar(count, xyz, ring);
    return shape;
}

void FaceShapes::compareWithLibrary(int count, const float *xyz, FaceShape &shape)
{
    while (_ring.size() < static_cast<size_t>(count))
        _ring.push_back(static_cast<int>(_ring.size()));
    const QVector<int> &triangles = _triangulation.triangulate(count, _ring.data(), xyz);
    shape.triangles = triangles.size() / 3;
    shape.isTurnedOver =
        shape.triangles > 0 && !runsForward(triangles[0], triangles[1], triangles[2]);
}

} // namespace Halvard::Orv::Checking
