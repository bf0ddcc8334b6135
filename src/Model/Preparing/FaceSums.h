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

    quint64 corners = 0;
    /// Triangles that the faces give at most: those that cannot be cut give none.
    quint64 triangles = 0;
    bool hasLargerThanTriangles = false;
};

} // namespace Halvard::Orv
