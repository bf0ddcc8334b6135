// Exact because equal index tuples select equal bytes, because tuples are numbered
// in the order in which corners first have them, and because numbering the bytes
// of the tuples in that order numbers them in the order of the corners, too. The
// vertices before welding, one per corner, are never made.
//
// Memory, beside the geometry itself: 4 bytes per position while tuples are
// found; per tuple 4 to 16 bytes for its indices, 6 for the hash table, and the
// welded values. Index arrays but the positions' go as soon as the tuples are
// known; the positions' becomes the result.
#include "CornerWelding.h"

#include "IndexTuples.h"
#include "LargeMemory.h"
#include "RowHash.h"
#include "RowNumbering.h"

#include <OrvModel/OBJReader.h>

#include <algorithm>
#include <cstring>
#include <tuple>

namespace Halvard::Orv {

namespace {

/// The values of one attribute before and after welding.
template <unsigned Components>
class ValueColumn
{
    static_assert(Components == 2 || Components == 3, "a value is hashed as two words");

public:
    /// \param values gets a value of zeros appended, which stands for an index
    ///        that selects nothing.
    ValueColumn(GrowArray<float> &values, GrowArray<float> &kept, quint32 rowLimit)
        : _values(appendZeros(values)), _kept(kept)
    {
        _begin = reserveLarge(kept, size_t(rowLimit) * Components + Padding);
        _end = _begin;
    }

    void prefetch(quint32 index) const { __builtin_prefetch(at(index)); }

    quint64 hash(const RowHash &rowHash, quint64 hash, quint32 index) const
    {
        const float *value = at(index);
        return rowHash.add(hash, RowHash::word(value),
                           Components == 3 ? RowHash::halfWord(value + 2) : 0);
    }

    bool equalsKept(quint32 number, quint32 index) const
    {
        return std::memcmp(_begin + size_t(number) * Components, at(index),
                           Components * sizeof(float)) == 0;
    }

    void keep(quint32 index)
    {
        std::memcpy(_end, at(index), Components * sizeof(float));
        _end += Components;
    }

    void finish()
    {
        const auto count = static_cast<size_t>(_end - _begin);
        std::fill_n(_end, Padding, 0.0f);
        _kept.resize(count + Padding);
        _kept.shrink();
        _kept.resize(count);
    }

private:
    /// Floats that may be read past the end, so that the last value can be loaded
    /// like any other by what loads four floats.
    static constexpr size_t Padding = 1;

    static const float *appendZeros(GrowArray<float> &values)
    {
        values.resize(values.size() / Components * Components);
        std::fill_n(values.reserveMore(Components), Components, 0.0f);
        values.commit(Components);
        return values.data();
    }

    const float *at(quint32 index) const { return _values + size_t(index) * Components; }

    const float *_values;
    GrowArray<float> &_kept;
    float *_begin;
    float *_end;
};

/// The GPU vertices of all index tuples.
template <typename... Columns>
class VertexRows
{
public:
    VertexRows(const IndexTuples &tuples, Columns... columns)
        : _tuples(tuples.words.data()), _columns(columns...)
    {}

    void prefetch(quint32 row) const
    {
        const quint32 *indices = at(row);
        forEach([&](const auto &column) { column.prefetch(*indices++); });
    }

    quint64 hash(quint32 row) const
    {
        const quint32 *indices = at(row);
        quint64 value = _hash.start();
        forEach([&](const auto &column) { value = column.hash(_hash, value, *indices++); });
        return value;
    }

    bool equalsKept(quint32 number, quint32 row) const
    {
        const quint32 *indices = at(row);
        bool equal = true;
        forEach([&](const auto &column) {
            equal = equal && column.equalsKept(number, *indices);
            ++indices;
        });
        return equal;
    }

    void keep(quint32 row)
    {
        const quint32 *indices = at(row);
        forEach([&](auto &column) { column.keep(*indices++); });
    }

    void finish()
    {
        forEach([](auto &column) { column.finish(); });
    }

private:
    static constexpr unsigned Stride = sizeof...(Columns) == 1 ? 1 : sizeof...(Columns) + 1;

    const quint32 *at(quint32 row) const { return _tuples + size_t(row) * Stride; }

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
    const quint32 *_tuples;
    std::tuple<Columns...> _columns;
};

template <typename... Columns>
quint32 weldTuples(IndexTuples &tuples, Columns... columns)
{
    VertexRows<Columns...> rows(tuples, columns...);
    const quint32 count = numberRows(rows, tuples.count(), tuples.words.data());
    rows.finish();
    return count;
}

/// The indices of an attribute, without those of corners that the file has not.
CornerIndices cornerIndices(const OBJAttribute &attribute, quint32 cornerCount)
{
    return {attribute.indices.data(), std::min<size_t>(attribute.indices.size(), cornerCount),
            attribute.valueCount()};
}

/// One position index per corner, whatever the file has.
GrowArray<quint32> takePositionIndices(OBJGeometry &geometry)
{
    GrowArray<quint32> indices = std::move(geometry.positions.indices);
    const size_t given = std::min<size_t>(indices.size(), geometry.cornerCount);
    indices.resize(geometry.cornerCount);
    std::fill(indices.data() + given, indices.data() + indices.size(),
              static_cast<quint32>(OBJReader::AbsentIndex));
    return indices;
}

/// The tuples of all corners, whose numbers replace the position indices.
IndexTuples takeTuples(OBJGeometry &geometry, GrowArray<quint32> &corners)
{
    std::vector<CornerIndices> others;
    for (const OBJAttribute *attribute : {&geometry.normals, &geometry.texCoords}) {
        if (attribute->exists())
            others.push_back(cornerIndices(*attribute, geometry.cornerCount));
    }
    IndexTuples tuples = numberIndexTuples(corners, geometry.positions.valueCount(), others);
    geometry.normals.indices = {};
    geometry.texCoords.indices = {};
    return tuples;
}

void renumber(GrowArray<quint32> &corners, const quint32 *numbers)
{
    quint32 *const end = corners.data() + corners.size();
    for (quint32 *corner = corners.data(); corner != end; ++corner)
        *corner = numbers[*corner];
}

} // namespace

WeldedCorners weldCorners(OBJGeometry &geometry)
{
    WeldedCorners welded;
    welded.vertexOfCorner = takePositionIndices(geometry);
    IndexTuples tuples = takeTuples(geometry, welded.vertexOfCorner);
    const quint32 tupleCount = tuples.count();

    const auto positions = [&] {
        return ValueColumn<3>(geometry.positions.values, welded.positions, tupleCount);
    };
    const auto normals = [&] {
        return ValueColumn<3>(geometry.normals.values, welded.normals, tupleCount);
    };
    const auto texCoords = [&] {
        return ValueColumn<2>(geometry.texCoords.values, welded.texCoords, tupleCount);
    };
    if (geometry.normals.exists() && geometry.texCoords.exists())
        welded.vertexCount = weldTuples(tuples, positions(), normals(), texCoords());
    else if (geometry.normals.exists())
        welded.vertexCount = weldTuples(tuples, positions(), normals());
    else if (geometry.texCoords.exists())
        welded.vertexCount = weldTuples(tuples, positions(), texCoords());
    else
        welded.vertexCount = weldTuples(tuples, positions());

    geometry.positions.values = {};
    geometry.normals.values = {};
    geometry.texCoords.values = {};
    // Where all tuples differ in their bytes, their numbers stay as they are.
    if (welded.vertexCount < tupleCount)
        renumber(welded.vertexOfCorner, tuples.words.data());
    return welded;
}

} // namespace Halvard::Orv
