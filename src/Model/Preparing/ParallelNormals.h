/// \file
/// Smooth vertex normals on several threads.
#pragma once

#include "Memory/GrowArray.h"
#include "Preparing/PreparingSizes.h"
#include "Triangles/VertexNormalSums.h"

#include <QtCore/QtGlobal>

#include <atomic>
#include <cstddef>
#include <functional>
#include <vector>

namespace Halvard::Orv {

class Work;

/// The normals of a model whose triangles come in parts, any of them at the same time; the bits
/// are those of one VertexNormalSums that gets all triangles in order.
///
/// Which vertices belong to a part is told by one of two rules. Vertices are numbered as the
/// corners of the file first use them: where the parts are in the order of the file, those above
/// all numbers of the parts before are new, and a maximum per part suffices. Elsewhere a table
/// has the first part of each vertex.
class ParallelNormals
{
public:
    /// Calls a function with the vertex numbers of a part, from a first one to an end.
    using Visitor = std::function<void(const quint32 *begin, const quint32 *end)>;
    using Visit = std::function<void(size_t part, const Visitor &visitor)>;

    /// \param normals room for three floats a vertex.
    ParallelNormals(quint32 vertexCount, const float *positions, float *normals, Work &work,
                    const PreparingSizes &sizes);

    /// Finds out which vertices belong to which part, and clears the sums.
    /// \param areInFileOrder whether the parts are in the order of the file.
    void begin(size_t partCount, bool areInFileOrder, const Visit &visit);

    /// Sums for a part; for any thread.
    VertexNormalSums sumsOf(size_t part);
    /// Asked by those who add to a part, before they begin and now and then. False when so much is
    /// deferred that adding more is for nothing: end() will add everything anew.
    bool goesOn(size_t part);

    /// Adds what was deferred, and normalises.
    /// \param indices the triangles of all parts in order, in case they are all added anew.
    void end(const quint32 *indices, size_t indexCount);

private:
    void findFirstNew(size_t partCount, const Visit &visit);
    void findParts(size_t partCount, const Visit &visit);
    size_t estimatedDeferred(size_t partCount, const Visit &visit);
    size_t mostDeferred() const;
    VertexOwners ownersOf(size_t part) const;

    const quint32 _vertexCount;
    const float *const _positions;
    float *const _normals;
    Work &_work;
    const PreparingSizes _sizes;
    std::vector<quint32> _firstNew; ///< per part
    GrowArray<quint32> _partOf;     ///< per vertex, where the parts are out of order
    struct Part
    {
        DeferredNormals deferred;
        size_t counted = 0; ///< of what was deferred, in _deferredCount
    };
    std::vector<Part> _parts;
    std::atomic<size_t> _deferredCount{0};
    std::atomic<bool> _isAbandoned{false};
};

} // namespace Halvard::Orv
