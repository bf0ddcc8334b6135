// Triangulated draw commands, and everything the GPU gets.
#include <OrvModel/ModelBuilder.h>
#include <OrvModel/TriMeshVertexNormals.h>

#include "AssertionReport.h"
#include "FaceTriangulation.h"
#include "LoadReport.h"

#include <OrvCore/InstanceDataCollection.h>
#include <OrvGL/BufferObject.h>
#include <OrvGL/DrawBuffers.h>
#include <OrvGL/GPUModel.h>
#include <OrvGL/OpenGLDeviceContext.h>
#include <OrvGL/OpenGLFunctions.h>
#include <OrvGL/VertexArrayObject.h>

#include <QtCore/QList>

#include <algorithm>

namespace Halvard::Orv {

namespace {

using StreamPointer = QSharedPointer<ModelDataStream>;

/// Line under which the check of the face stream's type is known in logs.
constexpr int FaceTypeCheckLine = 926;

/// Most vertices that 16-bit indices are used for: one below the largest 16-bit
/// value, which stays free as a marker.
constexpr int MaxVerticesFor16Bit = 65534;

constexpr int PositionFloats = 3;

/// A stream of 32-bit numbers, whatever it calls itself.
struct Numbers
{
    explicit Numbers(const StreamPointer &stream)
        : data(static_cast<const unsigned *>(stream->data(0))),
          size(std::min(stream->size(), stream->byteCount() / sizeof(unsigned)))
    {}

    const unsigned *data;
    unsigned long size;
};

/// The corners of faces as vertex numbers, with every number checked.
class FaceCorners
{
public:
    FaceCorners(const StreamPointer &verticesPerFace, const StreamPointer &indices,
                const StreamPointer &positions, const QVector<unsigned> &faceOffsets)
        : _counts(verticesPerFace), _indices(indices), _offsets(faceOffsets),
          _vertexCount(positions->byteCount() / (PositionFloats * sizeof(float)))
    {}

