// A builder's streams, commands and records as a model on the GPU.
#include <OrvModel/ModelBuilder.h>

#include "Builder/ModelBuilderState.h"
#include "Builder/ModelUpload.h"
#include "Builder/UploadPreparation.h"
#include "Lanes/FloatingPointState.h"

#include <OrvGL/OpenGLDeviceContext.h>

namespace Halvard::Orv {

namespace {

UploadInput::Command uploadCommand(const ModelBuilderState &state, const QString &name,
                                   const DrawElementsIndirectCommand &draw)
{
    const ModelBuilder::MaterialGroup group = state.materialGroups.value(name);
    return {draw, name, group.instanceData, group.id, group.objectName};
}

} // namespace

UploadInput uploadInput(const ModelBuilderState &state, const QString &positionAttribute)
{
    UploadInput input;
    for (auto it = state.vertexAttributes.cbegin(); it != state.vertexAttributes.cend(); ++it) {
        if (it.key() == positionAttribute)
            input.positions = input.attributes.size();
        input.attributes.append({it.key(), it->components, UploadElements(it->gpuValues)});
    }
    input.indices = UploadElements(state.gpuIndices);
    for (auto it = state.drawCommands.cbegin(); it != state.drawCommands.cend(); ++it) {
        const QVector<QString> groups = state.drawCommandGroups.value(it.key());
        UploadInput::Batch batch{it.key(), {}};
        for (int i = 0; i < it->size(); ++i)
            batch.commands.append(uploadCommand(state, groups.at(i), it->at(i)));
        input.batches.append(batch);
    }
    input.allocator = state.allocator;
    return input;
}

void ModelBuilder::upload(GPUModel *model, const InstanceData &instanceData,
                          const QString &positionAttribute, const QString &materialIdMember,
                          unsigned int usage, unsigned int primitiveType)
{
    const FloatingPointState state;
    if (!canBeUploaded(*this, positionAttribute))
        return;
    const QSharedPointer<OpenGLDeviceContext> context = OpenGLDeviceContext::current();
    if (!context || !prepareForUpload(*this, positionAttribute))
        return;
    UploadInput input = uploadInput(*_state, positionAttribute);
    input.instanceData = instanceData;
    input.materialIdMember = materialIdMember;
    input.usage = usage;
    input.primitiveType = primitiveType;
    uploadModel(std::move(input), context, *model);
}

} // namespace Halvard::Orv
