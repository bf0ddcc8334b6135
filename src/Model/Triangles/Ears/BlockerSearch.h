/// \file
/// Whether any corner of a shrinking ring lies in an ear's triangle.
#pragma once

#include "Triangles/Ears/CornerTriangle.h"
#include "Triangles/Ears/LineSearch.h"
#include "Triangles/Ears/SiteTree.h"

#include <QtGui/QVector2D>

#include <vector>

namespace Halvard::Orv {

/// Answers as a loop over all active corners would, but looks, four at a time, only
/// for those that can be in the triangle, and in large rings only where they can be.
/// It does not matter which of several corners is found.
///
/// Corners at the same point give the same answer, so that a large ring is searched by
/// its distinct points, the sites. Those that others are near to stand in a tree of
/// their own as well, see TriangleReach; where that takes long, so do all, see LineSearch.
class BlockerSearch
{
public:
    /// All corners are active. `points` is needed during the call only.
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

    CornerState &state(int corner) { return _states[static_cast<size_t>(corner)]; }
    int &cornersAt(int site) { return _cornersAt[static_cast<size_t>(site)]; }
    void makeSites(QVector2D const *points, int count);
    void joinCoincidentCorners(QVector2D const *points);
    void addSite(int corner, QVector2D point);
    void dropEmptySites(std::vector<int> &sites);
    void place();
    int blockerOf(const CornerTriangle &triangle);
    int blockerAmongFar(const CornerTriangle &triangle, const TriangleReach &reach);
    std::vector<int> activeSites() const;

    std::vector<CornerState> _states;
    /// By site: where it is, and how many active corners stand there.
    std::vector<QVector2D> _points;
    std::vector<int> _cornersAt;
    /// Sites in ring order that may have active corners; those without go when they are
    /// half of them.
    std::vector<int> _placed;
    /// Those of them that others are near to.
    std::vector<int> _placedNear;
    int _activeSites = 0;
    bool _hasBoxes = false;
    SiteTree _tree;
    SiteTree _nearTree;
    LineSearch _lineSearch;
};

} // namespace Halvard::Orv
