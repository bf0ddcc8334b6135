// Exact because equal index tuples select equal bytes, because tuples are numbered
// in the order in which corners first have them, and because numbering the bytes
// of the tuples in that order numbers them in the order of the corners, too. The
// vertices before welding, one per corner, are never made.
//
// Memory, beside the geometry itself: 4 bytes per position while tuples are found, up to so
// many for each thread; per tuple 4 for its position, 4 for its chain and then its vertex, 4 more
// with several threads, and 6 for the hash table. The other indices of tuples, and in the end the
// vertices' values, take over the memory of the indices of corners.
#include "Preparing/CornerWelding.h"

#include "Preparing/IndexTuples.h"
#include "Preparing/ParallelWelding.h"
#include "Threads/Work.h"
#include "Welding/RowHash.h"
#include "Welding/RowNumbering.h"

#include <OrvModel/OBJReader.h>

#include <algorithm>
#include <cstring>
#include <tuple>

namespace Halvard::Orv {

namespace {

/// The values that an index per row selects.
template <unsigned Components>
class ValueColumn
{
    static_assert(Components == 2 || Components == 3, "a value is hashed as two words");

public:
    /// \param indices of one row each, those that select nothing stand for zeros
    ///        at the end of `values`.
    ValueColumn(const GrowArray<float> &values, GrowArray<quint32> &indices)
        : _values(values.data()), _indices(indices.data())
    {}

    void prefetch(quint32 row) const { __builtin_prefetch(at(row)); }

    quint64 hash(const RowHash &rowHash, quint64 hash, quint32 row) const
    {
        const float *value = at(row);
        return rowHash.add(hash, RowHash::word(value),
                           Components == 3 ? RowHash::halfWord(value + 2) : 0);
    }

    bool areEqual(quint32 first, quint32 second) const
    {
        return std::memcmp(at(first), at(second), Components * sizeof(float)) == 0;
    }

    void move(quint32 from, quint32 to) { _indices[to] = _indices[from]; }

private:
    const float *at(quint32 row) const { return _values + size_t(_indices[row]) * Components; }

    const float *_values;
    quint32 *_indices;
};

/// The GPU vertices of all index tuples. The indices of those that are kept move to the
/// place of their number.
template <typename... Columns>
class VertexRows
{
public:
    explicit VertexRows(Columns... columns) : _columns(columns...) {}

    void prefetch(quint32 row) const
    {
        forEach([&](const auto &column) { column.prefetch(row); });
    }

    quint64 hash(quint32 row) const
    {
        quint64 value = _hash.start();
        forEach([&](const auto &column) { value = column.hash(_hash, value, row); });
        return value;
    }

    bool areEqual(quint32 first, quint32 second) const
    {
        bool equal = true;
        forEach([&](const auto &column) { equal = equal && column.areEqual(first, second); });
        return equal;
    }

    bool equalsKept(quint32 number, quint32 row) const { return areEqual(number, row); }

    void keep(quint32 row)
    {
        forEach([&](auto &column) { column.move(row, _kept); });
        ++_kept;
    }

private:
    template <typename Function>
    void forEach(const Function &function) const
    {
        std::apply([&](const Columns &...columns) { (function(columns), ...); }, _columns);
    }
    template <typename Function>
    void forEach(const Function &function)
    {
        std::apply([&](Columns &...columns) { (function(columns), ...); }, _columns);
    }

