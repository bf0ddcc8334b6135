/// \file
/// Which points of a ring coincide, and which nearly do.
#pragma once

#include <QtGui/QVector2D>

#include <vector>

namespace Halvard::Orv {

/// Sorts points once for both questions.
class PointNeighbours
{
public:
    /// \param numbers of the points to look at, in ascending order; all are finite.
    PointNeighbours(const QVector2D *points, const std::vector<int> &numbers);

    /// Calls `tell(number, first)` for each number: `first` is the lowest number of the same
    /// point.
    template <typename Tell>
    void forEachPoint(Tell tell) const
    {
        size_t first = 0;
        for (size_t i = 0; i < _sorted.size(); ++i) {
            if (!isSamePoint(_sorted[i], _sorted[first]))
                first = i;
            tell(_sorted[i].number, _sorted[first].number);
        }
    }

    /// The lowest number of each point that has others within 1.000001e-6, or seems to where
    /// there are too many to look at.
    std::vector<int> pointsWithNeighbours() const;

private:
    struct Placed
    {
        /// Along a direction that is no axis of a ring, unless somebody means to.
        double at;
        float x;
        float y;
        int number;
    };

    static bool comesBefore(const Placed &first, const Placed &second);
    static bool isSamePoint(const Placed &first, const Placed &second)
    {
        return first.x == second.x && first.y == second.y;
    }
    static bool hasNeighbourAmong(const std::vector<Placed> &distinct, size_t place,
                                  ptrdiff_t step);

    std::vector<Placed> _sorted;
};

} // namespace Halvard::Orv
