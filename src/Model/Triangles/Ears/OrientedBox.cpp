#include "Triangles/Ears/OrientedBox.h"

#include "Triangles/Ears/Sampling.h"

#include <algorithm>
#include <cmath>

namespace Halvard::Orv {

namespace {

constexpr float MoreThanRounding = 1.0f + 1e-6f;

/// A difference in double, where it cannot overflow.
struct Offset
{
    Offset(QVector2D point, QVector2D origin)
        : x(static_cast<double>(point.x()) - static_cast<double>(origin.x())),
          y(static_cast<double>(point.y()) - static_cast<double>(origin.y()))
    {}

    double x;
    double y;
};

/// Along the greatest spread. Any axis would do for a box to be right; a few points
/// are enough to find a good one.
QVector2D mainAxis(const QVector2D *points, const int *first, const int *last, ptrdiff_t step)
{
    constexpr ptrdiff_t EnoughPoints = 64;
    step = std::max(step, (last - first) / EnoughPoints);
    const QVector2D origin = points[*first];
    double n = 0.0;
    double x = 0.0;
    double y = 0.0;
    double xx = 0.0;
    double xy = 0.0;
    double yy = 0.0;
    forEachSampled(step, last - first, [&](ptrdiff_t i) {
        const Offset offset(points[first[i]], origin);
        n += 1.0;
        x += offset.x;
        y += offset.y;
        xx += offset.x * offset.x;
        xy += offset.x * offset.y;
        yy += offset.y * offset.y;
    });
    // The axis lies at half the angle of this vector.
    const double difference = (xx - x * x / n) - (yy - y * y / n);
    const double twice = 2.0 * (xy - x * y / n);
    const double length = std::sqrt(difference * difference + twice * twice);
    if (!(length > 0.0))
        return {1.0f, 0.0f};
    // The smaller component from the greater one, which keeps it exact where it is tiny:
    // a flat line has a flat box.
    const double greater = std::sqrt(0.5 + 0.5 * std::fabs(difference) / length);
    const double smaller = 0.5 * std::fabs(twice) / (length * greater);
    const double cosine = difference >= 0.0 ? greater : smaller;
    const double sine = difference >= 0.0 ? smaller : greater;
    return {static_cast<float>(cosine), static_cast<float>(twice < 0.0 ? -sine : sine)};
}

} // namespace

OrientedBox OrientedBox::around(const QVector2D *points, const int *first, const int *last,
                                ptrdiff_t step)
{
    const QVector2D origin = points[*first];
    const QVector2D axis = mainAxis(points, first, last, step);
    const double ax = static_cast<double>(axis.x());
    const double ay = static_cast<double>(axis.y());
    double low = 0.0;
    double high = 0.0;
    double left = 0.0;
    double right = 0.0;
    forEachSampled(step, last - first, [&](ptrdiff_t i) {
        const Offset offset(points[first[i]], origin);
        const double u = ax * offset.x + ay * offset.y;
        const double v = ax * offset.y - ay * offset.x;
        low = std::min(low, u);
        high = std::max(high, u);
        left = std::min(left, v);
        right = std::max(right, v);
    });
    const double middle = 0.5 * (low + high);
    const double centre = 0.5 * (left + right);
    OrientedBox box;
    box.axis = axis;
    box.centre = {static_cast<float>(static_cast<double>(origin.x()) + ax * middle - ay * centre),
                  static_cast<float>(static_cast<double>(origin.y()) + ay * middle + ax * centre)};
    // The extents are those around the centre as rounded.
    const Offset offset(box.centre, origin);
    const double along = ax * offset.x + ay * offset.y;
    const double across = ax * offset.y - ay * offset.x;
    const double halfLength = std::max(high - along, along - low);
    const double halfWidth = std::max(right - across, across - left);
    // Offsets and products are off by 2^-53 of themselves, so that the four sums that an
    // extent comes from are off by 7e-16 of what they add up, here twice. Of that, the product
    // ax * ay times the other extent counts: a box along an axis of the plane is as thin as
    // its points. The factor covers the rest, |axis| that is only about 1, up to 1 + 3e-7 with
    // the rounding to float.
    constexpr double Factor = 1.0 + 1e-6;
    const double slack = 3e-15 * std::fabs(ax * ay);
    box.along = static_cast<float>(halfLength * Factor + slack * halfWidth);
    box.across = static_cast<float>(halfWidth * Factor + slack * halfLength);
    return box;
}

float OrientedBox::extentX() const
{
    return MoreThanRounding * (along * std::fabs(axis.x()) + across * std::fabs(axis.y()));
}

float OrientedBox::extentY() const
{
    return MoreThanRounding * (along * std::fabs(axis.y()) + across * std::fabs(axis.x()));
}

bool OrientedBox::holds(QVector2D point) const
{
    const Offset offset(point, centre);
    const double ax = static_cast<double>(axis.x());
    const double ay = static_cast<double>(axis.y());
    return std::fabs(ax * offset.x + ay * offset.y) <= static_cast<double>(along) &&
           std::fabs(ax * offset.y - ay * offset.x) <= static_cast<double>(across);
}

float OrientedBox::widthAcross(QVector2D direction) const
{
    return along * std::fabs(direction.x() * axis.y() - direction.y() * axis.x()) +
           across * std::fabs(direction.x() * axis.x() + direction.y() * axis.y());
}

void OrientedBox::putInto(Boxes4 &boxes, int lane) const
{
    boxes.centreX[lane] = centre.x();
    boxes.centreY[lane] = centre.y();
    boxes.alongX[lane] = along * axis.x();
    boxes.alongY[lane] = along * axis.y();
    boxes.acrossX[lane] = across * axis.x();
    boxes.acrossY[lane] = across * axis.y();
    boxes.extentX[lane] = extentX();
    boxes.extentY[lane] = extentY();
}

} // namespace Halvard::Orv
