#include "Triangles/Ears/BlockerSearch.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

namespace Halvard::Orv {

namespace {

constexpr int NoSite = -1;
constexpr int Lanes = 4;
/// Below this many points all are looked at, which takes less time than boxes do.
constexpr int FewPoints = 256;
constexpr float Gone = std::numeric_limits<float>::quiet_NaN();

bool isFinite(QVector2D point)
{
    return std::isfinite(point.x()) && std::isfinite(point.y());
}

/// A corner and where it stands, with any order of places.
struct PlacedCorner
{
    PlacedCorner(QVector2D point, int number) : x(point.x()), y(point.y()), corner(number) {}

    bool operator<(const PlacedCorner &other) const
    {
        if (x != other.x)
            return x < other.x;
        return y < other.y || (y == other.y && corner < other.corner);
    }

    float x;
    float y;
    int corner;
};

} // namespace

void BlockerSearch::reset(QVector2D const *points, int count)
{
    _points = points;
    makeSites(count);
    _placed.resize(_sites.size());
    std::iota(_placed.begin(), _placed.end(), 0);
    place();
}

/// One for each corner, or, in a large ring, for each distinct point.
void BlockerSearch::makeSites(int count)
{
    _states.assign(static_cast<size_t>(count), {NoSite, NoSite});
    _sites.clear();
    _sites.reserve(static_cast<size_t>(count));
    // Corners that are not finite never block, see TriangleReach.
    for (int corner = 0; corner < count; ++corner) {
        if (!isFinite(_points[corner]))
            continue;
        state(corner).site = static_cast<int>(_sites.size());
        _sites.push_back({_points[corner], 1, 0});
    }
    if (_sites.size() >= FewPoints)
        joinCoincidentCorners();
}

/// Leaves one site for each distinct point, in the order of their first corners.
void BlockerSearch::joinCoincidentCorners()
{
    std::vector<PlacedCorner> sorted;
    sorted.reserve(_sites.size());
    for (int corner = 0; corner < static_cast<int>(_states.size()); ++corner) {
        if (state(corner).site != NoSite)
            sorted.emplace_back(_points[corner], corner);
    }
    std::sort(sorted.begin(), sorted.end());
    // For now a corner's site is the first corner that stands there.
    const PlacedCorner *first = nullptr;
    for (const PlacedCorner &placed : sorted) {
        if (!first || first->x != placed.x || first->y != placed.y)
            first = &placed;
        state(placed.corner).site = first->corner;
    }
    _sites.clear();
    for (int corner = 0; corner < static_cast<int>(_states.size()); ++corner) {
        int &number = state(corner).site;
        if (number == NoSite)
            continue;
        if (number == corner) {
            number = static_cast<int>(_sites.size());
            _sites.push_back({_points[corner], 1, 0});
        } else {
            number = state(number).site;
            ++site(number).corners;
        }
    }
}

/// Gives all sites with active corners new slots.
void BlockerSearch::place()
{
    const auto isEmpty = [this](int number) { return site(number).corners == 0; };
    _placed.erase(std::remove_if(_placed.begin(), _placed.end(), isEmpty), _placed.end());
    _activeSites = static_cast<int>(_placed.size());
    _hasBoxes = _activeSites >= FewPoints;
    if (_hasBoxes) {
        _placedPoints.clear();
        _placedPoints.reserve(_placed.size());
        for (const int number : _placed)
            _placedPoints.push_back(site(number).point);
        _boxes.build(_placedPoints);
    }
    const size_t slotCount =
        (_placed.size() + RingBoxes::LeafSize - 1) / RingBoxes::LeafSize * RingBoxes::LeafSize;
    _x.assign(slotCount, Gone);
    _y.assign(slotCount, Gone);
    _siteAt.resize(slotCount);
    for (size_t slot = 0; slot < _placed.size(); ++slot) {
        const size_t at = _hasBoxes ? static_cast<size_t>(_boxes.order()[slot]) : slot;
        const int number = _placed[at];
        Site &placed = site(number);
        _x[slot] = placed.point.x();
        _y[slot] = placed.point.y();
        _siteAt[slot] = number;
        placed.slot = static_cast<int>(slot);
    }
}

void BlockerSearch::remove(int corner)
{
    const int number = state(corner).site;
    if (number == NoSite || --site(number).corners > 0)
        return;
    _x[static_cast<size_t>(site(number).slot)] = Gone;
    --_activeSites;
    if (_activeSites > Lanes && 2 * _activeSites < static_cast<int>(_placed.size()))
        place();
}

bool BlockerSearch::isBlocked(int corner, const CornerTriangle &triangle)
{
    const int last = state(corner).lastBlocker;
    if (last != NoSite && site(last).corners > 0 && triangle.isBlockedBy(site(last).point))
        return true;

    const TriangleReach reach(triangle);
    if (_hasBoxes) {
        // An edge too long for a float has no direction, and nothing is inside of it.
        const QVector2D opposite = triangle.edge(1).direction;
        if (std::isnan(opposite.x()) || std::isnan(opposite.y()))
            return false;
        return _boxes.anyLeaf(triangle, reach, [&](int slot) {
            return isBlockedBySome(corner, triangle, reach, slot) ||
                   isBlockedBySome(corner, triangle, reach, slot + Lanes);
        });
    }
    for (int slot = 0; slot < static_cast<int>(_x.size()); slot += Lanes) {
        if (isBlockedBySome(corner, triangle, reach, slot))
            return true;
    }
    return false;
}

/// Whether one of the sites in four slots blocks.
bool BlockerSearch::isBlockedBySome(int corner, const CornerTriangle &triangle,
                                    const TriangleReach &reach, int slot)
{
    const size_t at = static_cast<size_t>(slot);
    unsigned within = reach.pointsWithin(loadFour(&_x[at]), loadFour(&_y[at]));
    for (size_t lane = 0; within != 0; ++lane, within >>= 1) {
        if ((within & 1u) == 0 || !triangle.isBlockedBy({_x[at + lane], _y[at + lane]}))
            continue;
        state(corner).lastBlocker = _siteAt[at + lane];
        return true;
    }
    return false;
}

} // namespace Halvard::Orv
