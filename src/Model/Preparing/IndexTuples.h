/// \file
/// Corners that select the same values.
#pragma once

#include "Memory/GrowArray.h"

#include <QtCore/QtGlobal>

#include <vector>

namespace Halvard::Orv {

/// Indices into one kind of values, one per corner.
struct CornerIndices
{
    /// Receives one per tuple in their place, and keeps its room.
    GrowArray<quint32> &indices;
    quint32 valueCount;
};

/// The distinct index tuples of a model, numbered in the order in which they
/// first appear.
struct IndexTuples
{
    GrowArray<quint32> positions; ///< position index of each tuple
    GrowArray<quint32> spare;     ///< one entry per tuple, of no meaning: scratch memory

    quint32 count() const { return static_cast<quint32>(positions.size()); }
};

/// Finds the distinct tuples of a position index and those of `others`, at most two.
///
/// An index that selects no value stands in its tuple as the number of values,
/// whatever it was.
///
/// \param corners per corner the position index; receives the tuple's number.
/// \param others as many indices as corners each.
IndexTuples numberIndexTuples(GrowArray<quint32> &corners, quint32 positionCount,
                              const std::vector<CornerIndices> &others);

} // namespace Halvard::Orv
