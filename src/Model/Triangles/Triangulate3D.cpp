#include <OrvModel/Triangulate3D.h>

#include "Lanes/FloatingPointState.h"
#include "Triangles/FaceTriangulation.h"

#include <QtGui/QVector3D>

#include <algorithm>
#include <cmath>

namespace Halvard::Orv {

namespace {

QVector3D positionAt(float const *positions, int index)
{
    const float *xyz = positions + 3 * static_cast<ptrdiff_t>(index);
    return {xyz[0], xyz[1], xyz[2]};
}

/// Normalised sum of the cross products of successive *positions*. The edges
/// would do as well in exact arithmetic; in floats the two differ far from the
/// origin, where the winding test then turns the face over.
QVector3D ringNormal(int count, int const *indices, float const *positions)
{
    QVector3D sum;
    if (count < 1)
        return sum;
    QVector3D previous = positionAt(positions, indices[count - 1]);
    for (int i = 0; i < count; ++i) {
        const QVector3D current = positionAt(positions, indices[i]);
        sum += QVector3D::crossProduct(previous, current);
        previous = current;
    }
    sum.normalize();
    return sum;
}

/// Two axes across the normal, such that (u, v, normal) is right-handed.
struct PlaneAxes
{
    explicit PlaneAxes(QVector3D const &normal)
    {
        QVector3D reference(0.0f, 1.0f, 0.0f);
        if (std::fabs(QVector3D::dotProduct(normal, reference)) > 0.9f)
            reference = QVector3D(0.0f, 0.0f, 1.0f);
        u = QVector3D::crossProduct(reference, normal).normalized();
        v = QVector3D::crossProduct(normal, u).normalized();
    }

    QVector3D u;
    QVector3D v;
};

/// Coordinates of the ring in the plane, with its first corner as the origin.
void project(PlaneAxes const &axes, int count, int const *indices, float const *positions,
             QVector<QVector2D> &projected)
{
    projected.resize(qMax(count, 0));
    if (count < 1)
        return;
    const QVector3D origin = positionAt(positions, indices[0]);
    projected[0] = QVector2D(0.0f, 0.0f);
    for (int i = 1; i < count; ++i) {
        const QVector3D offset = positionAt(positions, indices[i]) - origin;
        projected[i] =
            QVector2D(QVector3D::dotProduct(axes.u, offset), QVector3D::dotProduct(axes.v, offset));
    }
}

bool runsClockwise(QVector<QVector2D> const &ring)
{
    float doubledArea = 0.0f;
    for (int i = 0; i < ring.size(); ++i) {
        const QVector2D before = ring.at(i == 0 ? ring.size() - 1 : i - 1);
        const QVector2D current = ring.at(i);
        doubledArea += (before.y() + current.y()) * (current.x() - before.x());
    }
    return doubledArea > 0.0f;
}

/// Adds the vertex numbers behind positions within a face. A narrower output
/// keeps their low bits. Room grows by doubling: callers add many faces to one
/// list, and reserving exactly would copy it for each.
template <typename Index>
void appendMapped(const QVector<int> &triangles, int const *indices, QVector<Index> &out)
{
    const int needed = out.size() + triangles.size();
    if (needed > out.capacity())
        out.reserve(qMax(needed, 2 * out.size()));
    for (const int position : triangles)
        out.append(static_cast<Index>(indices[position]));
}

} // namespace

const QVector<int> &FaceTriangulation::triangulate(QVector3D const &normal, int count,
                                                   int const *indices, float const *positions)
{
    project(PlaneAxes(normal), count, indices, positions, _projected);
    _clipping.triangulate(count, _projected.constData(), _triangles, runsClockwise(_projected));
    return _triangles;
}

const QVector<int> &FaceTriangulation::triangulate(int count, int const *indices,
                                                   float const *positions)
{
    return triangulate(ringNormal(count, indices, positions), count, indices, positions);
}

void Triangulate3DImpl(QVector3D const &normal, int count, int const *indices,
                       float const *positions, QVector<int> &triangles)
{
    const FloatingPointState state;
    FaceTriangulation face;
    const QVector<int> &cut = face.triangulate(normal, count, indices, positions);
    triangles.resize(cut.size()); // an assignment would give up the room that the caller made
    std::copy(cut.cbegin(), cut.cend(), triangles.begin());
}

void Triangulate3D(QVector3D const &normal, int count, int const *indices, float const *positions,
                   QVector<unsigned int> &out)
{
    const FloatingPointState state;
    FaceTriangulation face;
    appendMapped(face.triangulate(normal, count, indices, positions), indices, out);
}

void Triangulate3D(int count, int const *indices, float const *positions,
                   QVector<unsigned int> &out)
{
    const FloatingPointState state;
    Triangulate3D(ringNormal(count, indices, positions), count, indices, positions, out);
}

void Triangulate3D(QVector3D const &normal, int count, int const *indices, float const *positions,
                   QVector<unsigned short> &out)
{
    const FloatingPointState state;
    FaceTriangulation face;
    appendMapped(face.triangulate(normal, count, indices, positions), indices, out);
}

void Triangulate3D(int count, int const *indices, float const *positions,
                   QVector<unsigned short> &out)
{
    const FloatingPointState state;
    Triangulate3D(ringNormal(count, indices, positions), count, indices, positions, out);
}

} // namespace Halvard::Orv
