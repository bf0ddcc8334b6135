// One index per corner instead of one per corner and attribute.
#include <OrvModel/ModelBuilder.h>
#include <OrvModel/OBJReader.h>
#include <OrvModel/VertexKey.h>

#include "Builder/CornerHash.h"
#include "Builder/ModelBuilderState.h"
#include "Builder/StreamBytes.h"
#include "Reports/CurrentReport.h"

#include <OrvGL/OpenGLFunctions.h>

#include <QtCore/QHash>

#include <algorithm>
#include <limits>
#include <numeric>
#include <vector>

namespace Halvard::Orv {

namespace {

using StreamPointer = ModelBuilderState::StreamPointer;
using VertexAttribute = ModelBuilderState::VertexAttribute;

/// Per attribute the address of one index for every corner.
using IndexList = QVector<const unsigned *>;

/// Sum of all corner counts, with 32-bit wrap-around.
unsigned sumOfCorners(const StreamPointer &verticesPerFace)
{
    const StreamNumbers counts(verticesPerFace);
    return std::accumulate(counts.data, counts.data + counts.size, 0u);
}

/// The indices of one attribute, one for every corner: the stream's own memory,
/// or, where the stream is too short, a copy whose missing entries select nothing.
class CornerIndices
{
public:
    explicit CornerIndices(const StreamPointer &stream) : _stream(stream), _indices(_stream.data) {}

    const unsigned *padded(unsigned cornerCount)
    {
        if (_stream.size < cornerCount) {
            _padded.assign(cornerCount, static_cast<unsigned>(OBJReader::AbsentIndex));
            std::copy_n(_stream.data, _stream.size, _padded.begin());
            _indices = _padded.data();
        }
        return _indices;
    }

private:
    StreamNumbers _stream;
    const unsigned *_indices;
    std::vector<unsigned> _padded;
};

/// Copies single values of an attribute into its GPU stream.
class ValueCopier
{
public:
    ValueCopier(const StreamPointer &values, unsigned type, int components,
                const StreamPointer &target)
        : _target(target), _components(components),
          _valueBytes(ModelDataStream::typeSize(type) * static_cast<unsigned long>(components))
    {
        if (values && components > 0) {
            _values = static_cast<const char *>(values->data(0));
            _valueCount = values->size() / static_cast<unsigned long>(components);
        }
    }

    /// Makes value `index` the value of GPU vertex `vertex`. An index that selects
    /// no value selects zeros.
    void copy(unsigned index, int vertex)
    {
        _target->setData(static_cast<unsigned long>(_components * vertex),
                         static_cast<unsigned long>(_components),
                         index < _valueCount ? _values + index * _valueBytes : zeros());
    }

private:
    /// A value of zeros, made when there is a vertex that needs it: the components of a
    /// model without corners may be more than memory holds.
    const char *zeros()
    {
        _nothing.resize(_valueBytes, '\0');
        return _nothing.data();
    }

    const StreamPointer &_target;
    int _components;
    unsigned long _valueBytes;
    std::vector<char> _nothing;
    const char *_values = nullptr;
    unsigned long _valueCount = 0;
};

/// GPU vertices as corners: which corner each one is taken from, and which one
/// each corner uses. Without lists, every corner is a GPU vertex of its own.
struct GPUVertices
{
    unsigned count = 0;
    std::vector<unsigned> firstCorner;
    std::vector<unsigned> vertexOfCorner;

