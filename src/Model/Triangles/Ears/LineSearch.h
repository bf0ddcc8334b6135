/// \file
/// What blocks triangles that reach along a line through a whole ring.
#pragma once

#include "Triangles/Ears/CornerTriangle.h"
#include "Triangles/Ears/Sampling.h"
#include "Triangles/Ears/SiteTree.h"

#include <QtGui/QVector2D>

#include <vector>

namespace Halvard::Orv {

/// A second tree of the sites of a ring, for searches that the first one is bad for.
///
/// The boxes of the first tree follow the ring. In a strip whose sides the ring goes to and
/// fro between, all of them reach from side to side, and a triangle of three corners on one
/// side that lie on a line but for rounding meets them all, though it holds nothing. Such
/// searches are told to note(). When they have become dear, sites are placed here as well, by
/// the directions that these searches had.
class LineSearch
{
public:
    /// A search that takes more steps than this is long.
    static constexpr int ManySteps = 64;

    /// Forgets everything: others were placed in the first tree.
    /// \param siteCount sites have numbers below this.
    void reset(int siteCount, int activeSites);

    /// A search of the first tree was long: it took so many steps, or was given up after them.
    void note(const CornerTriangle &triangle, int steps);

    /// Whether long searches of the first tree have become dear enough to do better without.
    bool isWorthIt() const { return _patience <= 0 && _longSearches >= SampleSize; }

    /// Whether to place() before the next search: for the first time, or since the directions
    /// that searches have are others by now.
    bool isDue() const;

    /// \param sites those that are left, ascending.
    /// \param points by number of the site.
    void place(const std::vector<int> &sites, const std::vector<QVector2D> &points);

    /// Does nothing for a site that was not placed.
    void remove(int site);

    /// A site that blocks the triangle, or NoSite.
    /// \pre All sites that are left were placed.
    int blocker(const CornerTriangle &triangle, const TriangleReach &reach);

private:
    static constexpr int SampleSize = 16;

    SiteTree _tree;
    bool _isPlaced = false;
    int _siteCount = 0;
    int _activeSites = 0;
    /// Of some of the long searches.
    std::vector<QVector2D> _directions;
    QuickRandom _random;
    int _longSearches = 0;
    int _longSearchesWhenPlaced = 0;
    /// Steps of long searches that the first tree may still take, and those that were taken
    /// here.
    long long _patience = 0;
    long long _steps = 0;
};

} // namespace Halvard::Orv
