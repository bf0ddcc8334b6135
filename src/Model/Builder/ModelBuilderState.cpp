#include "Builder/ModelBuilderState.h"

#include "Builder/ModelUpload.h"

#include <algorithm>
#include <memory>

namespace Halvard::Orv {

ModelBuilderState::ModelBuilderState(
    const QSharedPointer<ModelDataStreamAllocator> &streamAllocator, quint64 maskOfFlags)
    : allocator(streamAllocator
                    ? streamAllocator
                    : QSharedPointer<ModelDataStreamAllocator>(new ModelDataArrayAllocator)),
      flagsMask(maskOfFlags)
{}

ModelBuilderState::StreamPointer ModelBuilderState::allocate(unsigned type,
                                                             unsigned long count) const
{
    std::unique_ptr<ModelDataStream> stream(allocator->alloc(type, count));
    StreamPointer shared(stream.get()); // may throw, and would not delete the stream then
    stream.release();
    return shared;
}

bool ModelBuilderState::hasGPUStreams() const
{
    return gpuIndices && std::all_of(vertexAttributes.cbegin(), vertexAttributes.cend(),
                                     [](const VertexAttribute &attribute) {
                                         return attribute.gpuValues && attribute.gpuIndices;
                                     });
}

void ModelBuilderState::dropGPUStreams()
{
    for (VertexAttribute &attribute : vertexAttributes) {
        attribute.gpuValues.clear();
        attribute.gpuIndices.clear();
    }
}

void ModelBuilderState::addDrawCommand(const QString &group, quint64 flags, unsigned firstIndex,
                                       unsigned count)
{
    const quint64 key = flags & flagsMask;
    if (!drawCommands.contains(key)) {
        drawCommands.insert(key, {});
        drawCommandGroups.insert(key, {});
    }
    drawCommands[key].append(drawCommand(firstIndex, count));
    drawCommandGroups[key].append(group);
}

void ModelBuilderState::dropCommands()
{
    drawCommands.clear();
    drawCommandGroups.clear();
    gpuIndices.clear();
}

} // namespace Halvard::Orv