    unsigned cornerOf(unsigned vertex) const
    {
        return firstCorner.empty() ? vertex : firstCorner[vertex];
    }
};

GPUVertices oneVertexPerCorner(unsigned cornerCount)
{
    GPUVertices vertices;
    vertices.count = cornerCount;
    return vertices;
}

/// One GPU vertex per distinct index tuple, in order of first appearance.
GPUVertices oneVertexPerTuple(const IndexList &indexList, unsigned cornerCount)
{
    GPUVertices vertices;
    vertices.vertexOfCorner.assign(cornerCount, 0);
    vertices.firstCorner.reserve(cornerCount >> 1);
    QHash<VertexKey, unsigned> known;
    for (unsigned corner = 0; corner < cornerCount; ++corner) {
        const VertexKey key = {&indexList, corner, hashOfCorner(indexList, corner)};
        // Inserting the default and looking at it hashes and probes only once.
        unsigned &numberPlusOne = known[key];
        if (numberPlusOne == 0) {
            numberPlusOne = ++vertices.count;
            vertices.firstCorner.push_back(corner);
        }
        vertices.vertexOfCorner[corner] = numberPlusOne - 1;
    }
    return vertices;
}

/// Writes the GPU vertex number of every corner.
void fillIndices(const GPUVertices &vertices, unsigned cornerCount, bool deduplicate,
                 const StreamPointer &stream)
{
    if (deduplicate) {
        stream->setData(0, cornerCount, vertices.vertexOfCorner.data());
    } else {
        auto *indices = static_cast<unsigned *>(stream->data(0));
        std::iota(indices, indices + cornerCount, 0u);
    }
}

/// Element offsets are signed 32-bit numbers; what goes beyond them is not built.
bool cornersFitStreams(const ModelBuilderState &state, unsigned cornerCount)
{
    constexpr quint64 limit = std::numeric_limits<int>::max();
    return std::all_of(state.vertexAttributes.cbegin(), state.vertexAttributes.cend(),
                       [&](const VertexAttribute &attribute) {
                           const auto components =
                               static_cast<quint64>(std::max(attribute.components, 1));
                           return cornerCount * components <= limit;
                       });
}

/// Gives one attribute its GPU streams. False when the values cannot be had.
bool buildAttribute(const ModelBuilderState &state, VertexAttribute &attribute,
                    const StreamPointer &sharedIndices, const GPUVertices &vertices,
                    const unsigned *indices)
{
    const unsigned type = attribute.values ? attribute.values->type() : GL_FLOAT;
    const int components = std::max(attribute.components, 0);
    const unsigned long count =
        static_cast<unsigned long>(vertices.count) * static_cast<unsigned long>(components);
    attribute.gpuIndices = sharedIndices;
    attribute.gpuValues = state.allocate(type, count);
    if (!holds(attribute.gpuValues, type, count))
        return false;
    ValueCopier copier(attribute.values, type, components, attribute.gpuValues);
    for (unsigned vertex = 0; vertex < vertices.count; ++vertex)
        copier.copy(indices[vertices.cornerOf(vertex)], static_cast<int>(vertex));
    return true;
}

/// Gives every attribute its GPU streams, not welded yet. False when a stream cannot be
/// had; some attributes may have theirs then.
bool buildStreams(ModelBuilderState &state, unsigned cornerCount, bool deduplicate)
{
    std::vector<CornerIndices> cornerIndices;
    for (const VertexAttribute &attribute : qAsConst(state.vertexAttributes))
        cornerIndices.emplace_back(attribute.indices);
    // Before memory of our own is asked for: where the faces claim more corners than a
    // stream holds, nothing else is needed.
    const StreamPointer sharedIndices = state.allocate(GL_UNSIGNED_INT, cornerCount);
    if (!holds(sharedIndices, GL_UNSIGNED_INT, cornerCount))
        return false;
    IndexList indexList;
    for (CornerIndices &indices : cornerIndices)
        indexList.append(indices.padded(cornerCount));
    const GPUVertices vertices =
        deduplicate ? oneVertexPerTuple(indexList, cornerCount) : oneVertexPerCorner(cornerCount);
    fillIndices(vertices, cornerCount, deduplicate, sharedIndices);

    auto indices = indexList.cbegin();
    for (VertexAttribute &attribute : state.vertexAttributes) {
        if (!buildAttribute(state, attribute, sharedIndices, vertices, *indices++))
            return false;
    }
    return true;
}

} // namespace

bool operator==(const VertexKey &first, const VertexKey &second)
{
    for (int a = 0; a < first.indexStreams->size(); ++a) {
        if (first.indexStreams->at(a)[first.corner] != second.indexStreams->at(a)[second.corner])
            return false;
    }
    return true;
}

unsigned qHash(const VertexKey &key)
{
    return key.hash;
}

void ModelBuilder::buildGPUFriendlyStreams(bool deduplicate)
{
    const StageTimer timer(&PreparationReport::Stages::weld);
    const auto isBuilt = [](const VertexAttribute &attribute) {
        return attribute.gpuValues && attribute.gpuIndices;
    };
    if (std::all_of(_state->vertexAttributes.cbegin(), _state->vertexAttributes.cend(), isBuilt))
        return; // also when there is no attribute

    const unsigned cornerCount = sumOfCorners(_state->verticesPerFace);
    if (!cornersFitStreams(*_state, cornerCount))
        return;
    try {
        if (!buildStreams(*_state, cornerCount, deduplicate)) {
            _state->dropGPUStreams(); // no attribute may have half of them
            return;
        }
    } catch (...) {
        _state->dropGPUStreams();
        throw;
    }
    optimizeGPUStreams();
}

} // namespace Halvard::Orv
