// Exact because equal index tuples select equal bytes, because tuples are numbered
// in the order in which corners first have them, and because numbering the bytes
// of the tuples in that order numbers them in the order of the corners, too. The
// vertices before welding, one per corner, are never made.
//
// Memory, beside the geometry itself: 4 bytes per position while tuples are found;
// per tuple 4 for its position and 4 that serve two purposes one after the other; 6
// per tuple for the hash table. The other indices of tuples, and in the end the
// vertices' values, take over the room of the indices of corners.
#include "Preparing/CornerWelding.h"

#include "Preparing/IndexTuples.h"
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

/// The GPU vertices of all index tuples. Those that are kept move up, to the place
/// of their number.
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

    bool equalsKept(quint32 number, quint32 row) const
    {
        bool equal = true;
        forEach([&](const auto &column) { equal = equal && column.areEqual(number, row); });
        return equal;
    }

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

template <typename... Columns>
quint32 weldTuples(IndexTuples &tuples, Columns... columns)
{
    VertexRows<Columns...> rows(columns...);
    return numberRows(rows, tuples.count(), tuples.spare.data());
}

/// One index per corner, whatever the file has.
void completeIndices(OBJAttribute &attribute, quint32 cornerCount)
{
    GrowArray<quint32> &indices = attribute.indices;
    const size_t given = std::min<size_t>(indices.size(), cornerCount);
    indices.resize(cornerCount);
    std::fill(indices.data() + given, indices.data() + cornerCount,
              static_cast<quint32>(OBJReader::AbsentIndex));
}

/// The tuples of all corners, whose numbers replace the position indices. The other
/// attributes' indices are those of the tuples afterwards.
IndexTuples findTuples(OBJGeometry &geometry, GrowArray<quint32> &corners)
{
    std::vector<CornerIndices> others;
    for (OBJAttribute *attribute : {&geometry.normals, &geometry.texCoords}) {
        if (attribute->exists()) {
            completeIndices(*attribute, geometry.cornerCount);
            others.push_back({attribute->indices, attribute->valueCount()});
        }
    }
    return numberIndexTuples(corners, geometry.positions.valueCount(), others);
}

/// What an index that selects no value selects.
void appendZeros(OBJAttribute &attribute)
{
    GrowArray<float> &values = attribute.values;
    values.resize(size_t(attribute.valueCount()) * attribute.components);
    std::fill_n(values.reserveMore(attribute.components), attribute.components, 0.0f);
    values.commit(attribute.components);
}

/// The value of each vertex.
/// \param indices used up: what is gathered takes over their memory.
template <unsigned Components>
GrowArray<float> gatherValues(GrowArray<quint32> &&indices, const GrowArray<float> &values,
                              quint32 count)
{
    /// Floats that may be read past the end, so that the last value can be loaded
    /// like any other by what loads four floats.
    constexpr size_t Padding = 1;
    constexpr size_t Ahead = 32;

    GrowArray<float> gathered = std::move(indices).template recast<float>();
    const size_t size = size_t(count) * Components;
    gathered.resize(size + Padding);
    gathered[size] = 0.0f;
    // From the last one on: a value covers only indices that have been used.
    const auto indexAt = [&](size_t vertex) {
        quint32 index;
        std::memcpy(&index, gathered.data() + vertex, sizeof index);
        return index;
    };
    for (size_t vertex = count; vertex-- > 0;) {
        if (vertex >= Ahead)
            __builtin_prefetch(values.data() + size_t(indexAt(vertex - Ahead)) * Components);
        const quint32 index = indexAt(vertex);
        std::memcpy(gathered.data() + vertex * Components,
                    values.data() + size_t(index) * Components, Components * sizeof(float));
    }
    gathered.shrink();
    gathered.resize(size);
    return gathered;
}

void renumber(GrowArray<quint32> &corners, const quint32 *numbers)
{
    quint32 *const end = corners.data() + corners.size();
    for (quint32 *corner = corners.data(); corner != end; ++corner)
        *corner = numbers[*corner];
}

/// Numbers the different vertices among those of the tuples; their indices come
/// first then.
quint32 weld(OBJGeometry &geometry, IndexTuples &tuples)
{
    const ValueColumn<3> positions(geometry.positions.values, tuples.positions);
    const ValueColumn<3> normals(geometry.normals.values, geometry.normals.indices);
    const ValueColumn<2> texCoords(geometry.texCoords.values, geometry.texCoords.indices);
    if (geometry.normals.exists() && geometry.texCoords.exists())
        return weldTuples(tuples, positions, normals, texCoords);
    if (geometry.normals.exists())
        return weldTuples(tuples, positions, normals);
    if (geometry.texCoords.exists())
        return weldTuples(tuples, positions, texCoords);
    return weldTuples(tuples, positions);
}

} // namespace

WeldedCorners weldCorners(OBJGeometry &geometry)
{
    completeIndices(geometry.positions, geometry.cornerCount);
    WeldedCorners welded;
    welded.vertexOfCorner = std::move(geometry.positions.indices);
    IndexTuples tuples = findTuples(geometry, welded.vertexOfCorner);
    for (OBJAttribute *attribute : {&geometry.positions, &geometry.normals, &geometry.texCoords}) {
        if (attribute->exists())
            appendZeros(*attribute);
    }
    welded.vertexCount = weld(geometry, tuples);
    // Where all tuples differ in their bytes, their numbers stay as they are.
    if (welded.vertexCount < tuples.count())
        renumber(welded.vertexOfCorner, tuples.spare.data());
    tuples.spare = {};

    const quint32 count = welded.vertexCount;
    if (geometry.texCoords.exists())
        welded.texCoords = gatherValues<2>(std::move(geometry.texCoords.indices),
                                           geometry.texCoords.values, count);
    geometry.texCoords.values = {};
    if (geometry.normals.exists())
        welded.normals =
            gatherValues<3>(std::move(geometry.normals.indices), geometry.normals.values, count);
    geometry.normals.values = {};
    welded.positions =
        gatherValues<3>(std::move(tuples.positions), geometry.positions.values, count);
    welded.spare = std::move(geometry.positions.values);
    welded.spare.resize(0);
    return welded;
}

} // namespace Halvard::Orv
