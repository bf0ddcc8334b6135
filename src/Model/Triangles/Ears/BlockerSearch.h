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
///
/// Corners at the same point give the same answer, so that a large ring is searched by
/// its distinct points, the sites.
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
        /// NoSite for corners that never block.
        int site;
        /// The site that blocked it when it was last asked for, and probably still does;
        /// NoSite if none.
        int lastBlocker;
    };

    struct Site
    {
        QVector2D point;
        /// How many active corners stand there.
        int corners;
        int slot;
    };

    CornerState &state(int corner) { return _states[static_cast<size_t>(corner)]; }
    Site &site(int number) { return _sites[static_cast<size_t>(number)]; }
    void makeSites(int count);
    void joinCoincidentCorners();
    void place();
    bool isBlockedBySome(int corner, const CornerTriangle &triangle, const TriangleReach &reach,
                         int slot);

    QVector2D const *_points = nullptr;
    std::vector<CornerState> _states;
    std::vector<Site> _sites;
    /// Sites in ring order that may have active corners; those without go when they are
    /// half of them.
    std::vector<int> _placed;
    int _activeSites = 0;
    bool _hasBoxes = false;
    RingBoxes _boxes;
    std::vector<QVector2D> _placedPoints;
    /// By slot; x is NaN in slots without an active corner.
    std::vector<float> _x;
    std::vector<float> _y;
    std::vector<int> _siteAt;
};

} // namespace Halvard::Orv
