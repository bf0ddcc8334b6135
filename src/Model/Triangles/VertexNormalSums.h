/// \file
/// Smooth vertex normals, triangle by triangle.
#pragma once

#include "Lanes/Lanes.h"
#include "Lanes/UnitVectors.h"

#include <QtCore/QtGlobal>

#include <cstddef>
#include <cstring>
#include <vector>

namespace Halvard::Orv {

/// The normals of four triangles, given by their corners. They point to the side
/// from which the corners run clockwise; their length is the sine of the angle at
/// the first corner, and no other weight is wanted.
Q_ALWAYS_INLINE Points4 triangleNormals(const Points4 &p0, const Points4 &p1, const Points4 &p2)
{
    return cross(unit<NullVectors::BecomeZero>(p2 - p0), unit<NullVectors::BecomeZero>(p1 - p0));
}

/// Which vertices belong to which part of a model's triangles: each to the first part that has
/// it as a corner.
struct VertexOwners
{
    /// Per vertex the number of its part; null where vertices are numbered as the parts have them.
    const quint32 *partOf = nullptr;
    /// This part.
    quint32 part = 0;
    /// The first vertex that belongs to no earlier part, where there is no partOf.
    quint32 firstNew = 0;

    bool isOwn(quint32 vertex) const
    {
        return partOf ? partOf[vertex] == part : vertex >= firstNew;
    }
};

/// Additions to vertices of other parts, which must wait until those are done.
class DeferredNormals
{
public:
    void add(quint32 vertex, float x, float y, float z) { _entries.push_back({vertex, x, y, z}); }
    size_t count() const { return _entries.size(); }
    /// Adds everything, in order.
    void addTo(float *sums) const;

private:
    struct Entry
    {
        quint32 vertex;
        float x, y, z;
    };

    std::vector<Entry> _entries;
};

/// What TriMeshVertexNormals() computes, for callers that come by the triangles
/// bit by bit: each addition counts on from the one before.
///
/// Several of them may add to the same normals at the same time, each the triangles of its
/// part: it adds to the vertices that belong to its part, and defers the rest. When all are
/// done, what they deferred is added in the order of the parts. So each sum receives its
/// triangles in their order, as it would from one.
class VertexNormalSums
{
public:
    /// \param positions three floats a vertex; read when triangles are added.
    /// \param normals room for three floats a vertex; holds the sums, and in the
    ///        end the normals.
    VertexNormalSums(quint32 vertexCount, const float *positions, float *normals);

    /// For one part of the triangles.
    /// \param normals as above, but zeros already.
    /// \param deferred receives what is to be added later.
    VertexNormalSums(quint32 vertexCount, const float *positions, float *normals,
                     const VertexOwners &owners, DeferredNormals &deferred);

    /// Sets the normals of vertices to zero, from which sums begin.
    static void clear(float *normals, quint32 firstVertex, quint32 endVertex);
    /// As normalize() of the vertices from `firstVertex` on and before `endVertex`.
    static void normalize(float *normals, quint32 firstVertex, quint32 endVertex);

    /// Adds what is still to be added. Called before normalize() of a range.
    void finish() { addPending(); }

    /// Adds whole triangles to the sums of their vertices. A triangle with a vertex
    /// that does not exist is left out.
    /// \param indexCount a multiple of 3.
    void add(const quint32 *indices, size_t indexCount);

    /// Adds the normals of four triangles, all of whose corners exist.
    void addFour(const Points4 &normals, const quint32 *corners)
    {
        // The sums of four triangles wait for their divisions, which take long.
        // Doing the sums of the four before meanwhile keeps the machine busy.
        addPending();
        _pending = normals;
        std::memcpy(_pendingCorners, corners, sizeof _pendingCorners);
        _isPending = true;
    }

    /// Makes the sums unit vectors. Sums that count as zero stay as they are.
    void normalize();

private:
    void addPending()
    {
        if (!_isPending)
            return;
        // Copies, since for all the compiler knows the sums lie over this object.
        const Points4 normals = _pending;
        float *const sums = _normals;
        if (hasNaN(normals))
            addWithNaN(_pendingCorners);
        else if (_deferred && !areOwn(_pendingCorners))
            deferNumbers(normals, _pendingCorners);
        else
            addNumbers(normals, _pendingCorners, sums);
        _isPending = false;
    }

    static void addNumbers(const Points4 &normals, const quint32 *corners, float *sums)
    {
        const Float4 xy01 = __builtin_shufflevector(normals.x, normals.y, 0, 4, 1, 5);
        const Float4 xy23 = __builtin_shufflevector(normals.x, normals.y, 2, 6, 3, 7);
        addTriangle(corners, __builtin_shufflevector(xy01, xy01, 0, 1), normals.z[0], sums);
        addTriangle(corners + 3, __builtin_shufflevector(xy01, xy01, 2, 3), normals.z[1], sums);
        addTriangle(corners + 6, __builtin_shufflevector(xy23, xy23, 0, 1), normals.z[2], sums);
        addTriangle(corners + 9, __builtin_shufflevector(xy23, xy23, 2, 3), normals.z[3], sums);
    }

    static void addTriangle(const quint32 *corners, Float2 xy, float z, float *sums)
    {
        addToVertex(sums + 3 * static_cast<size_t>(corners[0]), xy, z);
        addToVertex(sums + 3 * static_cast<size_t>(corners[1]), xy, z);
        addToVertex(sums + 3 * static_cast<size_t>(corners[2]), xy, z);
    }

    static void addToVertex(float *sum, Float2 xy, float z)
    {
        storeTwo(sum, loadTwo(sum) + xy);
        sum[2] += z;
    }

    /// Whether all corners of four triangles belong to this part.
    bool areOwn(const quint32 *corners) const
    {
        if (_owners.partOf)
            return areOwnByTable(corners);
        const auto firstNew = static_cast<int>(_owners.firstNew);
        Mask4 fours[3];
        std::memcpy(fours, corners, sizeof fours);
        return lanesOf((fours[0] < firstNew) | (fours[1] < firstNew) | (fours[2] < firstNew)) == 0;
    }
    bool areOwnByTable(const quint32 *corners) const;

    void addWithNaN(const quint32 *corners);
    void deferNumbers(const Points4 &normals, const quint32 *corners);
    void addOne(const quint32 *corners);
    void addToVertexOrDefer(quint32 vertex, float x, float y, float z);

    quint32 _vertexCount;
    const float *_positions;
    float *_normals;
    /// Normals that are not in the sums yet, and the corners they belong to.
    Points4 _pending = {};
    quint32 _pendingCorners[12];
    bool _isPending = false;
    VertexOwners _owners;
    DeferredNormals *_deferred = nullptr;
};

} // namespace Halvard::Orv
