/// \file
/// From the plain arrays of an OBJ file to what is uploaded.
#pragma once

#include "Scanning/OBJGeometry.h"

#include <OrvModel/ModelDataStream.h>

#include <QtCore/QSharedPointer>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVector>

namespace Halvard::Orv {

/// Everything that the GPU gets of a model but its materials.
struct PreparedModel
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
/// \return an empty model for a file that a builder would find not valid, for
///         one without positions, and for one with more corners or triangles than
///         32-bit signed counts of single numbers can tell, which no scan lets through
///         (see OBJScanLimits).
PreparedModel prepareGeometry(OBJGeometry &&geometry, const QStringList &groupOrder,
                              const void *builder);

} // namespace Halvard::Orv
