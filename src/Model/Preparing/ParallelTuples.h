/// \file
/// Corners that select the same values, found by several threads.
#pragma once

#include "Preparing/IndexTuples.h"
#include "Preparing/PreparingSizes.h"

namespace Halvard::Orv {

class Work;

/// As numberIndexTuples(), except that a tuple may, seldom, come twice: of a position that very
/// many tuples share. Both then have the same values.
IndexTuples numberIndexTuplesInParallel(CornerIndices &&positions,
                                        std::vector<CornerIndices> &&others, Work &work,
                                        const PreparingSizes &sizes);

} // namespace Halvard::Orv
