/// \file
/// Whether any corner of a shrinking ring lies in an ear's triangle.
#pragma once

#include "Triangles/Ears/CornerTriangle.h"
#include "Triangles/Ears/RingBoxes.h"

#include <QtGui/QVector2D>

#include <vector>

namespace Halvard::Orv {

/// Answers as a loop over all active corners would, but looks, four at a time, only
/// for those that can be in the triangle, and in large rings only where they can be.
/// It does not matter which of several corners is found.
class BlockerSearch
{
public:
    /// All corners are active. `points` stays in use.
    void reset(QVector2D const *points, int count);

    bool isBlocked(int corner, const CornerTriangle &triangle);

    /// The corner is no longer active.
    void remove(int corner);

private:
    struct CornerState
    {
        /// NoSlot for corners that are not active or never block.
        int slot;
        /// What blocked it when it was last asked for, and probably still does; -1 if
        /// nothing.
        int lastBlocker;
    };

    CornerState &state(int corner) { return _states[static_cast<size_t>(corner)]; }
    void place();
    bool isBlockedBySome(int corner, const CornerTriangle &triangle, const TriangleReach &reach,
                         int slot);

    QVector2D const *_points = nullptr;
    /// Corners in ring order that may be active; removed ones go when half of them
    /// are gone.
    std::vector<int> _corners;
    int _activeCount = 0;
    bool _hasBoxes = false;
    RingBoxes _boxes;
    std::vector<QVector2D> _placed;
    /// By slot; x is NaN in slots without an active corner.
    std::vector<float> _x;
    std::vector<float> _y;
    std::vector<int> _cornerAt;
    std::vector<CornerState> _states;
};

} // namespace Halvard::Orv
