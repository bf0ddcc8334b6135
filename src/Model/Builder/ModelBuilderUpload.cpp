// Everything the GPU gets.
#include <OrvModel/ModelBuilder.h>

#include "Lanes/FloatingPointState.h"
#include "Reports/LoadReport.h"

#include <OrvCore/InstanceDataCollection.h>
#include <OrvGL/BufferObject.h>
#include <OrvGL/DrawBuffers.h>
#include <OrvGL/GPUModel.h>
#include <OrvGL/OpenGLDeviceContext.h>
#include <OrvGL/OpenGLFunctions.h>
#include <OrvGL/VertexArrayObject.h>

#include <QtCore/QList>

#include <algorithm>
#include <memory>
#include <vector>

namespace Halvard::Orv {

namespace {

using StreamPointer = QSharedPointer<ModelDataStream>;

/// Most vertices that 16-bit indices are used for: one below the largest 16-bit
/// value, which stays free as a marker.
constexpr int MaxVerticesFor16Bit = 65534;

/// The records of one bundle, command by command.
struct BundleRecords
{
    QList<InstanceData> materials;
    QList<InstanceData> instances;
};

/// A collection named `name`; null for an empty list.
std::unique_ptr<InstanceDataCollection> newCollection(const QString &name,
                                                      const QList<InstanceData> &records)
{
    return records.isEmpty() ? nullptr : std::make_unique<InstanceDataCollection>(name, records);
}

} // namespace

/// Everything that a model takes over with one bundle.
struct ModelBuilder::NewBundle
{
    quint64 key;
    std::unique_ptr<DrawBuffers> buffers;
    std::unique_ptr<InstanceDataCollection> materials;
    std::unique_ptr<InstanceDataCollection> instances;
};

/// The one element buffer, narrowed to 16 bits where the vertices allow it. Null
/// when the narrowed stream cannot be had.
QSharedPointer<BufferObject> ModelBuilder::uploadIndices(OpenGLDeviceContext &context,
                                                         int vertexCount, unsigned usage,
                                                         unsigned &indexType) const
{
    const unsigned long count = _gpuIndices->size();
    const auto *indices = static_cast<const unsigned *>(_gpuIndices->data(0));
    indexType = _gpuIndices->type();

    StreamPointer narrowed;
    if (vertexCount <= MaxVerticesFor16Bit) {
        narrowed = allocate(GL_UNSIGNED_SHORT, count);
        if (!narrowed || narrowed->size() < count)
            return {};
        indexType = GL_UNSIGNED_SHORT;
        std::transform(indices, indices + count, static_cast<unsigned short *>(narrowed->data(0)),
                       [](unsigned index) { return static_cast<unsigned short>(index); });
    }

    QSharedPointer<BufferObject> buffer = context.createBufferObject();
    buffer->setTarget(GL_ELEMENT_ARRAY_BUFFER);
    buffer->bind();
    if (narrowed)
        buffer->uploadGLushortData(static_cast<const unsigned short *>(narrowed->data(0)),
                                   static_cast<int>(narrowed->size()), usage);
    else
        buffer->uploadGLuintData(indices, static_cast<int>(count), usage);
    buffer->release();
    return buffer;
}

/// One vertex buffer per attribute.
QHash<QString, QSharedPointer<BufferObject>>
ModelBuilder::uploadValues(OpenGLDeviceContext &context, unsigned usage) const
{
    QHash<QString, QSharedPointer<BufferObject>> buffers;
    for (auto it = _vertexAttributes.cbegin(); it != _vertexAttributes.cend(); ++it) {
        const StreamPointer &values = it->gpuValues;
        const QSharedPointer<BufferObject> buffer = context.createBufferObject();
        buffer->setTarget(GL_ARRAY_BUFFER);
        buffer->bind();
        buffer->uploadArbitraryData(values->data(0), static_cast<int>(values->size()), usage,
                                    ModelDataStream::typeSize(values->type()));
        buffer->release();
        buffers.insert(it.key(), buffer);
    }
    return buffers;
}

void ModelBuilder::upload(GPUModel *model, const InstanceData &instanceData,
                          const QString &positionAttribute, const QString &materialIdMember,
                          unsigned int usage, unsigned int primitiveType)
{
    const FloatingPointState state;
    if (!isValid() || !isPositionAttribute(positionAttribute))
        return;
    const QSharedPointer<OpenGLDeviceContext> context = OpenGLDeviceContext::current();
    if (!context)
        return;
    if ((!_gpuIndices || _gpuIndices->isEmpty()) && !prepareForUpload(positionAttribute))
        return;
    if (hasGPUStreams())
        addToModel(*context, model, instanceData, positionAttribute, materialIdMember, usage,
                   primitiveType);
}

/// Makes the buffers and hands one bundle per batching key to the model, or none.
void ModelBuilder::addToModel(OpenGLDeviceContext &context, GPUModel *model,
                              const InstanceData &instanceData, const QString &positionAttribute,
                              const QString &materialIdMember, unsigned usage,
                              unsigned primitiveType) const
{
    const StageTimer timer(&LoadReport::Stages::gl);
    const VertexAttribute positions = _vertexAttributes.value(positionAttribute);
    const auto vertexCount = static_cast<int>(positions.gpuValues->size() /
                                              static_cast<unsigned long>(positions.components));
    unsigned indexType = 0;
    const auto elements = uploadIndices(context, vertexCount, usage, indexType);
    if (!elements)
        return;
    const auto buffers = uploadValues(context, usage);

    // All of them before the first is added: the model must not get a part when memory
    // ends.
    std::vector<NewBundle> bundles;
    for (auto it = _drawCommands.cbegin(); it != _drawCommands.cend(); ++it) {
        const Commands &commands = it.value();
        auto bundle = std::make_unique<DrawBuffers>(nullptr);
        bundle->setVAO(context.createVertexArrayObject());
        bundle->setIndexedDraw(elements, static_cast<int>(_gpuIndices->size()), indexType);
        bundle->setVertexCount(static_cast<unsigned>(vertexCount));
        bundle->setPrimitiveType(primitiveType);
        bundle->setDrawElementsIndirectCommands(commands.constData(), commands.size());
        for (auto buffer = buffers.cbegin(); buffer != buffers.cend(); ++buffer) {
            const VertexAttribute attribute = _vertexAttributes.value(buffer.key());
            bundle->VAO()->registerBO(buffer.key(), buffer.value(), attribute.components,
                                      attribute.gpuValues->type());
        }
        bundles.push_back(withRecords(std::move(bundle), it.key(), instanceData, materialIdMember));
    }
    for (NewBundle &bundle : bundles) {
        if (!addBundle(model, bundle))
            return;
    }
}

/// A bundle with the records of its commands.
ModelBuilder::NewBundle ModelBuilder::withRecords(std::unique_ptr<DrawBuffers> buffers, quint64 key,
                                                  const InstanceData &instanceData,
                                                  const QString &materialIdMember) const
{
    BundleRecords records;
    for (const QString &name : _drawCommandGroups.value(key)) {
        const MaterialGroup group = _materialGroups.value(name);
        InstanceData instance = instanceData;
        if (materialIdMember.isNull())
            records.materials.append(group.instanceData);
        else
            instance.set(materialIdMember, &group.id, sizeof group.id);
        records.instances.append(instance);
    }
    const QString materialPlan =
        records.materials.isEmpty() ? QString() : records.materials.first().name();
    return {key, std::move(buffers), newCollection(materialPlan, records.materials),
            newCollection(instanceData.name(), records.instances)};
}

/// Hands a bundle to the model, and the names of its commands.
/// \return false when the model does not take it: the GPU has no room for it.
bool ModelBuilder::addBundle(GPUModel *model, NewBundle &bundle) const
{
    const int index = model->add(bundle.buffers.release(), 1, bundle.materials.release(),
                                 bundle.instances.release(), bundle.key);
    if (index < 0)
        return false;
    const QVector<QString> groups = _drawCommandGroups.value(bundle.key);
    for (int slot = 0; slot < groups.size(); ++slot) {
        model->addMaterialName(index, slot, groups.at(slot));
        model->addObjectName(index, slot, _materialGroups.value(groups.at(slot)).objectName);
    }
    return true;
}

bool ModelBuilder::hasGPUStreams() const
{
    return _gpuIndices && std::all_of(_vertexAttributes.cbegin(), _vertexAttributes.cend(),
                                      [](const VertexAttribute &attribute) {
                                          return attribute.gpuValues && attribute.gpuIndices;
                                      });
}

} // namespace Halvard::Orv
