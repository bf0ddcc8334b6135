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

struct ModelTriangles::PartResult
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

/// Where the triangles of a part go at first. In place, nothing may be written before what other
/// parts have still to read: each writes to its own corners.
size_t ModelTriangles::outBegin(size_t part, size_t partCount) const
{
    const size_t task = EqualRange(part, partCount, _plan.tasks().size()).begin;
    return _out == _corners ? _plan.firstCorner(task) : 3 * _plan.tasks()[task].trianglesBefore;
}

void ModelTriangles::cutPart(size_t part, size_t partCount, ParallelNormals *normals, Work &work,
                             WorkSteps &steps, PartResult &result) const
{
    const EqualRange range(part, partCount, _plan.tasks().size());
    if (range.begin == range.end)
        return;
    std::optional<VertexNormalSums> sums;
    if (normals && normals->goesOn(part))
        sums.emplace(normals->sumsOf(part));
    auto triangles = std::make_unique<FaceTriangles>(
        _counts, _corners, _positions, _out + outBegin(part, partCount), sums ? &*sums : nullptr);
    triangles->keepMessages();
    for (size_t number = range.begin; number < range.end; ++number) {
        const FaceTask &task = _plan.tasks()[number];
        for (size_t i = task.firstPiece; i < task.endPiece; ++i) {
            const size_t before = triangles->size();
            triangles->addRun(_plan.pieces()[i].run);
            result.indexCounts.push_back(triangles->size() - before);
        }
        work.step(steps);
        if (sums && !normals->goesOn(part)) {
            triangles->leaveNormals();
            sums.reset();
        }
    }
    if (sums)
        sums->finish();
    result.indexCount = triangles->size();
    if (triangles->withTooFewCorners().count + triangles->notTriangulated().count > 0)
        result.failures = std::move(triangles);
}

CutFaces ModelTriangles::cutInParallel(size_t partCount, ParallelNormals *normals, Work &work) const
{
    const std::vector<FaceTask> &tasks = _plan.tasks();
    std::vector<PartResult> results(partCount);
    WorkSteps steps{Cutting, tasks.size()};
    work.forEach(Cutting, partCount, [&](size_t part) {
        PartResult result; // on the thread's own stack until it is done
        cutPart(part, partCount, normals, work, steps, result);
        results[part] = std::move(result);
    });

    CutFaces cutFaces;
    cutFaces.indexCounts.resize(_groupCount);
    size_t piece = 0;
    for (size_t part = 0; part < partCount; ++part) {
        const PartResult &result = results[part];
        if (result.indexCount > 0) {
            const quint32 *const written = _out + outBegin(part, partCount);
            quint32 *const place = _out + cutFaces.indexCount;
            if (place != written)
                std::memmove(place, written, result.indexCount * sizeof *place);
        }
        cutFaces.indexCount += result.indexCount;
        for (const size_t count : result.indexCounts)
            cutFaces.indexCounts[_plan.pieces()[piece++].group] += count;
        if (result.failures) {
            result.failures->warn();
            add(cutFaces.withTooFewCorners, result.failures->withTooFewCorners());
            add(cutFaces.notTriangulated, result.failures->notTriangulated());
        }
    }
    return cutFaces;
}

} // namespace Halvard::Orv
