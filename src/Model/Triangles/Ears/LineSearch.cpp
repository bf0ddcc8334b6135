#include "Triangles/Ears/LineSearch.h"

namespace Halvard::Orv {

namespace {

/// Steps for each site that take about as long as placing them: what is spent before it is
/// worth to place them, and before it is worth to place them anew.
constexpr long long StepsOfPlacing = 4;
constexpr long long StepsOfPlacingAnew = 8;

/// Looking at all sites, one after the other, is faster than at a share of all boxes.
constexpr int SitesForAStep = 64;

} // namespace

void LineSearch::reset(int siteCount, int activeSites)
{
    _isPlaced = false;
    _siteCount = siteCount;
    _directions.clear();
    _random = {};
    _longSearches = 0;
    _patience = StepsOfPlacing * activeSites;
}

/// Keeps a uniform sample of all directions (J. S. Vitter, "Random Sampling with a Reservoir",
/// 1985, algorithm R): the first searches of a ring are all at its beginning.
void LineSearch::note(const CornerTriangle &triangle, int steps)
{
    _patience -= steps;
    const QVector2D direction = triangle.longestDirection();
    if (same(direction, {}))
        return;
    ++_longSearches;
    if (_longSearches <= SampleSize) {
        _directions.push_back(direction);
        return;
    }
    const size_t place = _random.next() % static_cast<std::uint32_t>(_longSearches);
    if (place < _directions.size())
        _directions[place] = direction;
}

/// Half of the sample is another one when there have been twice as many searches. So sites
/// are placed a few times at most.
bool LineSearch::isDue() const
{
    return !_isPlaced || (_steps > StepsOfPlacingAnew * _activeSites &&
                          _longSearches > 2 * _longSearchesWhenPlaced);
}

void LineSearch::place(const std::vector<int> &sites, const std::vector<QVector2D> &points)
{
    _tree.reset(static_cast<size_t>(_siteCount));
    _tree.place(
        sites, points,
        [this](const QVector2D *all, const int *first, const int * /*middle*/, const int *last,
               bool isAcross) { return splitForLines(all, first, last, isAcross, _directions); });
    _isPlaced = true;
    _activeSites = static_cast<int>(sites.size());
    _longSearchesWhenPlaced = _longSearches;
    _steps = 0;
}

void LineSearch::remove(int site)
{
    if (_isPlaced)
        _tree.remove(site);
}

int LineSearch::blocker(const CornerTriangle &triangle, const TriangleReach &reach)
{
    const int most = _activeSites / SitesForAStep;
    int stepsLeft = most;
    const int blocker = _tree.blockerAmongFar(triangle, reach, stepsLeft);
    _steps += most - stepsLeft;
    if (stepsLeft >= 0)
        return blocker;
    _steps += _activeSites / RingBoxes::LeafSize;
    return _tree.blockerAmongAll(triangle, reach);
}

} // namespace Halvard::Orv
