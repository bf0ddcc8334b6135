/// \file
/// What a ModelBuilder holds, for the sources that work on it.
#pragma once

#include <OrvModel/ModelBuilder.h>

#include "Builder/MaterialGroups.h"

#include <OrvGL/DrawBuffers.h>

#include <QtCore/QMap>
#include <QtCore/QSharedPointer>
#include <QtCore/QString>
#include <QtCore/QVector>

namespace Halvard::Orv {

/// No hash tables: equal builders upload the same bytes, whatever the process's hash seed
/// is.
struct ModelBuilderState
{
    using StreamPointer = QSharedPointer<ModelDataStream>;
    using Commands = QVector<DrawElementsIndirectCommand>;

    /// The streams of one attribute. The first two are filled by the caller; the others
    /// are null until they are built, and `gpuIndices` is one stream for all attributes.
    struct VertexAttribute
    {
        QSharedPointer<ModelDataStream> values;
        QSharedPointer<ModelDataStream> indices;
        QSharedPointer<ModelDataStream> gpuValues;
        QSharedPointer<ModelDataStream> gpuIndices;
        int components = 0;
    };

    ModelBuilderState(const QSharedPointer<ModelDataStreamAllocator> &streamAllocator,
                      quint64 maskOfFlags);

    /// A stream from the allocator; null when there is no memory for it.
    StreamPointer allocate(unsigned type, unsigned long count) const;

    /// Whether there are combined indices, and every attribute has its GPU streams.
    bool hasGPUStreams() const;
    void dropGPUStreams();

    /// Files the command of a group: `count` entries of the combined indices from
    /// `firstIndex` on.
    void addDrawCommand(const QString &group, quint64 flags, unsigned firstIndex, unsigned count);
    /// Leaves no command, and null in place of the combined indices: an empty stream
    /// might not be had now.
    void dropCommands();

    QSharedPointer<ModelDataStreamAllocator> allocator;
    MaterialGroups materialGroups;
    StreamPointer verticesPerFace; ///< GL_UNSIGNED_INT: corners of each face
    QMap<QString, VertexAttribute> vertexAttributes;
    QString normalsAttribute; ///< null unless generateNormals() was called
    StreamPointer gpuIndices; ///< GL_UNSIGNED_INT: the triangles of all groups
    /// Per masked flags the commands, and for each command the name of its group.
    QMap<quint64, Commands> drawCommands;
    QMap<quint64, QVector<QString>> drawCommandGroups;
    quint64 flagsMask;
};

} // namespace Halvard::Orv
