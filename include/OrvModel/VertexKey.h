/// \file
/// The key under which a face corner is looked up while corners with equal
/// index tuples are merged.
#pragma once

#include <OrvModel/OrvModelExport.h>

#include <QtCore/QVector>

namespace Halvard::Orv {

/// \addtogroup build
/// @{

/// One face corner, seen as the tuple of its indices into every attribute.
///
/// The tuple is not copied: the key points to the per-attribute index arrays
/// that all keys of one build share.
struct VertexKey
{
    /// Per attribute the address of its per-corner indices. Not owned.
    const QVector<const unsigned *> *indexStreams;
    /// Position of the corner in each of the arrays.
    unsigned corner;
    /// Hash of the tuple, computed once by whoever makes the key.
    unsigned hash;
};

/// Whether both corners have the same index in every array of the first key's
/// list. The hashes are not compared.
/// \pre The second key's list is at least as long as the first one's.
ORVMODEL_EXPORT bool operator==(const VertexKey &first, const VertexKey &second);

/// The precomputed hash, unchanged.
ORVMODEL_EXPORT unsigned qHash(const VertexKey &key);

/// @}

} // namespace Halvard::Orv
