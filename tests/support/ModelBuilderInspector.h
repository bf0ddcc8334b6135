/// \file
/// The tests' view of what a ModelBuilder keeps to itself.
#pragma once

#include <OrvModel/ModelBuilder.h>

namespace Halvard::Orv {

/// Everything is handed out for writing too, so that a test can put a builder
/// into a state that its own operations lead to only by failing.
struct ModelBuilderInspector
{
    using StreamPointer = ModelBuilder::StreamPointer;
    using Commands = ModelBuilder::Commands;
    using VertexAttribute = ModelBuilder::VertexAttribute;
    using MaterialGroup = ModelBuilder::MaterialGroup;

    static QSharedPointer<ModelDataStreamAllocator> &allocator(ModelBuilder &builder)
    {
        return builder._allocator;
    }
    static QHash<QString, MaterialGroup> &materialGroups(ModelBuilder &builder)
    {
        return builder._materialGroups;
    }
    /// The group `name`, default-constructed when the builder has none; never inserts.
    static MaterialGroup materialGroup(const ModelBuilder &builder, const QString &name)
    {
        return builder._materialGroups.value(name);
    }
    static StreamPointer &verticesPerFace(ModelBuilder &builder)
    {
        return builder._verticesPerFace;
    }
    static QHash<QString, VertexAttribute> &vertexAttributes(ModelBuilder &builder)
    {
        return builder._vertexAttributes;
    }
    /// The attribute `name`, default-constructed when the builder has none; never inserts.
    static VertexAttribute vertexAttribute(const ModelBuilder &builder, const QString &name)
    {
        return builder._vertexAttributes.value(name);
    }
    static QString &normalsAttribute(ModelBuilder &builder) { return builder._normalsAttribute; }
    static StreamPointer &gpuIndices(ModelBuilder &builder) { return builder._gpuIndices; }
    static QHash<quint64, Commands> &drawCommands(ModelBuilder &builder)
    {
        return builder._drawCommands;
    }
    static QHash<quint64, QVector<QString>> &drawCommandGroups(ModelBuilder &builder)
    {
        return builder._drawCommandGroups;
    }
    /// The part of upload() that needs no OpenGL: streams, triangles and normals are
    /// built where they are not yet. False when there is nothing to upload.
    static bool prepare(ModelBuilder &builder, const QString &positionAttribute)
    {
        if (!builder.isValid() || !builder.isPositionAttribute(positionAttribute))
            return false;
        const bool isPrepared = builder._gpuIndices && !builder._gpuIndices->isEmpty();
        return (isPrepared || builder.prepareForUpload(positionAttribute)) &&
               builder.hasGPUStreams();
    }
    static quint64 flagsMask(const ModelBuilder &builder) { return builder._flagsMask; }
};

} // namespace Halvard::Orv
