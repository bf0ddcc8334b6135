#include "Preparing/ParallelNormals.h"

#include "Threads/Work.h"

#include <algorithm>

namespace Halvard::Orv {

namespace {

constexpr StagePart Finding = {WorkStage::Triangulating, 0.0, 0.1};
constexpr StagePart Clearing = {WorkStage::Triangulating, 0.1, 0.15};
constexpr StagePart Normalising = {WorkStage::Normals};

/// Makes `value` the smaller of itself and `candidate`; for any number of threads.
void lower(quint32 &value, quint32 candidate)
{
    quint32 seen = __atomic_load_n(&value, __ATOMIC_RELAXED);
    while (candidate < seen && !__atomic_compare_exchange_n(&value, &seen, candidate, true,
                                                            __ATOMIC_RELAXED, __ATOMIC_RELAXED)) {
    }
}

} // namespace

ParallelNormals::ParallelNormals(quint32 vertexCount, const float *positions, float *normals,
                                 Work &work, const PreparingSizes &sizes)
    : _vertexCount(vertexCount), _positions(positions), _normals(normals), _work(work),
      _sizes(sizes)
{}

void ParallelNormals::begin(size_t partCount, bool areInFileOrder, const Visit &visit)
{
    _parts.resize(partCount);
    if (areInFileOrder)
        findFirstNew(partCount, visit);
    else
        findParts(partCount, visit);
    _isAbandoned = estimatedDeferred(partCount, visit) > mostDeferred();
    const size_t size = _sizes.elementsPerTask;
    _work.forEach(Clearing, TaskRange::taskCount(size, _vertexCount), [&](size_t task) {
        const TaskRange range(task, size, _vertexCount);
        VertexNormalSums::clear(_normals, static_cast<quint32>(range.begin),
                                static_cast<quint32>(range.end));
    });
}

void ParallelNormals::findFirstNew(size_t partCount, const Visit &visit)
{
    std::vector<quint32> behindLargest(partCount);
    _work.forEach(Finding, partCount, [&](size_t part) {
        quint32 behind = 0;
        visit(part, [&](const quint32 *begin, const quint32 *end) {
            for (const quint32 *vertex = begin; vertex != end; ++vertex)
                behind = std::max(behind, *vertex + 1);
        });
        behindLargest[part] = behind;
    });
    _firstNew.resize(partCount);
    quint32 first = 0;
    for (size_t part = 0; part < partCount; ++part) {
        _firstNew[part] = first;
        first = std::max(first, behindLargest[part]);
    }
}

void ParallelNormals::findParts(size_t partCount, const Visit &visit)
{
    _partOf.resize(_vertexCount);
    std::fill_n(_partOf.data(), _vertexCount, ~0u);
    _work.forEach(Finding, partCount, [&](size_t part) {
        visit(part, [&](const quint32 *begin, const quint32 *end) {
            for (const quint32 *vertex = begin; vertex != end; ++vertex)
                lower(_partOf[*vertex], static_cast<quint32>(part));
        });
    });
}

/// How many additions will be deferred, from some of the corners.
size_t ParallelNormals::estimatedDeferred(size_t partCount, const Visit &visit)
{
    constexpr ptrdiff_t Stride = 61; // prime: no step of a mesh's
    std::atomic<size_t> count{0};
    _work.forEach(Finding, partCount, [&](size_t part) {
        const VertexOwners owners = ownersOf(part);
        size_t countOfPart = 0;
        visit(part, [&](const quint32 *begin, const quint32 *end) {
            for (; begin < end; begin += std::min(Stride, end - begin))
                countOfPart += owners.isOwn(*begin) ? 0 : 1;
        });
        count += countOfPart;
    });
    return count * Stride;
}

/// Faces in random order would defer nearly everything, and take more memory for it than the
/// model: adding everything on one thread is then no slower.
size_t ParallelNormals::mostDeferred() const
{
    return 1024 + _vertexCount / 2;
}

VertexOwners ParallelNormals::ownersOf(size_t part) const
{
    VertexOwners owners;
    owners.part = static_cast<quint32>(part);
    if (_firstNew.empty())
        owners.partOf = _partOf.data();
    else
        owners.firstNew = _firstNew[part];
    return owners;
}

VertexNormalSums ParallelNormals::sumsOf(size_t part)
{
    return {_vertexCount, _positions, _normals, ownersOf(part), _parts[part].deferred};
}

bool ParallelNormals::goesOn(size_t number)
{
    Part &part = _parts[number];
    const size_t more = part.deferred.count() - part.counted;
    part.counted += more;
    if ((_deferredCount += more) > mostDeferred())
        _isAbandoned = true;
    return !_isAbandoned;
}

void ParallelNormals::end(const quint32 *indices, size_t indexCount)
{
    _partOf = {};
    if (_isAbandoned) {
        _parts.clear();
        VertexNormalSums sums(_vertexCount, _positions, _normals);
        const size_t size = 3 * _sizes.elementsPerTask;
        for (size_t task = 0; task < TaskRange::taskCount(size, indexCount); ++task) {
            const TaskRange range(task, size, indexCount);
            sums.add(indices + range.begin, range.end - range.begin);
            _work.report(WorkStage::Normals, 0.0);
        }
        sums.finish();
    }
    for (const Part &part : _parts)
        part.deferred.addTo(_normals);
    _parts.clear();
    const size_t size = _sizes.elementsPerTask;
    _work.forEach(Normalising, TaskRange::taskCount(size, _vertexCount), [&](size_t task) {
        const TaskRange range(task, size, _vertexCount);
        VertexNormalSums::normalize(_normals, static_cast<quint32>(range.begin),
                                    static_cast<quint32>(range.end));
    });
}

} // namespace Halvard::Orv