    const RowHash _hash;
    std::tuple<Columns...> _columns;
    quint32 _kept = 0;
};

/// One index per corner, whatever the file has.
void completeIndices(OBJAttribute &attribute, quint32 cornerCount)
{
    GrowArray<quint32> &indices = attribute.indices;
    const size_t given = std::min<size_t>(indices.size(), cornerCount);
    indices.resize(cornerCount);
    std::fill(indices.data() + given, indices.data() + cornerCount,
              static_cast<quint32>(OBJReader::AbsentIndex));
}

/// Takes the indices of all corners into an attribute.
CornerIndices takeIndices(OBJAttribute &attribute, quint32 cornerCount)
{
    completeIndices(attribute, cornerCount);
    return {std::move(attribute.indices), attribute.valueCount()};
}

/// What a vertex is made of: an index into each attribute that exists.
struct VertexIndices
{
    GrowArray<quint32> positions;
    GrowArray<quint32> normals;
    GrowArray<quint32> texCoords;
};

/// The tuples' indices by attribute.
VertexIndices takeVertexIndices(IndexTuples &tuples, const OBJGeometry &geometry)
{
    VertexIndices indices;
    indices.positions = std::move(tuples.positions);
    size_t column = 0;
    if (geometry.normals.exists())
        indices.normals = std::move(tuples.others[column++]);
    if (geometry.texCoords.exists())
        indices.texCoords = std::move(tuples.others[column]);
    return indices;
}

/// What an index that selects no value selects.
void appendZeros(OBJAttribute &attribute)
{
    GrowArray<float> &values = attribute.values;
    values.resize(size_t(attribute.valueCount()) * attribute.components);
    std::fill_n(values.reserveMore(attribute.components), attribute.components, 0.0f);
    values.commit(attribute.components);
}

/// The steps of welding, on one thread or several.
class CornerWelding
{
public:
    CornerWelding(OBJGeometry &geometry, Work &work, const PreparingSizes &sizes)
        : _geometry(geometry), _work(work), _sizes(sizes), _inParallel(!work.isAlone())
    {}

    WeldedCorners run()
    {
        IndexTuples tuples = findTuples();
        for (OBJAttribute *attribute :
             {&_geometry.positions, &_geometry.normals, &_geometry.texCoords}) {
            if (attribute->exists())
                appendZeros(*attribute);
        }
        const quint32 tupleCount = tuples.count();
        VertexIndices indices = takeVertexIndices(tuples, _geometry);
        GrowArray<quint32> vertexOfTuple = std::move(tuples.reusable);
        const quint32 count = weld(indices, vertexOfTuple);

        WeldedCorners welded;
        welded.vertexCount = count;
        // Where all tuples differ in their bytes, they are the vertices.
        welded.vertexOfCorner = std::move(tuples.tupleOfCorner);
        if (count < tupleCount)
            replaceByVertices(welded.vertexOfCorner, vertexOfTuple);
        vertexOfTuple = {};
        gather(indices, welded);
        return welded;
    }

private:
    /// The distinct index tuples of all corners. Those into other attributes are in the order
    /// normals, texture coordinates, without those that do not exist.
    IndexTuples findTuples()
    {
        CornerIndices positions = takeIndices(_geometry.positions, _geometry.cornerCount);
        std::vector<CornerIndices> others;
        for (OBJAttribute *attribute : {&_geometry.normals, &_geometry.texCoords}) {
            if (attribute->exists())
                others.push_back(takeIndices(*attribute, _geometry.cornerCount));
        }
        return numberIndexTuples(std::move(positions), std::move(others), _work, _sizes);
    }

    /// Numbers the different vertices among those of the tuples.
    /// \param indices of the tuples; those of the vertices come first afterwards.
    /// \param vertexOfTuple an entry per tuple.
    /// \return how many vertices there are.
    quint32 weld(VertexIndices &indices, GrowArray<quint32> &vertexOfTuple)
    {
        const ValueColumn<3> positions(_geometry.positions.values, indices.positions);
        const ValueColumn<3> normals(_geometry.normals.values, indices.normals);
        const ValueColumn<2> texCoords(_geometry.texCoords.values, indices.texCoords);
        if (_geometry.normals.exists() && _geometry.texCoords.exists())
            return weldRows(indices, vertexOfTuple, positions, normals, texCoords);
        if (_geometry.normals.exists())
            return weldRows(indices, vertexOfTuple, positions, normals);
        if (_geometry.texCoords.exists())
            return weldRows(indices, vertexOfTuple, positions, texCoords);
        return weldRows(indices, vertexOfTuple, positions);
    }

