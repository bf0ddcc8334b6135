/// \file
/// How much of a model one task takes.
#pragma once

#include <QtCore/QtGlobal>

#include <cstddef>

namespace Halvard::Orv {

/// Sizes that tests make smaller. A task takes about a millisecond: so long a stop is waited for.
struct PreparingSizes
{
    /// Models with fewer corners are prepared on one thread: others would come too late.
    quint32 threadsFromCorners = 1u << 18;
    quint32 facesPerTask = 1u << 14;
    /// Elements of plain arrays: corners, tuples, vertices.
    size_t elementsPerTask = size_t(1) << 16;
};

} // namespace Halvard::Orv