    /// Corners of the face, or null when the face does not exist or has a corner
    /// that does not.
    const int *find(unsigned face, int &count) const
    {
        if (face >= _counts.size || face >= static_cast<unsigned>(_offsets.size()))
            return nullptr;
        const unsigned corners = _counts.data[face];
        const unsigned offset = _offsets.at(static_cast<int>(face));
        if (offset > _indices.size || corners > _indices.size - offset)
            return nullptr;
        const unsigned *first = _indices.data + offset;
        const auto exists = [this](unsigned vertex) { return vertex < _vertexCount; };
        if (!std::all_of(first, first + corners, exists))
            return nullptr;
        count = static_cast<int>(corners);
        return reinterpret_cast<const int *>(first);
    }

private:
    Numbers _counts;
    Numbers _indices;
    const QVector<unsigned> &_offsets;
    unsigned long _vertexCount;
};

/// The records of one bundle, command by command.
struct BundleRecords
{
    QList<InstanceData> materials;
    QList<InstanceData> instances;
};

/// A collection named `name`; null for an empty list.
InstanceDataCollection *newCollection(const QString &name, const QList<InstanceData> &records)
{
    return records.isEmpty() ? nullptr : new InstanceDataCollection(name, records);
}

} // namespace

void ModelBuilder::prepareMaterialGroupForUpload(const QString &name, const MaterialGroup &group,
                                                 const StreamPointer &positions,
                                                 const StreamPointer &indices,
                                                 const QVector<unsigned int> &faceOffsets)
{
    if (!_verticesPerFace || !group.faces || !positions || !indices)
        return;
    if (_verticesPerFace->type() != GL_UNSIGNED_INT)
        reportFailedAssertion(FaceTypeCheckLine, "GL_UNSIGNED_INT == _verticesPerFace->type()",
                              QString::asprintf("Wrong Face type 0x%X, needs to be 0x%X",
                                                _verticesPerFace->type(), GL_UNSIGNED_INT));

    const FaceCorners corners(_verticesPerFace, indices, positions, faceOffsets);
    const Numbers faces(group.faces);
    const auto *xyz = static_cast<const float *>(positions->data(0));
    FaceTriangulation triangulation;
    QVector<unsigned int> triangles;
    for (unsigned long i = 0; i < faces.size; ++i) {
        int count = 0;
        const int *face = corners.find(faces.data[i], count);
        if (!face)
            continue;
        for (const int corner : triangulation.triangulate(count, face, xyz))
            triangles.append(static_cast<unsigned int>(face[corner]));
    }

    if (!_gpuIndices || _gpuIndices->isEmpty())
        _gpuIndices = allocate(GL_UNSIGNED_INT, 0);
    if (!_gpuIndices)
        return;
    DrawElementsIndirectCommand command;
    command.count = static_cast<unsigned>(triangles.size());
    command.instanceCount = 1;
    command.firstIndex = static_cast<unsigned>(_gpuIndices->size());
    command.baseVertex = 0; // vertex numbers are absolute: all groups share one set
    command.baseInstance = 0;

    const quint64 key = group.flags & _flagsMask;
    if (!_drawCommands.contains(key)) {
        _drawCommands.insert(key, {});
        _drawCommandGroups.insert(key, {});
    }
    _drawCommands[key].append(command);
    _drawCommandGroups[key].append(name);
    _gpuIndices->append(static_cast<unsigned long>(triangles.size()), triangles.constData());
}

/// Per face the position of its first corner, with 32-bit wrap-around.
QVector<unsigned int> ModelBuilder::faceOffsets() const
{
    QVector<unsigned int> offsets;
    const Numbers counts(_verticesPerFace);
    offsets.reserve(static_cast<int>(counts.size));
    unsigned offset = 0;
    for (unsigned long face = 0; face < counts.size; ++face) {
        offsets.append(offset);
        offset += counts.data[face];
    }
    return offsets;
}

/// Whether every command's run lies within the combined indices. It does not when
/// the index stream had no room for all triangles.
bool ModelBuilder::commandsFitIndices() const
{
    const quint64 available = _gpuIndices ? _gpuIndices->size() : 0;
    for (const Commands &commands : _drawCommands) {
        for (const DrawElementsIndirectCommand &command : commands) {
            if (quint64(command.firstIndex) + command.count > available)
                return false;
        }
    }
    return true;
}

/// Builds streams, commands and normals. False when something of it cannot be had;
/// the builder then holds no commands.
bool ModelBuilder::prepareForUpload(const QString &positionAttribute)
{
    buildGPUFriendlyStreams(false);
    // A copy: computing normals may insert into the table and move its records.
    const VertexAttribute positions = _vertexAttributes.value(positionAttribute);
    if (!positions.gpuValues || !positions.gpuIndices)
        return false;
    {
        const StageTimer timer(&LoadReport::Stages::triangulate);
        const QVector<unsigned int> offsets = faceOffsets();
        for (auto it = _materialGroups.cbegin(); it != _materialGroups.cend(); ++it) {
            if (it->faces && !it->faces->isEmpty())
                prepareMaterialGroupForUpload(it.key(), it.value(), positions.gpuValues,
                                              positions.gpuIndices, offsets);
        }
    }
    if (commandsFitIndices() && (_normalsAttribute.isNull() || computeNormals(positions)))
        return true;
    _drawCommands.clear();
    _drawCommandGroups.clear();
    _gpuIndices = allocate(GL_UNSIGNED_INT, 0);
    return false;
}

/// Gives the requested attribute one normal per GPU vertex.
bool ModelBuilder::computeNormals(const VertexAttribute &positions)
{
    const StageTimer timer(&LoadReport::Stages::normals);
    const auto vertexCount = static_cast<int>(positions.gpuValues->size() /
                                              static_cast<unsigned long>(positions.components));
    const auto count = static_cast<unsigned long>(vertexCount) * PositionFloats;
    const StreamPointer normals = allocate(GL_FLOAT, count);
    if (!normals || normals->size() < count || !_gpuIndices)
        return false;
    TriMeshVertexNormals(vertexCount, static_cast<int>(_gpuIndices->size()),
                         static_cast<const float *>(positions.gpuValues->data(0)),
                         static_cast<const unsigned *>(_gpuIndices->data(0)),
                         static_cast<float *>(normals->data(0)));
    VertexAttribute &attribute = _vertexAttributes[_normalsAttribute];
    attribute.gpuValues = normals;
    attribute.gpuIndices = positions.gpuIndices;
    attribute.components = PositionFloats;
    return true;
}

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
    if (!isValid() || !isPositionAttribute(positionAttribute))
        return;
    const QSharedPointer<OpenGLDeviceContext> context = OpenGLDeviceContext::current();
    if (!context)
        return;
    if ((!_gpuIndices || _gpuIndices->isEmpty()) && !prepareForUpload(positionAttribute))
        return;
    if (!hasGPUStreams())
        return;

