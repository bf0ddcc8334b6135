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
#include "Preparing/FacePlan.h"
#include "Preparing/FaceSums.h"
#include "Preparing/ModelTriangles.h"
#include "Preparing/ParallelNormals.h"
#include "Reports/CurrentReport.h"
#include "Reports/WeldingReport.h"
#include "Threads/Work.h"
#include "Triangles/VertexNormalSums.h"

#include <OrvGL/OpenGLFunctions.h>

#include <QtCore/QMap>

#include <algorithm>
#include <limits>
#include <optional>

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
    Preparation(OBJGeometry &geometry, const FaceSums &sums, Work &work,
                const PreparingSizes &sizes)
        : _geometry(geometry), _sums(sums), _work(work), _sizes(sizes),
          _inParallel(!work.isAlone()), _hasNormals(geometry.normals.exists()),
          _hasTexCoords(geometry.texCoords.exists())
    {}

    PreparedGeometry run(const QStringList &groupOrder, const void *builder)
    {
        weld(builder);
        const QVector<const FaceGroup *> groups = orderedGroups(_geometry, groupOrder);
        _areInFileOrder = areInFileOrder(groups);
        const bool inPlace = !_sums.hasLargerThanTriangles && _areInFileOrder;
        reuseMemory(inPlace);
        const bool besides = !_hasNormals && (inPlace || fitNormals());
        if (besides)
            makeRoomForNormals();
        triangulate(groups, inPlace, besides);
        if (!_hasNormals && !besides) {
            makeRoomForNormals();
            sumUpNormals();
        }
        return takeModel();
    }

