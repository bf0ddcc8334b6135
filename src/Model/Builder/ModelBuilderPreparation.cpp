// Triangulated draw commands and generated normals: what upload() needs before it
// talks to OpenGL.
#include <OrvModel/ModelBuilder.h>
#include <OrvModel/TriMeshVertexNormals.h>

#include "Builder/AssertionReport.h"
#include "Builder/ModelBuilderState.h"
#include "Builder/StreamBytes.h"
#include "Builder/UploadPreparation.h"
#include "Lanes/FloatingPointState.h"
#include "Reports/CurrentReport.h"
#include "Reports/UndrawnFaces.h"
#include "Triangles/FaceTriangulation.h"

#include <OrvGL/OpenGLFunctions.h>

#include <algorithm>

namespace Halvard::Orv {

namespace {

using StreamPointer = ModelBuilderState::StreamPointer;
using VertexAttribute = ModelBuilderState::VertexAttribute;

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

void ModelBuilder::prepareMaterialGroupForUpload(const QString &name, const MaterialGroup &group,
                                                 const StreamPointer &positions,
                                                 const StreamPointer &indices,
                                                 const QVector<unsigned int> &faceOffsets)
{
    const FloatingPointState state;
    if (!_state->verticesPerFace || !group.faces || !positions || !indices)
        return;
    if (_state->verticesPerFace->type() != GL_UNSIGNED_INT)
        reportFailedAssertion(FaceTypeCheckLine, "GL_UNSIGNED_INT == _verticesPerFace->type()",
                              QString::asprintf("Wrong Face type 0x%X, needs to be 0x%X",
                                                _state->verticesPerFace->type(), GL_UNSIGNED_INT));

    const FaceCorners corners(_state->verticesPerFace, indices, positions, faceOffsets);
    const Numbers faces(group.faces);
    const auto *xyz = static_cast<const float *>(positions->data(0));
    FaceTriangulation triangulation;
    UndrawnFaces withTooFewCorners;
    UndrawnFaces notTriangulated;
    QVector<unsigned int> triangles;
    for (unsigned long i = 0; i < faces.size; ++i) {
        int count = 0;
        const int *face = corners.find(faces.data[i], count);
        if (!face)
            continue;
        const QVector<int> &positionsInFace = triangulation.triangulate(count, face, xyz);
        for (const int corner : positionsInFace)
            triangles.append(static_cast<unsigned int>(face[corner]));
        if (positionsInFace.isEmpty())
            (count < 3 ? withTooFewCorners : notTriangulated).add(faces.data[i], 1);
    }
    if (PreparationReport *report = currentReport()) {
        using Reason = PreparationReport::Reason;
        addUndrawnFaces(*report, Reason::TooFewCorners, QString(), withTooFewCorners);
        addUndrawnFaces(*report, Reason::NotTriangulated, QString(), notTriangulated);
    }

    if (!_state->gpuIndices || _state->gpuIndices->isEmpty())
        _state->gpuIndices = _state->allocate(GL_UNSIGNED_INT, 0);
    if (!_state->gpuIndices)
        return;
    _state->addDrawCommand(name, group.flags, static_cast<unsigned>(_state->gpuIndices->size()),
                           static_cast<unsigned>(triangles.size()));
    _state->gpuIndices->append(static_cast<unsigned long>(triangles.size()), triangles.constData());
}

namespace {

/// Whether the attribute can be read as x, y, z floats.
bool isPositionAttribute(const ModelBuilderState &state, const QString &name)
{
    const auto attribute = state.vertexAttributes.constFind(name);
    return attribute != state.vertexAttributes.constEnd() &&
           attribute->components >= PositionFloats && attribute->values &&
           attribute->values->type() == GL_FLOAT;
}

/// Per face the position of its first corner, with 32-bit wrap-around.
QVector<unsigned int> faceOffsets(const StreamPointer &verticesPerFace)
{
    QVector<unsigned int> offsets;
    const Numbers counts(verticesPerFace);
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
bool commandsFitIndices(const ModelBuilderState &state)
{
    const quint64 available = state.gpuIndices ? state.gpuIndices->size() : 0;
    for (const ModelBuilderState::Commands &commands : state.drawCommands) {
        for (const DrawElementsIndirectCommand &command : commands) {
            if (quint64(command.firstIndex) + command.count > available)
                return false;
        }
    }
    return true;
}

/// False when a group could not be prepared: the model would lack it.
bool prepareMaterialGroups(ModelBuilder &builder, const VertexAttribute &positions)
{
    const StageTimer timer(&PreparationReport::Stages::triangulate);
    ModelBuilderState &state = builder.state();
    const QVector<unsigned int> offsets = faceOffsets(state.verticesPerFace);
    for (auto it = state.materialGroups.cbegin(); it != state.materialGroups.cend(); ++it) {
        if (!it->faces || it->faces->isEmpty())
            continue;
        builder.prepareMaterialGroupForUpload(it.key(), it.value(), positions.gpuValues,
                                              positions.gpuIndices, offsets);
        if (!state.gpuIndices)
            return false;
    }
    return true;
}

/// Gives the requested attribute one normal per GPU vertex.
bool computeNormals(ModelBuilderState &state, const VertexAttribute &positions)
{
    const StageTimer timer(&PreparationReport::Stages::normals);
    const auto vertexCount = static_cast<int>(positions.gpuValues->size() /
                                              static_cast<unsigned long>(positions.components));
    const auto count = static_cast<unsigned long>(vertexCount) * PositionFloats;
    const StreamPointer normals = state.allocate(GL_FLOAT, count);
    if (!normals || normals->size() < count || !state.gpuIndices)
        return false;
    TriMeshVertexNormals(vertexCount, static_cast<int>(state.gpuIndices->size()),
                         static_cast<const float *>(positions.gpuValues->data(0)),
                         static_cast<const unsigned *>(state.gpuIndices->data(0)),
                         static_cast<float *>(normals->data(0)));
    VertexAttribute &attribute = state.vertexAttributes[state.normalsAttribute];
    attribute.gpuValues = normals;
    attribute.gpuIndices = positions.gpuIndices;
    attribute.components = PositionFloats;
    return true;
}

/// Streams, commands and normals. False when something of it cannot be had.
bool prepareEverything(ModelBuilder &builder, const QString &positionAttribute)
{
    ModelBuilderState &state = builder.state();
    builder.buildGPUFriendlyStreams(false);
    // A copy: computing normals may change the record.
    const VertexAttribute positions = state.vertexAttributes.value(positionAttribute);
    if (!positions.gpuValues || !positions.gpuIndices)
        return false;
    return prepareMaterialGroups(builder, positions) && commandsFitIndices(state) &&
           (state.normalsAttribute.isNull() || computeNormals(state, positions));
}

} // namespace

bool canBeUploaded(const ModelBuilder &builder, const QString &positionAttribute)
{
    return builder.isValid() && isPositionAttribute(builder.state(), positionAttribute);
}

bool prepareForUpload(ModelBuilder &builder, const QString &positionAttribute)
{
    ModelBuilderState &state = builder.state();
    if (!state.gpuIndices || state.gpuIndices->isEmpty()) {
        try {
            if (!prepareEverything(builder, positionAttribute)) {
                state.dropCommands();
                return false;
            }
        } catch (...) {
            state.dropCommands();
            throw;
        }
    }
    return state.hasGPUStreams();
}

} // namespace Halvard::Orv