    template <typename... Columns>
    quint32 weldRows(VertexIndices &indices, GrowArray<quint32> &vertexOfTuple, Columns... columns)
    {
        VertexRows<Columns...> rows(columns...);
        const auto tupleCount = static_cast<quint32>(vertexOfTuple.size());
        if (!_inParallel) {
            return numberRows(rows, tupleCount, vertexOfTuple.data(), [&](quint32 row) {
                _work.disturb();
                _work.report(Comparing.stage, Comparing.at(static_cast<double>(row) / tupleCount));
            });
        }
        const quint32 count = numberRowsInParallel(rows, vertexOfTuple, _work, _sizes);
        if (count < tupleCount) {
            GrowArray<quint32> *const all[] = {&indices.positions, &indices.normals,
                                               &indices.texCoords};
            _work.forEach(Keeping, 3, [&](size_t i) {
                if (!all[i]->isEmpty())
                    keepFirstRows(*all[i], vertexOfTuple.data(), tupleCount);
            });
        }
        return count;
    }

    /// Replaces the tuples of corners by their vertices.
    void replaceByVertices(GrowArray<quint32> &corners, const GrowArray<quint32> &vertexOfTuple)
    {
        const quint32 numberBits = ~(_inParallel ? NumberFlag : 0);
        const size_t size = _sizes.elementsPerTask;
        _work.forEach(Keeping, TaskRange::taskCount(size, corners.size()), [&](size_t task) {
            const TaskRange range(task, size, corners.size());
            quint32 *const end = corners.data() + range.end;
            for (quint32 *corner = corners.data() + range.begin; corner != end; ++corner)
                *corner = vertexOfTuple[*corner] & numberBits;
        });
    }

    /// The values of all vertices. What is used up goes at once.
    void gather(VertexIndices &indices, WeldedCorners &welded)
    {
        const quint32 count = welded.vertexCount;
        if (_geometry.texCoords.exists())
            welded.texCoords =
                gatherValues<2>(std::move(indices.texCoords), _geometry.texCoords.values, count);
        _geometry.texCoords.values = {};
        if (_geometry.normals.exists())
            welded.normals =
                gatherValues<3>(std::move(indices.normals), _geometry.normals.values, count);
        _geometry.normals.values = {};
        welded.positions =
            gatherValues<3>(std::move(indices.positions), _geometry.positions.values, count);
        welded.reusable = std::move(_geometry.positions.values);
        welded.reusable.resize(0);
    }

    /// The value of each vertex, in the memory of the vertices' indices.
    template <unsigned Components>
    GrowArray<float> gatherValues(GrowArray<quint32> &&indices, const GrowArray<float> &values,
                                  quint32 count)
    {
        /// Floats that may be read past the end, so that the last value can be loaded
        /// like any other by what loads four floats.
        constexpr size_t Padding = 1;

        GrowArray<float> gathered = std::move(indices).template recast<float>();
        const size_t size = size_t(count) * Components;
        gathered.resize(size + Padding);
        gathered[size] = 0.0f;
        gatherInPlace<Components>(gathered.data(), values.data(), count, Gathering, _work, _sizes);
        gathered.shrink();
        gathered.resize(size);
        return gathered;
    }

    static constexpr StagePart Comparing = {WorkStage::Welding, 0.42, 0.88};
    static constexpr StagePart Keeping = {WorkStage::Welding, 0.88, 0.9};
    static constexpr StagePart Gathering = {WorkStage::Welding, 0.9, 1.0};

    OBJGeometry &_geometry;
    Work &_work;
    const PreparingSizes _sizes;
    const bool _inParallel;
};

} // namespace

WeldedCorners weldCorners(OBJGeometry &geometry, Work *work, const PreparingSizes &sizes)
{
    Work alone;
    return CornerWelding(geometry, work ? *work : alone, sizes).run();
}

} // namespace Halvard::Orv
