#include "Bounds.h"

#include <algorithm>
#include <cmath>

namespace Halvard::Orv::Render {

bool Bounds::include(const QVector3D &point)
{
    for (int axis = 0; axis < 3; ++axis) {
        if (!std::isfinite(point[axis]))
            return false;
    }
    if (_empty) {
        _minimum = _maximum = point;
        _empty = false;
        return true;
    }
    for (int axis = 0; axis < 3; ++axis) {
        _minimum[axis] = std::min(_minimum[axis], point[axis]);
        _maximum[axis] = std::max(_maximum[axis], point[axis]);
    }
    return true;
}

void Bounds::include(const Bounds &other)
{
    if (other._empty)
        return;
    include(other._minimum);
    include(other._maximum);
}

QVector3D Bounds::centre() const
{
    // Halved before the addition: the sum of two large floats may be infinite.
    return _minimum * 0.5f + _maximum * 0.5f;
}

double Bounds::radius() const
{
    const double x = double(_maximum.x()) - double(_minimum.x());
    const double y = double(_maximum.y()) - double(_minimum.y());
    const double z = double(_maximum.z()) - double(_minimum.z());
    return 0.5 * std::sqrt(x * x + y * y + z * z);
}

} // namespace Halvard::Orv::Render