private:
    void weld(const void *builder)
    {
        const StageTimer timer(&PreparationReport::Stages::weld);
        _welded = weldCorners(_geometry, &_work, _sizes);
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
    /// \param withNormals whether the normals are made besides.
    void triangulate(const QVector<const FaceGroup *> &groups, bool inPlace, bool withNormals)
    {
        GrowArray<quint32> vertexOfCorner = std::move(_welded.vertexOfCorner);
        const quint32 *const corners = vertexOfCorner.data();
        if (inPlace) // the triangles take the place of their corners
            _triangleIndices = std::move(vertexOfCorner);
        else
            _triangleIndices.reserveMore(3 * _sums.triangles);

        const FacePlan plan(_geometry.cornerCounts, groups, _sizes.facesPerTask);
        const ModelTriangles triangles(_geometry.cornerCounts, plan,
                                       static_cast<size_t>(groups.size()), corners,
                                       _welded.positions.data(), _triangleIndices.data());
        const CutFaces faces = _inParallel ? cutInParallel(triangles, plan, corners, withNormals)
                                           : cut(triangles, withNormals);
        size_t first = 0;
        for (int group = 0; group < groups.size(); ++group) {
            const size_t count = faces.indexCounts[static_cast<size_t>(group)];
            _model.commands.append({groups.at(group)->material, static_cast<quint32>(first),
                                    static_cast<quint32>(count)});
            first += count;
        }
        _model.withTooFewCorners = faces.withTooFewCorners;
        _model.notTriangulated = faces.notTriangulated;
        _triangleIndices.resize(faces.indexCount);
        _triangleIndices.shrink();
        _geometry = {};
    }

    CutFaces cut(const ModelTriangles &triangles, bool withNormals)
    {
        if (!withNormals) {
            const StageTimer timer(&PreparationReport::Stages::triangulate);
            return triangles.cut(nullptr, _work);
        }
        VertexNormalSums sums = startNormals();
        CutFaces faces;
        {
            const StageTimer timer(&PreparationReport::Stages::triangulate);
            faces = triangles.cut(&sums, _work);
        }
        finishNormals(sums);
        return faces;
    }

    CutFaces cutInParallel(const ModelTriangles &triangles, const FacePlan &plan,
                           const quint32 *corners, bool withNormals)
    {
        if (!withNormals) {
            const StageTimer timer(&PreparationReport::Stages::triangulate);
            return triangles.cutInParallel(partCount(), nullptr, _work);
        }
        ParallelNormals normals(_welded.vertexCount, _welded.positions.data(),
                                _welded.normals.data(), _work, _sizes);
        CutFaces faces;
        {
            const StageTimer timer(&PreparationReport::Stages::triangulate);
            normals.begin(partCount(), _areInFileOrder,
                          [&](size_t part, const ParallelNormals::Visitor &visitor) {
                              visitCorners(plan, part, corners, visitor);
                          });
            faces = triangles.cutInParallel(partCount(), &normals, _work);
        }
        const StageTimer timer(&PreparationReport::Stages::normals);
        normals.end(_triangleIndices.data(), faces.indexCount);
        return faces;
    }

    /// The vertices that a task's triangles may have, as their corners are before the triangles
    /// take their place.
    void visitCorners(const FacePlan &plan, size_t part, const quint32 *corners,
                      const ParallelNormals::Visitor &visitor) const
    {
        const EqualRange tasks(part, partCount(), plan.tasks().size());
        for (size_t number = tasks.begin; number < tasks.end; ++number) {
            const FaceTask &task = plan.tasks()[number];
            for (size_t i = task.firstPiece; i < task.endPiece; ++i) {
                const FaceRun &run = plan.pieces()[i].run;
                const FaceSums sums(_geometry.cornerCounts, run.firstFace, run.faceCount,
                                    run.firstLarge);
                visitor(corners + run.firstCorner, corners + run.firstCorner + sums.corners);
            }
        }
    }

    void makeRoomForNormals()
    {
        const StageTimer timer(&PreparationReport::Stages::normals);
        _welded.normals.resize(3 * size_t(_welded.vertexCount));
        _welded.normals.shrink();
    }

    VertexNormalSums startNormals()
    {
        const StageTimer timer(&PreparationReport::Stages::normals);
        return {_welded.vertexCount, _welded.positions.data(), _welded.normals.data()};
    }

    /// Normals from triangles that are all there.
    void sumUpNormals()
    {
        const StageTimer timer(&PreparationReport::Stages::normals);
        const quint32 *const indices = _triangleIndices.data();
        const size_t size = 3 * size_t(_sizes.facesPerTask);
        const size_t indexCount = _triangleIndices.size();
        WorkSteps steps{{WorkStage::Normals, 0.0, 0.9}, TaskRange::taskCount(size, indexCount)};
        if (!_inParallel) {
            VertexNormalSums sums = startNormals();
            _work.forEachInOrder(steps.part, steps.count, [&](size_t task) {
                const TaskRange range(task, size, indexCount);
                sums.add(indices + range.begin, range.end - range.begin);
            });
            return finishNormals(sums);
        }
        ParallelNormals normals(_welded.vertexCount, _welded.positions.data(),
                                _welded.normals.data(), _work, _sizes);
        // Parts are whole tasks.
        const auto partOf = [&](size_t part) { return EqualRange(part, partCount(), steps.count); };
        normals.begin(partCount(), _areInFileOrder,
                      [&](size_t part, const ParallelNormals::Visitor &visitor) {
                          const EqualRange tasks = partOf(part);
                          visitor(indices + std::min(tasks.begin * size, indexCount),
                                  indices + std::min(tasks.end * size, indexCount));
                      });
        _work.forEach(steps.part, partCount(), [&](size_t part) {
            const EqualRange tasks = partOf(part);
            VertexNormalSums sums = normals.sumsOf(part);
            for (size_t task = tasks.begin; task < tasks.end && normals.goesOn(part); ++task) {
                const TaskRange range(task, size, indexCount);
                sums.add(indices + range.begin, range.end - range.begin);
                _work.step(steps);
            }
            sums.finish();
        });
        normals.end(indices, indexCount);
    }

    /// Parts that threads work on at the same time. Few of them: vertices at their borders cost
    /// time and memory.
    size_t partCount() const { return 2 * size_t(_work.threadCount()); }

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
    Work &_work;
    const PreparingSizes _sizes;
    const bool _inParallel;
    const bool _hasNormals;
    const bool _hasTexCoords;
    bool _areInFileOrder = false;
    WeldedCorners _welded;
    GrowArray<quint32> _triangleIndices;
    PreparedGeometry _model;
};

} // namespace

PreparedGeometry prepareGeometry(OBJGeometry &&geometry, const QStringList &groupOrder,
                                 const void *builder, Work *work, const PreparingSizes &sizes)
{
    const FaceSums sums(geometry.cornerCounts);
    if (!isDrawable(geometry) || !fitsCounts(geometry, sums))
        return {};
    Work alone;
    Work &threads = work ? *work : alone;
    std::optional<Work::OnOneThread> tooSmall;
    if (geometry.cornerCount < sizes.threadsFromCorners)
        tooSmall.emplace(threads);
    return Preparation(geometry, sums, threads, sizes).run(groupOrder, builder);
}

} // namespace Halvard::Orv
