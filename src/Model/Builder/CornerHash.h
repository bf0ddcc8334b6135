/// \file
/// The hash of a corner's index tuple, as VertexKey carries it.
#pragma once

#include <QtCore/QVector>

namespace Halvard::Orv {

/// Golden-ratio combination of a corner's indices, in the order of the list, as in
/// D. James' hash_combine. 32-bit arithmetic that wraps around.
/// \param indexList per attribute the address of one index for every corner.
inline unsigned hashOfCorner(const QVector<const unsigned *> &indexList, unsigned corner)
{
    unsigned hash = 0;
    for (const unsigned *indices : indexList)
        hash ^= (hash << 6) + (hash >> 2) + 0x9E3779B9u + indices[corner];
    return hash;
}

} // namespace Halvard::Orv
