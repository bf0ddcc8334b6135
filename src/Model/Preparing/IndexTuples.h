/// \file
/// Corners that select the same values.
#pragma once

#include "Memory/GrowArray.h"
#include "Preparing/PreparingSizes.h"

#include <QtCore/QtGlobal>

#include <vector>

namespace Halvard::Orv {

class Work;

/// Indices into one kind of values, one per corner.
struct CornerIndices
{
    GrowArray<quint32> indices;
    quint32 valueCount;
};

/// The distinct index tuples of a model, numbered in the order in which they
/// first appear.
struct IndexTuples
{
    /// Tuple of each corner, in the memory of the corners' position indices.
    GrowArray<quint32> tupleOfCorner;
    /// Position index of each tuple.
    GrowArray<quint32> positions;
    /// Indices of each tuple into the other kinds of values, in the memory of the corners'
    /// indices, with their capacity.
    std::vector<GrowArray<quint32>> others;
    /// Reusable memory: one entry per tuple, of no meaning.
    GrowArray<quint32> reusable;

    quint32 count() const { return static_cast<quint32>(positions.size()); }
};

/// Finds the distinct tuples of a position index and those of `others`, at most two.
///
/// An index that selects no value stands in its tuple as the number of values,
/// whatever it was. A tuple may, seldom, come twice: of a position that very many tuples share,
/// where there are several threads. Both then have the same values.
///
/// \param others as many indices as `positions` has.
IndexTuples numberIndexTuples(CornerIndices &&positions, std::vector<CornerIndices> &&others,
                              Work &work, const PreparingSizes &sizes);

} // namespace Halvard::Orv
