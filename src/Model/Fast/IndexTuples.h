/// \file
/// Corners that select the same values.
#pragma once

#include "GrowArray.h"

#include <QtCore/QtGlobal>

#include <vector>

namespace Halvard::Orv {

/// Indices into one kind of values, one per corner.
struct CornerIndices
{
    /// For the first corners; the others select nothing.
    const quint32 *indices;
    size_t count;
    quint32 valueCount;
};

/// The distinct index tuples of a model, numbered in the order in which they
/// first appear.
///
/// An index that selects no value stands as the number of values, whatever it was.
struct IndexTuples
{
    /// Words from one tuple to the next. The first words are the indices, the
    /// position's first.
    unsigned stride;
    GrowArray<quint32> words;

    quint32 count() const { return static_cast<quint32>(words.size() / stride); }
};

/// Finds the distinct tuples of a position index and those of `others`, at most two.
///
/// \param corners per corner the position index; receives the tuple's number.
IndexTuples numberIndexTuples(GrowArray<quint32> &corners, quint32 positionCount,
                              const std::vector<CornerIndices> &others);

} // namespace Halvard::Orv
