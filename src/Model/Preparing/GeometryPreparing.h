/// \file
/// From the plain arrays of an OBJ file to what is uploaded.
//
// What one block of memory is called on its way, one entry per corner of the file. Each
// meaning has a name of its own; the block is moved from one to the next:
//
//     OBJAttribute::indices        position index of each corner    (scanOBJFile)
//             |
//     IndexTuples::tupleOfCorner   tuple of each corner             (numberIndexTuples)
//             |
//     WeldedCorners::vertexOfCorner   vertex of each corner         (weldCorners)
//             |
//     triangleIndices              three vertices a triangle        (FaceTriangles)
//                                  only where no face has more than three corners; otherwise
//                                  the triangles are written to a block of their own
//
// The indices into normals and texture coordinates likewise become those of the tuples,
// then of the vertices, and in the end the vertices' values.
#pragma once

#include "Preparing/PreparingSizes.h"
#include "Scanning/OBJGeometry.h"

#include <OrvModel/ModelDataStream.h>

#include <QtCore/QSharedPointer>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVector>

namespace Halvard::Orv {

class Work;

/// Everything that the GPU gets of a model but its materials.
struct PreparedGeometry
{
    struct Attribute
    {
        QString name;
        QSharedPointer<ModelDataStream> values; ///< GL_FLOAT, one value per GPU vertex
        int components;
    };

    /// The triangles of one material group within `indices`.
    struct Command
    {
        QString group;
        quint32 firstIndex;
        quint32 count;
    };

    /// Whether there is nothing to upload, not even vertices.
    bool isEmpty() const { return attributes.isEmpty(); }

    /// "va_Vertex", "va_Normal", and "va_TexCoord" if the file has some.
    QVector<Attribute> attributes;
    /// Vertex numbers, three a triangle, GL_UNSIGNED_INT. Groups lie one behind
    /// the other in the order of `commands`.
    QSharedPointer<ModelDataStream> indices;
    QVector<Command> commands;
    /// \name Faces of these groups that gave no triangle
    /// @{
    UndrawnFaces withTooFewCorners;
    UndrawnFaces notTriangulated;
    /// @}
};

/// Welds, triangulates, and computes normals where the file has none. Gives to
/// the bit what a ModelBuilder makes of the same lines added one by one, and logs
/// the same.
///
/// \param geometry is used up: its arrays go as soon as nobody needs them.
/// \param groupOrder names of material groups, in the order in which the builder
///        walks through its own. Groups without faces give no command; groups
///        that are not named give no triangles.
/// \param builder whose address the message on welding shows.
/// \param work null: on the calling thread alone, which nobody stops. Otherwise throws
///        WorkStopped, and whatever its callback throws.
/// \return an empty model for a file that a builder would find not valid, for
///         one without positions, and for one with more corners or triangles than
///         32-bit signed counts of single numbers can tell, which no scan lets through
///         (see OBJScanLimits).
PreparedGeometry prepareGeometry(OBJGeometry &&geometry, const QStringList &groupOrder,
                                 const void *builder, Work *work = nullptr,
                                 const PreparingSizes &sizes = {});

} // namespace Halvard::Orv
