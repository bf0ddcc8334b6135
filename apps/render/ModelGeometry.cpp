#include "ModelGeometry.h"

#include <OrvGL/BufferObject.h>
#include <OrvGL/DrawBuffers.h>
#include <OrvGL/GPUModel.h>
#include <OrvGL/OpenGLFunctions.h>
#include <OrvGL/VertexArrayObject.h>
#include <OrvModel/PreparedModel.h>

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

/// Arrays of somebody else's.
template <typename Element>
struct Elements
{
    const Element *first;
    size_t count;
};

/// The box around the vertices of one command; marks them in `used`.
Bounds boundsOfCommand(const DrawElementsIndirectCommand &command, Elements<quint32> indices,
                       Elements<QVector3D> positions, std::vector<bool> &used)
{
    Bounds bounds;
    if (command.instanceCount == 0)
        return bounds;
    const size_t first = std::min(size_t(command.firstIndex), indices.count);
    const size_t end = std::min(first + command.count, indices.count);
    for (size_t i = first; i < end; ++i) {
        const qint64 vertex = qint64(indices.first[i]) + command.baseVertex;
        if (vertex < 0 || vertex >= qint64(positions.count))
            continue;
        if (bounds.include(positions.first[vertex]))
            used[size_t(vertex)] = true;
    }
    return bounds;
}

template <typename Commands>
void addBundle(const Commands &commands, Elements<quint32> indices, Elements<QVector3D> positions,
               ModelGeometry &geometry)
{
    std::vector<bool> used(positions.count, false);
    std::vector<Bounds> bounds;
    for (const DrawElementsIndirectCommand &command : commands) {
        bounds.push_back(boundsOfCommand(command, indices, positions, used));
        geometry.bounds.include(bounds.back());
    }
    geometry.commandBounds.push_back(std::move(bounds));
    for (size_t vertex = 0; vertex < positions.count; ++vertex) {
        if (used[vertex])
            geometry.points.push_back(positions.first[vertex]);
    }
}

/// Floats are not QVector3Ds to the compiler, though they lie the same.
std::vector<QVector3D> positionsOf(const PreparedModel &model)
{
    for (const PreparedModel::Attribute &attribute : model.attributes()) {
        if (attribute.name != QLatin1String("va_Vertex") || attribute.components != 3)
            continue;
        std::vector<QVector3D> positions(model.vertexCount());
        for (size_t i = 0; i < positions.size(); ++i)
            positions[i] = {attribute.values[3 * i], attribute.values[3 * i + 1],
                            attribute.values[3 * i + 2]};
        return positions;
    }
    return {};
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
        addBundle(bundle.commands(), {indices.data(), indices.size()},
                  {positions.data(), positions.size()}, geometry);
    }
    return geometry;
}

ModelGeometry geometryOf(const PreparedModel &model)
{
    ModelGeometry geometry;
    std::vector<DrawElementsIndirectCommand> commands;
    for (const PreparedModel::Command &command : model.commands())
        commands.push_back({command.indexCount, 1, command.firstIndex, 0, 0});
    if (commands.empty())
        return geometry;
    const std::vector<QVector3D> positions = positionsOf(model);
    addBundle(commands, {model.indices(), model.indexCount()}, {positions.data(), positions.size()},
              geometry);
    return geometry;
}

} // namespace Halvard::Orv::Render
