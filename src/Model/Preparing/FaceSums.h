/// \file
/// How many corners and triangles a model has.
#pragma once

#include "Scanning/OBJGeometry.h"

#include <QtCore/QtGlobal>

namespace Halvard::Orv {

/// What is to be known of a model's faces before they are triangulated.
struct FaceSums
{
    explicit FaceSums(const CornerCounts &counts);
    /// Of `faceCount` faces from `firstFace` on, of which the first escape uses the entry
    /// `firstLarge`.
    FaceSums(const CornerCounts &counts, quint32 firstFace, quint32 faceCount, quint32 firstLarge);

    quint64 corners = 0;
    /// Triangles that the faces give at most: those that cannot be cut give none.
    quint64 triangles = 0;
    bool hasLargerThanTriangles = false;
    quint32 large = 0; ///< entries of CornerCounts::large
};

} // namespace Halvard::Orv
