#include "ModelGeometry.h"

#include <OrvGL/BufferObject.h>
#include <OrvGL/DrawBuffers.h>
#include <OrvGL/GPUModel.h>
#include <OrvGL/OpenGLFunctions.h>
#include <OrvGL/VertexArrayObject.h>

#include <QtCore/QByteArray>

#include <algorithm>
#include <cstring>

namespace Halvard::Orv::Render {

namespace {

std::vector<QVector3D> readPositions(const DrawBuffers &bundle)
{
    static_assert(sizeof(QVector3D) == 3 * sizeof(float), "copied as plain floats");
    if (!bundle.VAO())
        return {};
    for (const VertexArrayObject::Attribute &attribute : bundle.VAO()->attributes()) {
        if (attribute.name != QLatin1String("va_Vertex") || !attribute.buffer ||
            attribute.components != 3 || attribute.type != GL_FLOAT)
            continue;
        const QByteArray bytes = attribute.buffer->download();
        std::vector<QVector3D> positions(size_t(bytes.size()) / sizeof(QVector3D));
        if (!positions.empty())
            std::memcpy(static_cast<void *>(positions.data()), bytes.constData(),
                        positions.size() * sizeof(QVector3D));
        return positions;
    }
    return {};
}

template <typename Index>
std::vector<quint32> widened(const QByteArray &bytes)
{
    const size_t count = size_t(bytes.size()) / sizeof(Index);
    std::vector<quint32> indices(count);
    for (size_t i = 0; i < count; ++i) {
        Index index;
        std::memcpy(&index, bytes.constData() + i * sizeof(Index), sizeof(Index));
        indices[i] = index;
    }
    return indices;
}

/// The box around the vertices of one command; marks them in `used`.
Bounds boundsOfCommand(const DrawElementsIndirectCommand &command,
                       const std::vector<quint32> &indices, const std::vector<QVector3D> &positions,
                       std::vector<bool> &used)
{
    Bounds bounds;
    if (command.instanceCount == 0)
        return bounds;
    const size_t first = std::min(size_t(command.firstIndex), indices.size());
    const size_t end = std::min(first + command.count, indices.size());
    for (size_t i = first; i < end; ++i) {
        const qint64 vertex = qint64(indices[i]) + command.baseVertex;
        if (vertex < 0 || vertex >= qint64(positions.size()))
            continue;
        if (bounds.include(positions[size_t(vertex)]))
            used[size_t(vertex)] = true;
    }
    return bounds;
}

} // namespace

std::vector<quint32> readIndices(const DrawBuffers &bundle)
{
    if (!bundle.indexBuffer())
        return {};
    const QByteArray bytes = bundle.indexBuffer()->download();
    switch (bundle.indexType()) {
    case GL_UNSIGNED_BYTE:
        return widened<quint8>(bytes);
    case GL_UNSIGNED_SHORT:
        return widened<quint16>(bytes);
    case GL_UNSIGNED_INT:
        return widened<quint32>(bytes);
    default:
        return {};
    }
}

ModelGeometry readGeometry(const GPUModel &model)
{
    ModelGeometry geometry;
    for (int i = 0; i < model.bundleCount(); ++i) {
        const DrawBuffers &bundle = *model.bundle(i);
        const std::vector<quint32> indices = readIndices(bundle);
        const std::vector<QVector3D> positions = readPositions(bundle);
        std::vector<bool> used(positions.size(), false);

        std::vector<Bounds> commands;
        for (const DrawElementsIndirectCommand &command : bundle.commands()) {
            commands.push_back(boundsOfCommand(command, indices, positions, used));
            geometry.bounds.include(commands.back());
        }
        geometry.commandBounds.push_back(std::move(commands));
        for (size_t vertex = 0; vertex < positions.size(); ++vertex) {
            if (used[vertex])
                geometry.points.push_back(positions[vertex]);
        }
    }
    return geometry;
}

} // namespace Halvard::Orv::Render
