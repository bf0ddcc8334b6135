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

QVector3D normalOf(const quint32 *corners, const float *positions)
{
    const QVector3D p0 = load(positions, corners[0]);
    const QVector3D p1 = load(positions, corners[1]);
    const QVector3D p2 = load(positions, corners[2]);
    return QVector3D::crossProduct((p2 - p0).normalized(), (p1 - p0).normalized());
}

/// In one place for all: which of two NaNs an addition gives depends on the order of its
/// operands, which is the compiler's choice.
Q_NEVER_INLINE void addToSum(float *sums, quint32 vertex, const QVector3D &normal)
{
    store(sums, vertex, load(sums, vertex) + normal);
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
    clear(normals, 0, vertexCount);
}

VertexNormalSums::VertexNormalSums(quint32 vertexCount, const float *positions, float *normals,
                                   const VertexOwners &owners, DeferredNormals &deferred)
    : _vertexCount(vertexCount), _positions(positions), _normals(normals), _owners(owners),
      _deferred(&deferred)
{}

void VertexNormalSums::clear(float *normals, quint32 firstVertex, quint32 endVertex)
{
    std::fill(normals + 3 * static_cast<size_t>(firstVertex),
              normals + 3 * static_cast<size_t>(endVertex), 0.0f);
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
            addOne(indices);
        indices += 3;
    }
}

/// Which of two different NaNs an operation returns depends on the order of its
/// operands, so that is left to QVector3D.
void VertexNormalSums::addWithNaN(const quint32 *corners)
{
    for (quint32 triangle = 0; triangle < Lanes; ++triangle)
        addOne(corners + 3 * triangle);
}

void VertexNormalSums::addOne(const quint32 *corners)
{
    const QVector3D normal = normalOf(corners, _positions);
    for (int i = 0; i < 3; ++i) {
        if (_deferred)
            addToVertexOrDefer(corners[i], normal.x(), normal.y(), normal.z());
        else
            addToSum(_normals, corners[i], normal);
    }
}

void VertexNormalSums::addToVertexOrDefer(quint32 vertex, float x, float y, float z)
{
    if (_owners.isOwn(vertex))
        addToSum(_normals, vertex, {x, y, z});
    else
        _deferred->add(vertex, x, y, z);
}

void VertexNormalSums::deferNumbers(const Points4 &normals, const quint32 *corners)
{
    for (quint32 triangle = 0; triangle < Lanes; ++triangle) {
        for (quint32 i = 0; i < 3; ++i)
            addToVertexOrDefer(corners[3 * triangle + i], normals.x[triangle], normals.y[triangle],
                               normals.z[triangle]);
    }
}

bool VertexNormalSums::areOwnByTable(const quint32 *corners) const
{
    bool all = true;
    for (quint32 i = 0; i < 3 * Lanes; ++i)
        all &= _owners.partOf[corners[i]] == _owners.part;
    return all;
}

void DeferredNormals::addTo(float *sums) const
{
    for (const Entry &entry : _entries)
        addToSum(sums, entry.vertex, {entry.x, entry.y, entry.z});
}

void VertexNormalSums::normalize()
{
    addPending();
    normalize(_normals, 0, _vertexCount);
}

void VertexNormalSums::normalize(float *normals, quint32 firstVertex, quint32 endVertex)
{
    quint32 vertex = firstVertex;
    for (; endVertex - vertex >= Lanes; vertex += Lanes) {
        float *const four = normals + 3 * static_cast<size_t>(vertex);
        const Points4 units = unit<NullVectors::Stay>(loadPoints(four));
        if (hasNaN(units)) {
            for (quint32 lane = 0; lane < Lanes; ++lane)
                normalizeOne(normals, vertex + lane);
        } else {
            storePoints(units, four);
        }
    }
    for (; vertex < endVertex; ++vertex)
        normalizeOne(normals, vertex);
}

} // namespace Halvard::Orv
