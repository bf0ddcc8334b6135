#include <OrvModel/ModelBuilder.h>

#include <OrvModel/InstanceDataPlans.h>

#include "Builder/ModelBuilderState.h"
#include "Materials/PlanRegistration.h"

#include <OrvGL/OpenGLFunctions.h>

#include <memory>
#include <utility>

namespace Halvard::Orv {

ModelBuilder::ModelBuilder(const QSharedPointer<ModelDataStreamAllocator> &allocator,
                           quint64 flagsMask)
    : _state(std::make_unique<ModelBuilderState>(allocator, flagsMask))
{
    registerPlanOnce<registerInstanceInfo>(); // of the records that upload() copies
    _state->verticesPerFace = _state->allocate(GL_UNSIGNED_INT, 0);
    _state->gpuIndices = _state->allocate(GL_UNSIGNED_INT, 0);
}

ModelBuilder::~ModelBuilder() = default;

void ModelBuilder::clear()
{
    try {
        _state->materialGroups.clear();
        _state->verticesPerFace = _state->allocate(GL_UNSIGNED_INT, 0);
        _state->vertexAttributes.clear();
        _state->normalsAttribute = QString();
        _state->gpuIndices = _state->allocate(GL_UNSIGNED_INT, 0);
        _state->drawCommands.clear();
        _state->drawCommandGroups.clear();
    } catch (...) {
        // Not the half of it: empty, as after an allocator that gives no stream.
        _state->verticesPerFace.clear();
        _state->vertexAttributes.clear();
        _state->normalsAttribute = QString();
        _state->dropCommands();
        throw;
    }
}

bool ModelBuilder::hasMaterialGroup(const QString &name) const
{
    return _state->materialGroups.contains(name);
}

int ModelBuilder::materialGroupId(const QString &name) const
{
    const MaterialGroup *group = _state->materialGroups.find(name);
    return group ? group->id : -1;
}

quint64 ModelBuilder::materialGroupFlags(const QString &name) const
{
    const MaterialGroup *group = _state->materialGroups.find(name);
    return group ? group->flags : 0;
}

bool ModelBuilder::hasVertexAttribute(const QString &name) const
{
    return _state->vertexAttributes.contains(name);
}

bool ModelBuilder::isValid() const
{
    const auto isFilled = [](const ModelBuilderState::StreamPointer &stream) {
        return stream && !stream->isEmpty();
    };

    if (_state->materialGroups.isEmpty() || !isFilled(_state->verticesPerFace) ||
        _state->vertexAttributes.isEmpty())
        return false;
    for (const ModelBuilderState::VertexAttribute &attribute : _state->vertexAttributes) {
        // Without a value stream it is an attribute that upload() computes.
        if (attribute.values && !(isFilled(attribute.values) && isFilled(attribute.indices)))
            return false;
    }
    return true;
}

void ModelBuilder::createVertexAttribute(const QString &name, int components, unsigned type,
                                         unsigned long valueCount, unsigned long indexCount)
{
    bool isIncomplete = !_state->vertexAttributes.contains(name);
    ModelBuilderState::VertexAttribute &attribute = _state->vertexAttributes[name];
    try {
        attribute.values = _state->allocate(type, valueCount);
        isIncomplete = true; // new values and old indices
        attribute.indices = _state->allocate(GL_UNSIGNED_INT, indexCount);
    } catch (...) {
        if (isIncomplete)
            _state->vertexAttributes.remove(name);
        throw;
    }
    attribute.gpuValues.clear();
    attribute.gpuIndices.clear();
    attribute.components = components;
}

void ModelBuilder::addValuesToVertexAttribute(const QString &name, unsigned long count,
                                              const void *data, unsigned type)
{
    const auto attribute = _state->vertexAttributes.find(name);
    if (attribute == _state->vertexAttributes.end() || !attribute->values ||
        attribute->values->type() != type)
        return;
    attribute->values->append(count, data);
}

void ModelBuilder::addIndicesToVertexAttribute(const QString &name, unsigned long count,
                                               const unsigned *indices)
{
    const auto attribute = _state->vertexAttributes.find(name);
    if (attribute != _state->vertexAttributes.end() && attribute->indices)
        attribute->indices->append(count, indices);
}

void ModelBuilder::addVertexCountsToFaces(unsigned long count, const unsigned *counts)
{
    if (_state->verticesPerFace)
        _state->verticesPerFace->append(count, counts);
}

void ModelBuilder::generateNormals(const QString &name)
{
    _state->normalsAttribute = name;
}

void ModelBuilder::removeUnusedVertices() {}

void ModelBuilder::removeDuplicateVertices() {}

void ModelBuilder::createMaterialGroup(const QString &name, const InstanceData &instanceData,
                                       int id, quint64 flags)
{
    const int groupsBefore = _state->materialGroups.size();
    MaterialGroup &group = _state->materialGroups.findOrAdd(name);
    const InstanceData dataBefore = std::exchange(group.instanceData, instanceData);
    const int idBefore = std::exchange(group.id, id < 0 ? groupsBefore : id);
    try {
        group.faces = _state->allocate(GL_UNSIGNED_INT, 0);
    } catch (...) {
        if (_state->materialGroups.size() > groupsBefore) {
            _state->materialGroups.removeLast();
        } else {
            group.instanceData = dataBefore;
            group.id = idBefore;
        }
        throw;
    }
    group.flags = flags;
    group.objectName = QString();
}

void ModelBuilder::addFacesToMaterialGroup(const QString &name, unsigned long count,
                                           const unsigned *faces, const QString &objectName)
{
    MaterialGroup *const group = _state->materialGroups.find(name);
    if (!group)
        return;
    if (group->objectName.isNull())
        group->objectName = objectName;
    if (group->objectName != objectName) {
        // The doubled quote is part of the text that people search logs for.
        qWarning("adding object '%s'' to material group for object '%s'",
                 objectName.toLocal8Bit().constData(), group->objectName.toLocal8Bit().constData());
    }
    if (group->faces)
        group->faces->append(count, faces);
}

} // namespace Halvard::Orv
