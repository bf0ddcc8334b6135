#include "Triangles/Ears/PointNeighbours.h"

#include <algorithm>
#include <cmath>

namespace Halvard::Orv {

PointNeighbours::PointNeighbours(const QVector2D *points, const std::vector<int> &numbers)
{
    // A unit vector but for 1e-8.
    constexpr double DirectionX = 0.80412737;
    constexpr double DirectionY = 0.59444776;
    _sorted.reserve(numbers.size());
    for (const int number : numbers) {
        const QVector2D point = points[number];
        const double at = DirectionX * static_cast<double>(point.x()) +
                          DirectionY * static_cast<double>(point.y());
        _sorted.push_back({at, point.x(), point.y(), number});
    }
    std::sort(_sorted.begin(), _sorted.end(), comesBefore);
}

bool PointNeighbours::comesBefore(const Placed &first, const Placed &second)
{
    if (first.at != second.at)
        return first.at < second.at;
    // Different points may be at the same place after rounding.
    if (first.x != second.x)
        return first.x < second.x;
    return first.y < second.y || (first.y == second.y && first.number < second.number);
}

std::vector<int> PointNeighbours::pointsWithNeighbours() const
{
    std::vector<Placed> distinct;
    distinct.reserve(_sorted.size());
    std::unique_copy(_sorted.begin(), _sorted.end(), std::back_inserter(distinct), isSamePoint);
    std::vector<int> numbers;
    for (size_t place = 0; place < distinct.size(); ++place) {
        if (hasNeighbourAmong(distinct, place, 1) || hasNeighbourAmong(distinct, place, -1))
            numbers.push_back(distinct[place].number);
    }
    std::sort(numbers.begin(), numbers.end());
    return numbers;
}

/// Whether one of the points on one side is near the one at `place`.
bool PointNeighbours::hasNeighbourAmong(const std::vector<Placed> &distinct, size_t place,
                                        ptrdiff_t step)
{
    constexpr int MostSteps = 16;
    // More than 1.000001e-6, and more than what is rounded: `at` is off by 3 * 2^-53 of the
    // coordinates, with those of a neighbour twice that.
    constexpr double Near = 1.1e-6;
    constexpr double Rounding = 1e-15;
    const Placed &placed = distinct[place];
    const double reach = Near + Rounding * (std::fabs(static_cast<double>(placed.x)) +
                                            std::fabs(static_cast<double>(placed.y)));
    ptrdiff_t otherPlace = static_cast<ptrdiff_t>(place);
    for (int i = 0; i < MostSteps; ++i) {
        otherPlace += step;
        if (otherPlace < 0 || otherPlace >= static_cast<ptrdiff_t>(distinct.size()))
            return false;
        const Placed &other = distinct[static_cast<size_t>(otherPlace)];
        if (std::fabs(other.at - placed.at) > reach)
            return false;
        if (std::fabs(static_cast<double>(other.x) - static_cast<double>(placed.x)) <= Near &&
            std::fabs(static_cast<double>(other.y) - static_cast<double>(placed.y)) <= Near)
            return true;
    }
    return true;
}

} // namespace Halvard::Orv
