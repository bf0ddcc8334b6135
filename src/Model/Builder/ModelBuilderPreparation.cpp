// Triangulated draw commands and generated normals: what upload() needs before it
// talks to OpenGL.
#include <OrvModel/ModelBuilder.h>
#include <OrvModel/TriMeshVertexNormals.h>

#include "Builder/AssertionReport.h"
#include "Builder/StreamBytes.h"
#include "Lanes/FloatingPointState.h"
#include "Reports/LoadReport.h"
#include "Triangles/FaceTriangulation.h"

#include <OrvGL/OpenGLFunctions.h>

#include <algorithm>

namespace Halvard::Orv {

namespace {

using StreamPointer = QSharedPointer<ModelDataStream>;

/// Line under which the check of the face stream's type is known in logs.
constexpr int FaceTypeCheckLine = 926;

constexpr int PositionFloats = 3;

/// A stream of 32-bit numbers, whatever it calls itself.
struct Numbers
{
    explicit Numbers(const StreamPointer &stream)
        : data(static_cast<const unsigned *>(stream->data(0))),
          size(std::min(stream->size(), readableBytes(*stream) / sizeof(unsigned)))
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
          _vertexCount(readableBytes(*positions) / (PositionFloats * sizeof(float)))
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

} // namespace

/// Whether the attribute can be read as x, y, z floats.
bool ModelBuilder::isPositionAttribute(const QString &name) const
{
    const auto attribute = _vertexAttributes.constFind(name);
    return attribute != _vertexAttributes.constEnd() && attribute->components >= PositionFloats &&
           attribute->values && attribute->values->type() == GL_FLOAT;
}

void ModelBuilder::prepareMaterialGroupForUpload(const QString &name, const MaterialGroup &group,
                                                 const StreamPointer &positions,
                                                 const StreamPointer &indices,
                                                 const QVector<unsigned int> &faceOffsets)
{
    const FloatingPointState state;
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
    addDrawCommand(name, group.flags, static_cast<unsigned>(_gpuIndices->size()),
                   static_cast<unsigned>(triangles.size()));
    _gpuIndices->append(static_cast<unsigned long>(triangles.size()), triangles.constData());
}

/// Files the command of a group: `count` entries of the combined indices from
/// `firstIndex` on.
void ModelBuilder::addDrawCommand(const QString &group, quint64 flags, unsigned firstIndex,
                                  unsigned count)
{
    DrawElementsIndirectCommand command;
    command.count = count;
    command.instanceCount = 1;
    command.firstIndex = firstIndex;
    command.baseVertex = 0; // vertex numbers are absolute: all groups share one set
    command.baseInstance = 0;

    const quint64 key = flags & _flagsMask;
    if (!_drawCommands.contains(key)) {
        _drawCommands.insert(key, {});
        _drawCommandGroups.insert(key, {});
    }
    _drawCommands[key].append(command);
    _drawCommandGroups[key].append(group);
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
/// the builder then holds no commands, also when it throws.
bool ModelBuilder::prepareForUpload(const QString &positionAttribute)
{
    try {
        buildGPUFriendlyStreams(false);
        // A copy: computing normals may insert into the table and move its records.
        const VertexAttribute positions = _vertexAttributes.value(positionAttribute);
        if (!positions.gpuValues || !positions.gpuIndices)
            return false;
        if (prepareMaterialGroups(positions) && commandsFitIndices() &&
            (_normalsAttribute.isNull() || computeNormals(positions)))
            return true;
    } catch (...) {
        dropCommands();
        throw;
    }
    dropCommands();
    return false;
}

/// False when a group could not be prepared: the model would lack it.
bool ModelBuilder::prepareMaterialGroups(const VertexAttribute &positions)
{
    const StageTimer timer(&LoadReport::Stages::triangulate);
    const QVector<unsigned int> offsets = faceOffsets();
    for (auto it = _materialGroups.cbegin(); it != _materialGroups.cend(); ++it) {
        if (!it->faces || it->faces->isEmpty())
            continue;
        prepareMaterialGroupForUpload(it.key(), it.value(), positions.gpuValues,
                                      positions.gpuIndices, offsets);
        if (!_gpuIndices)
            return false;
    }
    return true;
}

/// Null stands for an empty index stream, which might not be had now.
void ModelBuilder::dropCommands()
{
    _drawCommands.clear();
    _drawCommandGroups.clear();
    _gpuIndices.clear();
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

} // namespace Halvard::Orv
