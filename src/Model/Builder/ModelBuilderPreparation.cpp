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

/// The corners of faces as vertex numbers, with every number checked.
class FaceCorners
{
public:
    FaceCorners(const StreamNumbers &counts, const StreamNumbers &indices,
                const QVector<unsigned> &faceOffsets, unsigned long vertexCount)
        : _counts(counts), _indices(indices), _offsets(faceOffsets), _vertexCount(vertexCount)
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
    const StreamNumbers &_counts;
    const StreamNumbers &_indices;
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
    const StreamNumbers vertices(indices);
    if (_state->verticesPerFace->type() != GL_UNSIGNED_INT)
        reportFailedAssertion(FaceTypeCheckLine, "GL_UNSIGNED_INT == _verticesPerFace->type()",
                              QString::asprintf("Wrong Face type 0x%X, needs to be 0x%X",
                                                _state->verticesPerFace->type(), GL_UNSIGNED_INT));

    const StreamNumbers counts(_state->verticesPerFace);
    const StreamNumbers faces(group.faces);
    const auto *xyz = static_cast<const float *>(positions->data(0));
    const FaceCorners corners(counts, vertices, faceOffsets,
                              readableBytes(*positions) / (PositionFloats * sizeof(float)));
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
    if (!holds(_state->gpuIndices, GL_UNSIGNED_INT, 0)) {
        _state->dropCommands(); // it hands out other elements, or nothing
        return;
    }
    try {
        _state->addDrawCommand(name, group.flags, static_cast<unsigned>(_state->gpuIndices->size()),
                               static_cast<unsigned>(triangles.size()));
        _state->gpuIndices->append(static_cast<unsigned long>(triangles.size()),
                                   triangles.constData());
    } catch (...) {
        _state->dropCommands(); // which of the triangles there are, nobody knows
        throw;
    }
}

namespace {

/// Per face the position of its first corner, with 32-bit wrap-around.
QVector<unsigned int> faceOffsets(const StreamPointer &verticesPerFace)
{
    QVector<unsigned int> offsets;
    const StreamNumbers counts(verticesPerFace);
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
    for (const auto &[name, group] : state.materialGroups) {
        if (!group.faces || group.faces->isEmpty())
            continue;
        builder.prepareMaterialGroupForUpload(name, group, positions.gpuValues,
                                              positions.gpuIndices, offsets);
        if (!state.gpuIndices)
            return false;
    }
    return true;
}

/// A stream of normals for so many vertices; null when it cannot be had.
StreamPointer allocateNormals(const ModelBuilderState &state, int vertexCount)
{
    const auto count = static_cast<unsigned long>(vertexCount) * PositionFloats;
    const StreamPointer normals = state.allocate(GL_FLOAT, count);
    return holds(normals, GL_FLOAT, count) ? normals : StreamPointer();
}

/// Gives the requested attribute one normal per GPU vertex.
bool computeNormals(ModelBuilderState &state, const VertexAttribute &positions)
{
    const StageTimer timer(&PreparationReport::Stages::normals);
    if (!state.gpuIndices) // dropped by an upload that failed, and no group has faces now
        return false;
    const bool isNew = !state.vertexAttributes.contains(state.normalsAttribute);
    VertexAttribute &attribute = state.vertexAttributes[state.normalsAttribute];
    const auto vertexCount = static_cast<int>(positions.gpuValues->size() /
                                              static_cast<unsigned long>(positions.components));
    StreamPointer normals;
    const auto dropNewAttribute = [&] {
        if (isNew)
            state.vertexAttributes.remove(state.normalsAttribute);
    };
    try {
        normals = allocateNormals(state, vertexCount);
    } catch (...) {
        dropNewAttribute();
        throw;
    }
    if (!normals) {
        dropNewAttribute();
        return false;
    }
    attribute.gpuValues = normals;
    attribute.gpuIndices = positions.gpuIndices;
    attribute.components = PositionFloats;
    TriMeshVertexNormals(vertexCount, static_cast<int>(state.gpuIndices->size()),
                         static_cast<const float *>(positions.gpuValues->data(0)),
                         static_cast<const unsigned *>(state.gpuIndices->data(0)),
                         static_cast<float *>(normals->data(0)));
    return true;
}

/// Whether the GPU values can be read as x, y, z floats.
bool arePositions(const VertexAttribute &attribute)
{
    return attribute.components >= PositionFloats && attribute.gpuValues && attribute.gpuIndices &&
           attribute.gpuValues->type() == GL_FLOAT;
}

/// Streams, commands and normals. False when something of it cannot be had.
bool prepareEverything(ModelBuilder &builder, const QString &positionAttribute)
{
    ModelBuilderState &state = builder.state();
    builder.buildGPUFriendlyStreams(false);
    // A copy: computing normals may change the record.
    const VertexAttribute positions = state.vertexAttributes.value(positionAttribute);
    return arePositions(positions) && prepareMaterialGroups(builder, positions) &&
           commandsFitIndices(state) &&
           (state.normalsAttribute.isNull() || computeNormals(state, positions));
}

} // namespace

bool canBeUploaded(const ModelBuilder &builder, const QString &positionAttribute)
{
    return builder.isValid() && builder.hasVertexAttribute(positionAttribute);
}

bool prepareForUpload(ModelBuilder &builder, const QString &positionAttribute)
{
    ModelBuilderState &state = builder.state();
    if (state.vertexAttributes.value(positionAttribute).components < PositionFloats)
        return false;
    if (state.gpuIndices && !state.gpuIndices->isEmpty())
        return state.hasGPUStreams() &&
               arePositions(state.vertexAttributes.value(positionAttribute));
    try {
        if (prepareEverything(builder, positionAttribute))
            return state.hasGPUStreams();
    } catch (...) {
        state.dropCommands();
        throw;
    }
    state.dropCommands();
    return false;
}

} // namespace Halvard::Orv
