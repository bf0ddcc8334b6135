#include <OrvModel/ModelBuilder.h>

#include <OrvModel/InstanceDataPlans.h>

#include "Materials/PlanRegistration.h"

#include <OrvGL/OpenGLFunctions.h>

#include <memory>

namespace Halvard::Orv {

ModelBuilder::ModelBuilder(const QSharedPointer<ModelDataStreamAllocator> &allocator,
                           quint64 flagsMask)
    : _allocator(allocator ? allocator
                           : QSharedPointer<ModelDataStreamAllocator>(new ModelDataArrayAllocator)),
      _flagsMask(flagsMask)
{
    registerPlanOnce<registerInstanceInfo>(); // of the records that upload() copies
    _verticesPerFace = allocate(GL_UNSIGNED_INT, 0);
    _gpuIndices = allocate(GL_UNSIGNED_INT, 0);
}

ModelBuilder::~ModelBuilder() = default;

void ModelBuilder::clear()
{
    _materialGroups.clear();
    _verticesPerFace = allocate(GL_UNSIGNED_INT, 0);
    _vertexAttributes.clear();
    _normalsAttribute = QString();
    _gpuIndices = allocate(GL_UNSIGNED_INT, 0);
    _drawCommands.clear();
    _drawCommandGroups.clear();
}

/// A stream from the allocator; null when there is no memory for it.
ModelBuilder::StreamPointer ModelBuilder::allocate(unsigned type, unsigned long count) const
{
    std::unique_ptr<ModelDataStream> stream(_allocator->alloc(type, count));
    StreamPointer shared(stream.get()); // may throw, and would not delete the stream then
    stream.release();
    return shared;
}

bool ModelBuilder::hasMaterialGroup(const QString &name) const
{
    return _materialGroups.contains(name);
}

int ModelBuilder::materialGroupId(const QString &name) const
{
    const auto group = _materialGroups.constFind(name);
    return group == _materialGroups.constEnd() ? -1 : group->id;
}

quint64 ModelBuilder::materialGroupFlags(const QString &name) const
{
    const auto group = _materialGroups.constFind(name);
    return group == _materialGroups.constEnd() ? 0 : group->flags;
}

bool ModelBuilder::hasVertexAttribute(const QString &name) const
{
    return _vertexAttributes.contains(name);
}

bool ModelBuilder::isValid() const
{
    const auto isFilled = [](const StreamPointer &stream) { return stream && !stream->isEmpty(); };

    if (_materialGroups.isEmpty() || !isFilled(_verticesPerFace) || _vertexAttributes.isEmpty())
        return false;
    for (const VertexAttribute &attribute : _vertexAttributes) {
        // Without a value stream it is an attribute that upload() computes.
        if (attribute.values && !(isFilled(attribute.values) && isFilled(attribute.indices)))
            return false;
    }
    return true;
}

void ModelBuilder::createVertexAttribute(const QString &name, int components, unsigned type,
                                         unsigned long valueCount, unsigned long indexCount)
{
    // Before the attribute changes: no memory for one stream must not leave the other.
    const StreamPointer values = allocate(type, valueCount);
    const StreamPointer indices = allocate(GL_UNSIGNED_INT, indexCount);
    VertexAttribute &attribute = _vertexAttributes[name];
    attribute.values = values;
    attribute.indices = indices;
    attribute.gpuValues.clear();
    attribute.gpuIndices.clear();
    attribute.components = components;
}

void ModelBuilder::addValuesToVertexAttribute(const QString &name, unsigned long count,
                                              const void *data, unsigned type)
{
    const auto attribute = _vertexAttributes.find(name);
    if (attribute == _vertexAttributes.end() || !attribute->values ||
        attribute->values->type() != type)
        return;
    attribute->values->append(count, data);
}

void ModelBuilder::addIndicesToVertexAttribute(const QString &name, unsigned long count,
                                               const unsigned *indices)
{
    const auto attribute = _vertexAttributes.find(name);
    if (attribute != _vertexAttributes.end() && attribute->indices)
        attribute->indices->append(count, indices);
}

void ModelBuilder::addVertexCountsToFaces(unsigned long count, const unsigned *counts)
{
    if (_verticesPerFace)
        _verticesPerFace->append(count, counts);
}

void ModelBuilder::generateNormals(const QString &name)
{
    _normalsAttribute = name;
}

void ModelBuilder::removeUnusedVertices() {}

void ModelBuilder::removeDuplicateVertices() {}

void ModelBuilder::createMaterialGroup(const QString &name, const InstanceData &instanceData,
                                       int id, quint64 flags)
{
    const int groupsBefore = _materialGroups.size();
    const StreamPointer faces = allocate(GL_UNSIGNED_INT, 0);
    MaterialGroup &group = _materialGroups[name];
    group.instanceData = instanceData;
    group.id = id < 0 ? groupsBefore : id;
    group.faces = faces;
    group.flags = flags;
    group.objectName = QString();
}

void ModelBuilder::addFacesToMaterialGroup(const QString &name, unsigned long count,
                                           const unsigned *faces, const QString &objectName)
{
    const auto group = _materialGroups.find(name);
    if (group == _materialGroups.end())
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
