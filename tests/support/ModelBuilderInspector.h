/// \file
/// The tests' view of what a ModelBuilder keeps to itself.
#pragma once

#include "Builder/ModelBuilderState.h"
#include "Builder/UploadPreparation.h"

namespace Halvard::Orv {

/// Everything is handed out for writing too, so that a test can put a builder
/// into a state that its own operations lead to only by failing.
struct ModelBuilderInspector
{
    using StreamPointer = ModelBuilderState::StreamPointer;
    using Commands = ModelBuilderState::Commands;
    using VertexAttribute = ModelBuilderState::VertexAttribute;
    using MaterialGroup = ModelBuilder::MaterialGroup;

    static QSharedPointer<ModelDataStreamAllocator> &allocator(ModelBuilder &builder)
    {
        return builder.state().allocator;
    }
    static auto &materialGroups(ModelBuilder &builder) { return builder.state().materialGroups; }
    /// The group `name`, default-constructed when the builder has none; never inserts.
    static MaterialGroup materialGroup(const ModelBuilder &builder, const QString &name)
    {
        return builder.state().materialGroups.value(name);
    }
    static StreamPointer &verticesPerFace(ModelBuilder &builder)
    {
        return builder.state().verticesPerFace;
    }
    static auto &vertexAttributes(ModelBuilder &builder)
    {
        return builder.state().vertexAttributes;
    }
    /// The attribute `name`, default-constructed when the builder has none; never inserts.
    static VertexAttribute vertexAttribute(const ModelBuilder &builder, const QString &name)
    {
        return builder.state().vertexAttributes.value(name);
    }
    static QString &normalsAttribute(ModelBuilder &builder)
    {
        return builder.state().normalsAttribute;
    }
    static StreamPointer &gpuIndices(ModelBuilder &builder) { return builder.state().gpuIndices; }
    static auto &drawCommands(ModelBuilder &builder) { return builder.state().drawCommands; }
    static auto &drawCommandGroups(ModelBuilder &builder)
    {
        return builder.state().drawCommandGroups;
    }
    /// The part of upload() that needs no OpenGL. False when there is nothing to upload.
    static bool prepare(ModelBuilder &builder, const QString &positionAttribute)
    {
        return canBeUploaded(builder, positionAttribute) &&
               prepareForUpload(builder, positionAttribute);
    }
    static quint64 flagsMask(const ModelBuilder &builder) { return builder.state().flagsMask; }
};

} // namespace Halvard::Orv
