/// \file
/// What is near a corner of a triangle, and so sought apart.
#pragma once

#include "Triangles/Ears/CornerTriangle.h"

#include <cmath>

namespace OrvTest {

inline bool isNearACorner(QVector2D point, const Halvard::Orv::CornerTriangle &triangle)
{
    constexpr double Near = 1.000001e-6;
    for (int i = 0; i < 3; ++i) {
        const QVector2D corner = triangle.edge(i).start;
        if (std::hypot(static_cast<double>(point.x()) - static_cast<double>(corner.x()),
                       static_cast<double>(point.y()) - static_cast<double>(corner.y())) <= Near)
            return true;
    }
    return false;
}

} // namespace OrvTest