    const StageTimer timer(&LoadReport::Stages::gl);
    const VertexAttribute positions = _vertexAttributes.value(positionAttribute);
    const auto vertexCount = static_cast<int>(positions.gpuValues->size() /
                                              static_cast<unsigned long>(positions.components));
    unsigned indexType = 0;
    const auto elements = uploadIndices(*context, vertexCount, usage, indexType);
    if (!elements)
        return;
    const auto buffers = uploadValues(*context, usage);

    for (auto it = _drawCommands.cbegin(); it != _drawCommands.cend(); ++it) {
        const Commands &commands = it.value();
        auto *bundle = new DrawBuffers(nullptr);
        bundle->setVAO(context->createVertexArrayObject());
        bundle->setIndexedDraw(elements, static_cast<int>(_gpuIndices->size()), indexType);
        bundle->setVertexCount(static_cast<unsigned>(vertexCount));
        bundle->setPrimitiveType(primitiveType);
        bundle->setDrawElementsIndirectCommands(commands.constData(), commands.size());
        for (auto buffer = buffers.cbegin(); buffer != buffers.cend(); ++buffer) {
            const VertexAttribute attribute = _vertexAttributes.value(buffer.key());
            bundle->VAO()->registerBO(buffer.key(), buffer.value(), attribute.components,
                                      attribute.gpuValues->type());
        }
        addBundle(model, bundle, it.key(), instanceData, materialIdMember);
    }
}

/// Hands a bundle to the model with the records and names of its commands.
void ModelBuilder::addBundle(GPUModel *model, DrawBuffers *bundle, quint64 key,
                             const InstanceData &instanceData,
                             const QString &materialIdMember) const
{
    const QVector<QString> groups = _drawCommandGroups.value(key);
    BundleRecords records;
    for (const QString &name : groups) {
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
    const int index = model->add(bundle, 1, newCollection(materialPlan, records.materials),
                                 newCollection(instanceData.name(), records.instances), key);
    for (int slot = 0; slot < groups.size(); ++slot) {
        model->addMaterialName(index, slot, groups.at(slot));
        model->addObjectName(index, slot, _materialGroups.value(groups.at(slot)).objectName);
    }
}

/// Whether the attribute can be read as x, y, z floats.
bool ModelBuilder::isPositionAttribute(const QString &name) const
{
    const auto attribute = _vertexAttributes.constFind(name);
    return attribute != _vertexAttributes.constEnd() && attribute->components >= PositionFloats &&
           attribute->values && attribute->values->type() == GL_FLOAT;
}

bool ModelBuilder::hasGPUStreams() const
{
    return _gpuIndices && std::all_of(_vertexAttributes.cbegin(), _vertexAttributes.cend(),
                                      [](const VertexAttribute &attribute) {
                                          return attribute.gpuValues && attribute.gpuIndices;
                                      });
}

} // namespace Halvard::Orv
