/// \file
/// What an OBJ file holds, as plain arrays: the hand-over from the byte scanner
/// to welding and triangulation.
#pragma once

#include "Memory/GrowArray.h"
#include "Reports/UndrawnFaces.h"

#include <QtCore/QMap>
#include <QtCore/QString>
#include <QtCore/QtGlobal>

#include <vector>

namespace Halvard::Orv {

/// Successive entries of an array.
struct IndexRange
{
    size_t begin;
    size_t end;
};

/// One kind of values of the file, "v", "vn" or "vt", and the indices into them.
struct OBJAttribute
{
    explicit OBJAttribute(unsigned componentCount) : components(componentCount) {}

    unsigned components;
    /// `components` floats per value.
    GrowArray<float> values;
    /// Zero-based index per corner, as the file gives it: absent
    /// (OBJReader::AbsentIndex) and wild ones included. Entry i belongs to corner
    /// i of the file. Holds entries only for the faces read after the first
    /// value, so it may be shorter than the corner count, never longer.
    GrowArray<quint32> indices;

    /// \name Reading a piece of a file
    /// Pieces are read without knowing how many values come before them.
    /// @{

    /// Whether there are values before the piece.
    bool existsBefore = false;
    /// Indices that count back, which are off by the number of values before the piece;
    /// null while a whole file is read. Absent indices among them are right.
    std::vector<IndexRange> *relativeIndices = nullptr;

    /// Notes that the indices from `begin` on, and before `end`, count back.
    void noteRelativeIndices(size_t begin, size_t end)
    {
        if (!relativeIndices || begin == end)
            return;
        if (!relativeIndices->empty() && relativeIndices->back().end == begin)
            relativeIndices->back().end = end;
        else
            relativeIndices->push_back({begin, end});
    }

    /// @}

    /// Whether the file has had at least one value line.
    bool exists() const { return existsBefore || !values.isEmpty(); }
    quint32 valueCount() const { return static_cast<quint32>(values.size() / components); }
};

/// Corner counts of faces, a byte each: nearly all faces have three or four
/// corners. The byte 255 stands for the next entry of `large`.
struct CornerCounts
{
    static constexpr quint8 Escape = 255;

    GrowArray<quint8> small;
    GrowArray<quint32> large;

    void append(quint32 count)
    {
        if (count < Escape) {
            small.append(static_cast<quint8>(count));
        } else {
            small.append(Escape);
            large.append(count);
        }
    }

    /// Number of faces of each corner count that there is.
    QMap<quint32, quint64> histogram() const;
};

/// A place between faces: how much comes before it.
struct FacePlace
{
    quint32 face = 0;
    quint32 corner = 0;
    quint32 large = 0; ///< entries of CornerCounts::large
};

/// Successive faces of one material: `faceCount` faces from `firstFace` on.
/// Faces whose material no group stands for are in no run.
struct FaceRun
{
    quint32 firstFace;
    quint32 faceCount;
    /// First corner of the first face, in file order.
    quint32 firstCorner;
    /// Entry of CornerCounts::large that the run's first escape uses.
    quint32 firstLarge;
};

/// Faces whose material no library has defined when they are read.
struct FacesWithoutMaterial
{
    QString material;
    UndrawnFaces faces;
};

/// The faces of one material group, in file order.
struct FaceGroup
{
    QString material;
    std::vector<FaceRun> runs;
};

struct OBJGeometry
{
    OBJAttribute positions{3};
    OBJAttribute normals{3};
    OBJAttribute texCoords{2};
    CornerCounts cornerCounts;
    quint32 cornerCount = 0;
    /// Size of the file. What is made of it should take no more.
    size_t textBytes = 0;
    /// Groups that have at least one face, in the order of their first face.
    std::vector<FaceGroup> groups;
    /// Per name of an unknown material, in the order of their first face.
    std::vector<FacesWithoutMaterial> withoutMaterial;

    quint32 faceCount() const { return static_cast<quint32>(cornerCounts.small.size()); }
    /// Behind the last face.
    FacePlace endOfFaces() const
    {
        return {faceCount(), cornerCount, static_cast<quint32>(cornerCounts.large.size())};
    }
};

} // namespace Halvard::Orv
