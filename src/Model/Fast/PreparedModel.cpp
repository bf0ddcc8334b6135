// Memory, at its highest: while vertices are welded, the position indices and all
// values before and after; while faces are cut, corners and triangles, unless the
// triangles can take the place of the corners.
#include "PreparedModel.h"

#include "../LoadReport.h"
#include "../RowWelding.h"
#include "CornerWelding.h"
#include "FaceTriangles.h"
#include "LargeMemory.h"
#include "OwnedStream.h"
#include "VertexNormalSums.h"

#include <OrvGL/OpenGLFunctions.h>

#include <QtCore/QHash>

#include <limits>

namespace Halvard::Orv {

namespace {

bool isDrawable(const OBJGeometry &geometry)
{
    const auto isSound = [](const OBJAttribute &attribute) {
        return !attribute.exists() || !attribute.indices.isEmpty();
    };
    return geometry.positions.exists() && geometry.faceCount() > 0 && isSound(geometry.positions) &&
           isSound(geometry.normals) && isSound(geometry.texCoords);
}

/// Elements are counted in signed 32-bit numbers when they go to the GPU, floats
/// per vertex as well as triangle indices.
bool fitsCounts(const OBJGeometry &geometry, const FaceSums &faces)
{
    constexpr quint64 limit = std::numeric_limits<int>::max();
    return faces.corners == geometry.cornerCount && 3 * faces.corners <= limit &&
           3 * faces.triangles <= limit;
}

WeldedCorners weld(OBJGeometry &geometry, const void *builder)
{
    const StageTimer timer(&LoadReport::Stages::weld);
    WeldedCorners welded = weldCorners(geometry);
    reportWelding(builder, static_cast<int>(geometry.cornerCount),
                  static_cast<int>(welded.vertexCount), sizeof(quint32));
    return welded;
}

/// The groups that have faces, in the order asked for.
QVector<const FaceGroup *> orderedGroups(const OBJGeometry &geometry, const QStringList &names)
{
    QHash<QString, const FaceGroup *> byName;
    for (const FaceGroup &group : geometry.groups)
        byName.insert(group.material, &group);
    QVector<const FaceGroup *> groups;
    for (const QString &name : names) {
        if (const FaceGroup *group = byName.value(name))
            groups.append(group);
    }
    return groups;
}

/// Whether each run lies behind the one before it in the file.
bool areInFileOrder(const QVector<const FaceGroup *> &groups)
{
    quint32 nextFace = 0;
    for (const FaceGroup *group : groups) {
        for (const FaceRun &run : group->runs) {
            if (run.firstFace < nextFace)
                return false;
            nextFace = run.firstFace + run.faceCount;
        }
    }
    return true;
}

/// The triangles of all groups, and a command for each.
GrowArray<quint32> triangulate(const OBJGeometry &geometry, const FaceSums &sums,
                               const QStringList &groupOrder, WeldedCorners &welded,
                               VertexNormalSums *normals, QVector<PreparedModel::Command> &commands)
{
    const StageTimer timer(&LoadReport::Stages::triangulate);
    const QVector<const FaceGroup *> groups = orderedGroups(geometry, groupOrder);
    GrowArray<quint32> corners = std::move(welded.vertexOfCorner);
    GrowArray<quint32> separate;
    const bool inPlace = !sums.hasLargerThanTriangles && areInFileOrder(groups);
    if (!inPlace)
        reserveLarge(separate, 3 * sums.triangles);
    GrowArray<quint32> &indices = inPlace ? corners : separate;

    FaceTriangles triangles(geometry.cornerCounts, corners.data(), welded.positions.data(),
                            indices.data(), normals);
    for (const FaceGroup *group : groups) {
        const size_t first = triangles.size();
        for (const FaceRun &run : group->runs)
            triangles.addRun(run);
        commands.append({group->material, static_cast<quint32>(first),
                         static_cast<quint32>(triangles.size() - first)});
    }
    indices.resize(triangles.size());
    indices.shrink();
    return std::move(indices);
}

/// As above, with normals for all vertices on the way.
GrowArray<quint32> triangulateWithNormals(const OBJGeometry &geometry, const FaceSums &sums,
                                          const QStringList &groupOrder, WeldedCorners &welded,
                                          QVector<PreparedModel::Command> &commands)
{
    reserveLarge(welded.normals, 3 * size_t(welded.vertexCount));
    welded.normals.commit(3 * size_t(welded.vertexCount));
    VertexNormalSums normals(welded.vertexCount, welded.positions.data(), welded.normals.data());
    GrowArray<quint32> indices =
        triangulate(geometry, sums, groupOrder, welded, &normals, commands);
    const StageTimer timer(&LoadReport::Stages::normals);
    normals.normalize();
    return indices;
}

PreparedModel::Attribute attribute(const QString &name, int components, GrowArray<float> &&values)
{
    return {name, OwnedStream<float>::make(GL_FLOAT, std::move(values)), components};
}

} // namespace

PreparedModel prepareGeometry(OBJGeometry &&geometry, const QStringList &groupOrder,
                              const void *builder)
{
    const FaceSums sums(geometry.cornerCounts);
    if (!isDrawable(geometry) || !fitsCounts(geometry, sums))
        return {};

    PreparedModel model;
    const bool hasNormals = geometry.normals.exists();
    const bool hasTexCoords = geometry.texCoords.exists();
    WeldedCorners welded = weld(geometry, builder);
    GrowArray<quint32> indices =
        hasNormals ? triangulate(geometry, sums, groupOrder, welded, nullptr, model.commands)
                   : triangulateWithNormals(geometry, sums, groupOrder, welded, model.commands);
    geometry = {};

    model.attributes.append(attribute(QStringLiteral("va_Vertex"), 3, std::move(welded.positions)));
    model.attributes.append(attribute(QStringLiteral("va_Normal"), 3, std::move(welded.normals)));
    if (hasTexCoords)
        model.attributes.append(
            attribute(QStringLiteral("va_TexCoord"), 2, std::move(welded.texCoords)));
    model.indices = OwnedStream<quint32>::make(GL_UNSIGNED_INT, std::move(indices));
    return model;
}

} // namespace Halvard::Orv
