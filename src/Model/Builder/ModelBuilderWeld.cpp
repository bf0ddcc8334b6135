// Welding of GPU vertices whose bytes are identical.
#include <OrvModel/ModelBuilder.h>

#include "Builder/AssertionReport.h"
#include "Builder/ModelBuilderState.h"
#include "Builder/StreamBytes.h"
#include "Reports/WeldingReport.h"
#include "Welding/RowWelding.h"

#include <OrvGL/OpenGLFunctions.h>

#include <algorithm>
#include <cstring>
#include <vector>

namespace Halvard::Orv {

namespace {

using StreamPointer = ModelBuilderState::StreamPointer;
using VertexAttribute = ModelBuilderState::VertexAttribute;

// Lines under which the two checks are known in logs.
constexpr int VertexCountCheckLine = 807;
constexpr int IndexTypeCheckLine = 851;

/// Bytes of one GPU vertex in one attribute.
size_t elementBytes(const StreamPointer &values, int components)
{
    return ModelDataStream::typeSize(values->type()) * static_cast<size_t>(std::max(components, 0));
}

/// The values of all attributes as columns of one table. A stream with fewer
/// vertices than the others is lengthened with zeros in a copy.
class VertexTable
{
public:
    void addColumn(const StreamPointer &values, size_t rowBytes, int rowCount)
    {
        const size_t needed = rowBytes * static_cast<size_t>(rowCount);
        const size_t available = readableBytes(*values);
        const char *bytes = static_cast<const char *>(values->data(0));
        if (available < needed) {
            std::vector<char> padded(needed);
            if (available > 0)
                std::memcpy(padded.data(), bytes, available);
            _padded.push_back(std::move(padded));
            bytes = _padded.back().data();
        }
        _columns.append({bytes, rowBytes});
    }

    const QVector<RowColumn> &columns() const { return _columns; }

private:
    QVector<RowColumn> _columns;
    std::vector<std::vector<char>> _padded; // moving keeps their bytes in place
};

/// Renumbers the indices in place. They are 32-bit numbers whatever the stream
/// calls itself.
void remap(const StreamPointer &indices, const QVector<int> &oldToNew)
{
    const StreamNumbers entries(indices);
    const auto known = static_cast<unsigned>(oldToNew.size());
    for (unsigned long i = 0; i < entries.size; ++i) {
        unsigned &entry = entries.data[i];
        if (entry < known)
            entry = static_cast<unsigned>(oldToNew.at(static_cast<int>(entry)));
    }
}

/// Copies the rows that stay into the compacted stream.
void compact(const RowColumn &column, const QVector<int> &newToOld, const StreamPointer &target)
{
    char *destination = static_cast<char *>(target->data(0));
    for (const int old : newToOld) {
        std::memcpy(destination, column.bytes + static_cast<size_t>(old) * column.rowBytes,
                    column.rowBytes);
        destination += column.rowBytes;
    }
}

/// Gives every attribute a stream of the vertices that stay. False when a stream
/// cannot be had.
bool replaceGPUValues(ModelBuilderState &state, const QVector<RowColumn> &columns,
                      const QVector<int> &newToOld, const StreamPointer &sharedIndices)
{
    auto column = columns.cbegin();
    for (VertexAttribute &attribute : state.vertexAttributes) {
        const unsigned long count = static_cast<unsigned long>(newToOld.size()) *
                                    static_cast<unsigned long>(std::max(attribute.components, 0));
        const unsigned type = attribute.gpuValues->type();
        const StreamPointer welded = state.allocate(type, count);
        if (!holds(welded, type, count))
            return false;
        compact(*column++, newToOld, welded);
        attribute.gpuIndices = sharedIndices;
        attribute.gpuValues = welded;
    }
    return true;
}

/// \param builder whose address the message on welding shows.
void weldGPUStreams(ModelBuilderState &state, const ModelBuilder *builder)
{
    StreamPointer sharedIndices;
    int vertexCount = 0;
    for (const VertexAttribute &attribute : qAsConst(state.vertexAttributes)) {
        if (!attribute.gpuValues || !attribute.gpuIndices)
            return;
        sharedIndices = attribute.gpuIndices;
        const int components = std::max(attribute.components, 1);
        vertexCount =
            static_cast<int>(attribute.gpuValues->size() / static_cast<unsigned long>(components));
    }
    if (!sharedIndices)
        return;

    VertexTable table;
    for (const VertexAttribute &attribute : qAsConst(state.vertexAttributes))
        table.addColumn(attribute.gpuValues,
                        elementBytes(attribute.gpuValues, attribute.components), vertexCount);
    QVector<int> oldToNew;
    QVector<int> newToOld;
    weldRows(table.columns(), vertexCount, oldToNew, newToOld);
    const int newVertexCount = newToOld.size();

    if (!(newVertexCount <= vertexCount))
        reportFailedAssertion(VertexCountCheckLine, "newVertexCount <= vertexCount",
                              QString::asprintf("%d <= %d", newVertexCount, vertexCount));
    if (sharedIndices->type() != GL_UNSIGNED_INT)
        reportFailedAssertion(IndexTypeCheckLine, "oldIndices->type() == GL_UNSIGNED_INT",
                              QString::asprintf("Index not uint32 0x%X", sharedIndices->type()));
    remap(sharedIndices, oldToNew);

    if (!replaceGPUValues(state, table.columns(), newToOld, sharedIndices)) {
        // The indices speak of vertices that nobody holds.
        state.dropGPUStreams();
        return;
    }
    reportWelding(builder, vertexCount, newVertexCount,
                  ModelDataStream::typeSize(sharedIndices->type()));
}

} // namespace

/// Streams that are welded only in part, because memory ended, would be taken for
/// finished by the next upload: there are none then.
void ModelBuilder::optimizeGPUStreams()
{
    try {
        weldGPUStreams(*_state, this);
    } catch (...) {
        _state->dropGPUStreams();
        throw;
    }
}

} // namespace Halvard::Orv
