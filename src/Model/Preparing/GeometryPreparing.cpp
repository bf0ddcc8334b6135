// Memory in bytes, the geometry included:
//
//   while tuples are found    4 a corner for each attribute that has indices,
//                             8 or 12 a value, 4 a position, 8 a tuple
//   while vertices are welded the same, but 6 a tuple more and nothing a position
//   while faces are cut       4 a corner, 12 a triangle unless triangles can take
//                             the place of their corners, the vertices' values
//
// and one a face throughout. A triangle mesh without anything but positions, the
// worst of common files, takes 40 bytes of text for each triangle, and 34 here.
#include "Preparing/GeometryPreparing.h"

#include "Builder/OwnedStream.h"
#include "Preparing/CornerWelding.h"
#include "Preparing/FaceSums.h"
#include "Preparing/FaceTriangles.h"
#include "Reports/CurrentReport.h"
#include "Reports/WeldingReport.h"
#include "Triangles/VertexNormalSums.h"

#include <OrvGL/OpenGLFunctions.h>

#include <QtCore/QMap>

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
/// per vertex as well as triangle indices. What a scan lets through fits by far: this is
/// for geometry that comes from elsewhere.
bool fitsCounts(const OBJGeometry &geometry, const FaceSums &faces)
{
    constexpr quint64 limit = std::numeric_limits<int>::max();
    return faces.corners == geometry.cornerCount && 3 * faces.corners <= limit &&
           3 * faces.triangles <= limit;
}

/// The groups that have faces, in the order asked for. The map is ordered since a file can
/// be made whose names collide in a hash table.
QVector<const FaceGroup *> orderedGroups(const OBJGeometry &geometry, const QStringList &names)
{
    QMap<QString, const FaceGroup *> byName;
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

PreparedGeometry::Attribute attribute(const QString &name, int components,
                                      GrowArray<float> &&values)
{
    return {name, OwnedStream<float>::make(GL_FLOAT, std::move(values)), components};
}

/// The steps from geometry to model. What a step uses up is gone when it ends.
class Preparation
{
public:
    Preparation(OBJGeometry &geometry, const FaceSums &sums)
        : _geometry(geometry), _sums(sums), _hasNormals(geometry.normals.exists()),
          _hasTexCoords(geometry.texCoords.exists())
    {}

    PreparedGeometry run(const QStringList &groupOrder, const void *builder)
    {
        weld(builder);
        const QVector<const FaceGroup *> groups = orderedGroups(_geometry, groupOrder);
        const bool inPlace = !_sums.hasLargerThanTriangles && areInFileOrder(groups);
        reuseMemory(inPlace);
        if (_hasNormals) {
            triangulate(groups, inPlace, nullptr);
        } else if (inPlace || fitNormals()) {
            VertexNormalSums normals = startNormals();
            triangulate(groups, inPlace, &normals);
            finishNormals(normals);
        } else {
            triangulate(groups, inPlace, nullptr);
            VertexNormalSums normals = startNormals();
            addAllTriangles(normals);
            finishNormals(normals);
        }
        return takeModel();
    }

private:
    void weld(const void *builder)
    {
        const StageTimer timer(&PreparationReport::Stages::weld);
        _welded = weldCorners(_geometry);
        reportWelding(builder, static_cast<int>(_geometry.cornerCount),
                      static_cast<int>(_welded.vertexCount), sizeof(quint32));
    }

    /// Puts what welding has used up where the largest array still to be made goes.
    void reuseMemory(bool inPlace)
    {
        GrowArray<float> reusable = std::move(_welded.reusable);
        if (!inPlace)
            _triangleIndices = std::move(reusable).recast<quint32>();
        else if (!_hasNormals)
            _welded.normals = std::move(reusable);
    }

    /// Whether normals, beside corners and triangles, still take less than the file,
    /// with an eighth left for what is not counted here.
    bool fitNormals() const
    {
        const size_t floats =
            2 * _welded.positions.size() + _welded.texCoords.size(); // positions and normals
        const size_t corners = _welded.vertexOfCorner.size();
        return 4 * (floats + corners + 3 * _sums.triangles) + _geometry.faceCount() <=
               _geometry.textBytes / 8 * 7;
    }

    /// The triangles of all groups, and a command for each.
    void triangulate(const QVector<const FaceGroup *> &groups, bool inPlace,
                     VertexNormalSums *normals)
    {
        const StageTimer timer(&PreparationReport::Stages::triangulate);
        GrowArray<quint32> vertexOfCorner = std::move(_welded.vertexOfCorner);
        const quint32 *const corners = vertexOfCorner.data();
        if (inPlace) // the triangles take the place of their corners
            _triangleIndices = std::move(vertexOfCorner);
        else
            _triangleIndices.reserveMore(3 * _sums.triangles);

        FaceTriangles triangles(_geometry.cornerCounts, corners, _welded.positions.data(),
                                _triangleIndices.data(), normals);
        for (const FaceGroup *group : groups) {
            const size_t first = triangles.size();
            for (const FaceRun &run : group->runs)
                triangles.addRun(run);
            _model.commands.append({group->material, static_cast<quint32>(first),
                                    static_cast<quint32>(triangles.size() - first)});
        }
        _model.withTooFewCorners = triangles.withTooFewCorners();
        _model.notTriangulated = triangles.notTriangulated();
        _triangleIndices.resize(triangles.size());
        _triangleIndices.shrink();
        _geometry = {};
    }

    VertexNormalSums startNormals()
    {
        const StageTimer timer(&PreparationReport::Stages::normals);
        const size_t count = 3 * size_t(_welded.vertexCount);
        _welded.normals.resize(count);
        _welded.normals.shrink();
        return {_welded.vertexCount, _welded.positions.data(), _welded.normals.data()};
    }

    void addAllTriangles(VertexNormalSums &normals)
    {
        const StageTimer timer(&PreparationReport::Stages::normals);
        normals.add(_triangleIndices.data(), _triangleIndices.size());
    }

    static void finishNormals(VertexNormalSums &normals)
    {
        const StageTimer timer(&PreparationReport::Stages::normals);
        normals.normalize();
    }

    PreparedGeometry takeModel()
    {
        _model.attributes.append(
            attribute(QStringLiteral("va_Vertex"), 3, std::move(_welded.positions)));
        _model.attributes.append(
            attribute(QStringLiteral("va_Normal"), 3, std::move(_welded.normals)));
        if (_hasTexCoords)
            _model.attributes.append(
                attribute(QStringLiteral("va_TexCoord"), 2, std::move(_welded.texCoords)));
        _model.indices = OwnedStream<quint32>::make(GL_UNSIGNED_INT, std::move(_triangleIndices));
        return std::move(_model);
    }

    OBJGeometry &_geometry;
    const FaceSums &_sums;
    const bool _hasNormals;
    const bool _hasTexCoords;
    WeldedCorners _welded;
    GrowArray<quint32> _triangleIndices;
    PreparedGeometry _model;
};

} // namespace

PreparedGeometry prepareGeometry(OBJGeometry &&geometry, const QStringList &groupOrder,
                                 const void *builder, Work *)
{
    const FaceSums sums(geometry.cornerCounts);
    if (!isDrawable(geometry) || !fitsCounts(geometry, sums))
        return {};
    return Preparation(geometry, sums).run(groupOrder, builder);
}

} // namespace Halvard::Orv
