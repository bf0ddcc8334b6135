// Triangles and vertices are taken four at a time, each in a lane of its own, and
// all bits come out as from QVector3D: the operations on a lane are the same in
// the same order, and sums receive their triangles one by one.
#include "Triangles/VertexNormalSums.h"

#include <QtGui/QVector3D>

#include <algorithm>

namespace Halvard::Orv {

namespace {

/// Triangles or vertices in one go.
constexpr quint32 Lanes = 4;

QVector3D load(const float *triples, quint32 index)
{
    const float *xyz = triples + 3 * static_cast<size_t>(index);
    return {xyz[0], xyz[1], xyz[2]};
}

void store(float *triples, quint32 index, const QVector3D &value)
{
    float *xyz = triples + 3 * static_cast<size_t>(index);
    xyz[0] = value.x();
    xyz[1] = value.y();
    xyz[2] = value.z();
}

void addOne(const quint32 *corners, const float *positions, float *sums)
{
    const QVector3D p0 = load(positions, corners[0]);
    const QVector3D p1 = load(positions, corners[1]);
    const QVector3D p2 = load(positions, corners[2]);
    const QVector3D normal =
        QVector3D::crossProduct((p2 - p0).normalized(), (p1 - p0).normalized());
    for (int i = 0; i < 3; ++i)
        store(sums, corners[i], load(sums, corners[i]) + normal);
}

void normalizeOne(float *vectors, quint32 index)
{
    QVector3D vector = load(vectors, index);
    vector.normalize();
    store(vectors, index, vector);
}

bool areBelow(quint32 limit, const quint32 *corners, quint32 count)
{
    bool all = true;
    for (quint32 i = 0; i < count; ++i)
        all &= corners[i] < limit;
    return all;
}

} // namespace

VertexNormalSums::VertexNormalSums(quint32 vertexCount, const float *positions, float *normals)
    : _vertexCount(vertexCount), _positions(positions), _normals(normals)
{
    std::fill_n(normals, 3 * static_cast<size_t>(vertexCount), 0.0f);
}

void VertexNormalSums::add(const quint32 *indices, size_t indexCount)
{
    const quint32 *const end = indices + indexCount;
    while (indices != end) {
        // The last vertex has no float past it.
        if (end - indices >= 3 * Lanes && areBelow(_vertexCount - 1, indices, 3 * Lanes)) {
            addFour(triangleNormals(loadCorners<3>(indices, 0, _positions),
                                    loadCorners<3>(indices, 1, _positions),
                                    loadCorners<3>(indices, 2, _positions)),
                    indices);
            indices += 3 * Lanes;
            continue;
        }
        addPending();
        if (areBelow(_vertexCount, indices, 3))
            addOne(indices, _positions, _normals);
        indices += 3;
    }
}

/// Which of two different NaNs an operation returns depends on the order of its
/// operands, so that is left to QVector3D.
void VertexNormalSums::addWithNaN(const quint32 *corners)
{
    for (quint32 triangle = 0; triangle < Lanes; ++triangle)
        addOne(corners + 3 * triangle, _positions, _normals);
}

void VertexNormalSums::normalize()
{
    addPending();
    quint32 vertex = 0;
    for (; _vertexCount - vertex >= Lanes; vertex += Lanes) {
        float *const four = _normals + 3 * static_cast<size_t>(vertex);
        const Points4 units = unit<NullVectors::Stay>(loadPoints(four));
        if (hasNaN(units)) {
            for (quint32 lane = 0; lane < Lanes; ++lane)
                normalizeOne(_normals, vertex + lane);
        } else {
            storePoints(units, four);
        }
    }
    for (; vertex < _vertexCount; ++vertex)
        normalizeOne(_normals, vertex);
}

} // namespace Halvard::Orv
