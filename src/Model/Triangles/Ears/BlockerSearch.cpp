#include "Triangles/Ears/BlockerSearch.h"

#include "Triangles/Ears/PointNeighbours.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

namespace Halvard::Orv {

namespace {

/// Below this many points all are looked at, which takes less time than boxes do.
constexpr int FewPoints = 256;
/// Placing anew is not worth it for fewer.
constexpr int FewestToPlace = 4;

bool isFinite(QVector2D point)
{
    return std::isfinite(point.x()) && std::isfinite(point.y());
}

} // namespace

void BlockerSearch::reset(QVector2D const *points, int count)
{
    makeSites(points, count);
    _placed.resize(_points.size());
    std::iota(_placed.begin(), _placed.end(), 0);
    place();
}

/// One for each corner, or, in a large ring, for each distinct point.
void BlockerSearch::makeSites(QVector2D const *points, int count)
{
    _states.assign(static_cast<size_t>(count), {NoSite, NoSite});
    _points.clear();
    _cornersAt.clear();
    _placedNear.clear();
    _points.reserve(static_cast<size_t>(count));
    _cornersAt.reserve(static_cast<size_t>(count));
    // Corners that are not finite never block, see TriangleReach.
    for (int corner = 0; corner < count; ++corner) {
        if (isFinite(points[corner]))
            addSite(corner, points[corner]);
    }
    if (_points.size() >= FewPoints)
        joinCoincidentCorners(points);
    _tree.reset(_points.size());
    _nearTree.reset(_points.size());
}

void BlockerSearch::addSite(int corner, QVector2D point)
{
    state(corner).site = static_cast<int>(_points.size());
    _points.push_back(point);
    _cornersAt.push_back(1);
}

/// Leaves one site for each distinct point, in the order of their first corners.
void BlockerSearch::joinCoincidentCorners(QVector2D const *points)
{
    std::vector<int> corners;
    corners.reserve(_points.size());
    for (int corner = 0; corner < static_cast<int>(_states.size()); ++corner) {
        if (state(corner).site != NoSite)
            corners.push_back(corner);
    }
    const PointNeighbours neighbours(points, corners);
    // For now a corner's site is the first corner that stands there.
    neighbours.forEachPoint([&](int corner, int first) { state(corner).site = first; });
    _points.clear();
    _cornersAt.clear();
    for (const int corner : corners) {
        const int first = state(corner).site;
        if (first == corner) {
            addSite(corner, points[corner]);
        } else {
            state(corner).site = state(first).site;
            ++cornersAt(state(corner).site);
        }
    }
    for (const int corner : neighbours.pointsWithNeighbours())
        _placedNear.push_back(state(corner).site);
}

void BlockerSearch::dropEmptySites(std::vector<int> &sites)
{
    const auto isEmpty = [this](int site) { return cornersAt(site) == 0; };
    sites.erase(std::remove_if(sites.begin(), sites.end(), isEmpty), sites.end());
}

/// Gives all sites with active corners new places.
void BlockerSearch::place()
{
    dropEmptySites(_placed);
    dropEmptySites(_placedNear);
    _activeSites = static_cast<int>(_placed.size());
    _hasBoxes = _activeSites >= FewPoints;
    _tree.place(_placed, _points, _hasBoxes ? splitForTriangles : NodeSplit());
    if (_hasBoxes)
        _nearTree.place(_placedNear, _points, splitForSurroundings);
    _lineSearch.reset(static_cast<int>(_points.size()), _activeSites);
}

void BlockerSearch::remove(int corner)
{
    const int site = state(corner).site;
    if (site == NoSite || --cornersAt(site) > 0)
        return;
    _tree.remove(site);
    _nearTree.remove(site);
    _lineSearch.remove(site);
    --_activeSites;
    if (_activeSites > FewestToPlace && 2 * _activeSites < static_cast<int>(_placed.size()))
        place();
}

bool BlockerSearch::isBlocked(int corner, const CornerTriangle &triangle)
{
    int &last = state(corner).lastBlocker;
    if (last != NoSite && cornersAt(last) > 0 &&
        triangle.isBlockedBy(_points[static_cast<size_t>(last)]))
        return true;
    last = blockerOf(triangle);
    return last != NoSite;
}

/// A site that blocks the triangle, or NoSite.
int BlockerSearch::blockerOf(const CornerTriangle &triangle)
{
    const TriangleReach reach(triangle);
    if (!_hasBoxes)
        return _tree.blockerAmongAll(triangle, reach);
    // An edge too long for a float has no direction, and nothing is inside of it.
    const QVector2D opposite = triangle.edge(1).direction;
    if (std::isnan(opposite.x()) || std::isnan(opposite.y()))
        return NoSite;
    if (!_nearTree.isEmpty()) {
        const int blocker = _nearTree.blockerAmongNear(triangle, reach);
        if (blocker != NoSite)
            return blocker;
    }
    return blockerAmongFar(triangle, reach);
}

/// The same of sites that are not near a corner of the triangle.
int BlockerSearch::blockerAmongFar(const CornerTriangle &triangle, const TriangleReach &reach)
{
    const int most =
        _lineSearch.isWorthIt() ? LineSearch::ManySteps : std::numeric_limits<int>::max();
    int stepsLeft = most;
    const int blocker = _tree.blockerAmongFar(triangle, reach, stepsLeft);
    const int steps = most - stepsLeft;
    if (steps > LineSearch::ManySteps)
        _lineSearch.note(triangle, steps);
    if (stepsLeft >= 0)
        return blocker;
    if (_lineSearch.isDue())
        _lineSearch.place(activeSites(), _points);
    return _lineSearch.blocker(triangle, reach);
}

std::vector<int> BlockerSearch::activeSites() const
{
    std::vector<int> sites;
    sites.reserve(static_cast<size_t>(_activeSites));
    for (const int site : _placed) {
        if (_cornersAt[static_cast<size_t>(site)] > 0)
            sites.push_back(site);
    }
    return sites;
}

} // namespace Halvard::Orv
