#include "Preparing/ModelTriangles.h"

#include "Preparing/FaceTriangles.h"
#include "Preparing/ParallelNormals.h"
#include "Threads/Work.h"
#include "Triangles/VertexNormalSums.h"

#include <cstring>
#include <memory>
#include <optional>

namespace Halvard::Orv {

namespace {

constexpr StagePart Cutting = {WorkStage::Triangulating, 0.15, 1.0};

void add(UndrawnFaces &all, const UndrawnFaces &faces)
{
    if (faces.count > 0)
        all.add(faces.first, faces.count);
}

} // namespace

struct ModelTriangles::TaskResult
{
    std::vector<size_t> indexCounts; ///< per piece
    size_t indexCount = 0;
    std::unique_ptr<FaceTriangles> failures; ///< where some face could not be cut
};

ModelTriangles::ModelTriangles(const CornerCounts &counts, const FacePlan &plan, size_t groupCount,
                               const quint32 *corners, const float *positions, quint32 *out)
    : _counts(counts), _plan(plan), _groupCount(groupCount), _corners(corners),
      _positions(positions), _out(out)
{}

CutFaces ModelTriangles::cut(VertexNormalSums *normals, Work &work) const
{
    CutFaces cutFaces;
    cutFaces.indexCounts.resize(_groupCount);
    FaceTriangles triangles(_counts, _corners, _positions, _out, normals);
    for (size_t number = 0; number < _plan.tasks().size(); ++number) {
        const FaceTask &task = _plan.tasks()[number];
        for (size_t i = task.firstPiece; i < task.endPiece; ++i) {
            const FacePiece &piece = _plan.pieces()[i];
            const size_t before = triangles.size();
            triangles.addRun(piece.run);
            cutFaces.indexCounts[piece.group] += triangles.size() - before;
        }
        work.disturb();
        work.report(Cutting.stage, Cutting.at(static_cast<double>(number + 1) /
                                              static_cast<double>(_plan.tasks().size())));
    }
    cutFaces.indexCount = triangles.size();
    cutFaces.withTooFewCorners = triangles.withTooFewCorners();
    cutFaces.notTriangulated = triangles.notTriangulated();
    return cutFaces;
}

/// Where the triangles of a task go at first. In place, nothing may be written before what other
/// tasks have still to read: each task writes to its own corners.
size_t ModelTriangles::outBegin(size_t task) const
{
    return _out == _corners ? _plan.firstCorner(task) : 3 * _plan.tasks()[task].trianglesBefore;
}

void ModelTriangles::cutTask(size_t number, ParallelNormals *normals, TaskResult &result) const
{
    const FaceTask &task = _plan.tasks()[number];
    std::optional<VertexNormalSums> sums;
    if (normals && !normals->isAbandoned())
        sums.emplace(normals->sumsOf(number));
    auto triangles = std::make_unique<FaceTriangles>(
        _counts, _corners, _positions, _out + outBegin(number), sums ? &*sums : nullptr);
    triangles->keepMessages();
    result.indexCounts.reserve(task.endPiece - task.firstPiece);
    for (size_t i = task.firstPiece; i < task.endPiece; ++i) {
        const size_t before = triangles->size();
        triangles->addRun(_plan.pieces()[i].run);
        result.indexCounts.push_back(triangles->size() - before);
    }
    if (sums)
        normals->finishPart(number, *sums);
    result.indexCount = triangles->size();
    if (triangles->withTooFewCorners().count + triangles->notTriangulated().count > 0)
        result.failures = std::move(triangles);
}

CutFaces ModelTriangles::cutInParallel(ParallelNormals *normals, Work &work) const
{
    const std::vector<FaceTask> &tasks = _plan.tasks();
    std::vector<TaskResult> results(tasks.size());
    work.forEach(Cutting, tasks.size(), [&](size_t number) {
        TaskResult result; // on the thread's own stack until it is done
        cutTask(number, normals, result);
        results[number] = std::move(result);
    });

    CutFaces cutFaces;
    cutFaces.indexCounts.resize(_groupCount);
    for (size_t number = 0; number < tasks.size(); ++number) {
        const TaskResult &result = results[number];
        const quint32 *const written = _out + outBegin(number);
        quint32 *const place = _out + cutFaces.indexCount;
        if (place != written && result.indexCount > 0)
            std::memmove(place, written, result.indexCount * sizeof *place);
        cutFaces.indexCount += result.indexCount;
        for (size_t i = 0; i < result.indexCounts.size(); ++i) {
            const FacePiece &piece = _plan.pieces()[tasks[number].firstPiece + i];
            cutFaces.indexCounts[piece.group] += result.indexCounts[i];
        }
        if (result.failures) {
            result.failures->warn();
            add(cutFaces.withTooFewCorners, result.failures->withTooFewCorners());
            add(cutFaces.notTriangulated, result.failures->notTriangulated());
        }
    }
    return cutFaces;
}

} // namespace Halvard::Orv
